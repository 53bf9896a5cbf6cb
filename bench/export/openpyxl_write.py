#!/usr/bin/python3
"""Writes the benchmark's table with openpyxl in write-only mode and prints
the seconds the writing took (making the values is not counted).

usage: openpyxl_write.py FILE ROWS COLUMNS
"""
import sys
import time

import openpyxl


def value(r, c):
    # The same cells as bench_export.cpp makes.
    kind = c % 3
    if kind == 0:
        return r * 0.37 + c
    if kind == 1:
        return r * 31 + c
    return "名称%d-%d" % (r % 1000, c)


def main(path, rows, columns):
    table = [[value(r, c) for c in range(columns)] for r in range(rows)]
    bands = ["B%d" % (c // 6) if c % 6 == 0 else None for c in range(columns)]
    leaves = ["C%d" % c for c in range(columns)]
    start = time.perf_counter()
    book = openpyxl.Workbook(write_only=True)
    sheet = book.create_sheet()
    sheet.append(bands)
    sheet.append(leaves)
    for row in table:
        sheet.append(row)
    book.save(path)
    print("%.6f" % (time.perf_counter() - start))


if __name__ == "__main__":
    main(sys.argv[1], int(sys.argv[2]), int(sys.argv[3]))
