#!/usr/bin/python3
"""Compares the in-memory host's formula values (formula_values' JSON) with the values LibreOffice
computed and stored in the workbook it saved. Prints every difference; exits 1 when there is one."""
import datetime
import json
import math
import sys

import openpyxl

EPOCH = datetime.datetime(1899, 12, 30)


def spreadsheet_value(value):
    """The value as the host reports it: dates and times become serials, empty text is empty."""
    if isinstance(value, datetime.datetime):
        return (value - EPOCH).total_seconds() / 86400
    if isinstance(value, datetime.date):
        return float((value - EPOCH.date()).days)
    if isinstance(value, datetime.time):
        return (value.hour * 3600 + value.minute * 60 + value.second) / 86400
    if isinstance(value, datetime.timedelta):
        return value.total_seconds() / 86400
    if value == "":
        return None
    if isinstance(value, str) and value.startswith("#"):
        return {"error": value}
    if isinstance(value, int) and not isinstance(value, bool):
        return float(value)
    return value


def same(host, calc):
    if isinstance(host, float) and isinstance(calc, float):
        return math.isclose(host, calc, rel_tol=1e-9, abs_tol=1e-9)
    if host == "":
        host = None
    return host == calc


def main(host_values, recalculated):
    cells = json.load(open(host_values, encoding="utf-8"))
    book = openpyxl.load_workbook(recalculated, data_only=True)
    differences = []
    for cell in cells:
        calc = spreadsheet_value(book[cell["sheet"]][cell["cell"]].value)
        if not same(cell["value"], calc):
            differences.append(
                f'{cell["sheet"]}!{cell["cell"]} {cell["formula"]}: '
                f'host {json.dumps(cell["value"])}, LibreOffice {json.dumps(calc)}')
    for line in differences:
        print("  " + line)
    print(f"{len(cells) - len(differences)} of {len(cells)} formulas agree with LibreOffice")
    return 1 if differences or not cells else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2]))
