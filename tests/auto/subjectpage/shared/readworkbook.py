#!/usr/bin/python3
"""Reads the workbook named on the command line, or workbooks named one per
line on stdin, and prints, per line, the first sheet of each as JSON, as
openpyxl reads it:

{"cells": {"B2": {"value": ..., "type": "n|s|b|d", "format": "...",
                  "bold": bool, "horizontal": "...", "vertical": "..."}},
 "merges": ["B1:C1", ...], "widths": {"A": 25.7, ...}}

or {"error": "..."}. Dates come as ISO text. Blank cells that carry only a
format are left out. One process serves a whole test run.
"""
import datetime
import json
import sys

import openpyxl
from openpyxl.utils import get_column_letter


def read(path):
    sheet = openpyxl.load_workbook(path).worksheets[0]
    cells = {}
    for row in sheet.iter_rows():
        for cell in row:
            if cell.value is None:
                continue
            value = cell.value
            if isinstance(value, (datetime.datetime, datetime.date, datetime.time)):
                value = value.isoformat()
            cells[cell.coordinate] = {
                "value": value,
                "type": cell.data_type,
                "format": cell.number_format,
                "bold": bool(cell.font.b),
                "horizontal": cell.alignment.horizontal,
                "vertical": cell.alignment.vertical,
            }
    widths = {}
    for key, dim in sheet.column_dimensions.items():
        if dim.customWidth and dim.width:
            for col in range(dim.min or 0, (dim.max or 0) + 1):
                if col > 0:
                    widths[get_column_letter(col)] = dim.width
    return {"cells": cells,
            "merges": sorted(str(r) for r in sheet.merged_cells.ranges),
            "widths": widths}


if __name__ == "__main__":
    if len(sys.argv) > 1:  # one workbook named on the command line
        json.dump(read(sys.argv[1]), sys.stdout, ensure_ascii=False)
        sys.exit(0)
    for line in sys.stdin:
        try:
            answer = read(line.rstrip("\n"))
        except Exception as error:  # the test reports it
            answer = {"error": repr(error)}
        sys.stdout.write(json.dumps(answer, ensure_ascii=False) + "\n")
        sys.stdout.flush()
