#!/usr/bin/python3
"""Prints a workbook's first sheet as JSON, as openpyxl reads it.

{"cells": {"B2": {"value": ..., "type": "n|s|b|d", "format": "...",
                  "bold": bool, "horizontal": "...", "vertical": "..."}},
 "merges": ["B1:C1", ...], "widths": {"A": 25.7, ...}}

Dates come as ISO text. Blank cells that carry only a format are left out.
"""
import datetime
import json
import sys

import openpyxl
from openpyxl.utils import get_column_letter


def main(path):
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
    json.dump({"cells": cells,
               "merges": sorted(str(r) for r in sheet.merged_cells.ranges),
               "widths": widths}, sys.stdout, ensure_ascii=False)


if __name__ == "__main__":
    main(sys.argv[1])
