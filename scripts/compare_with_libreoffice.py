#!/usr/bin/python3
"""Compares a workbook as the in-memory host saved it with the same workbook after LibreOffice
opened and saved it again: every formula's value (the host's, from workbook_facts, against the
value LibreOffice computed and stored) and every shape (LibreOffice must have kept each one, as
workbook_facts reads its file back). Prints every difference; exits 1 when there is one."""
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


def shape_names(facts):
    return {(shape["sheet"], shape["name"]) for shape in facts["shapes"]}


def main(host_facts, libreoffice_facts, recalculated):
    host = json.load(open(host_facts, encoding="utf-8"))
    cells = host["formulas"]
    book = openpyxl.load_workbook(recalculated, data_only=True)
    differences = []
    for cell in cells:
        calc = spreadsheet_value(book[cell["sheet"]][cell["cell"]].value)
        if not same(cell["value"], calc):
            differences.append(
                f'{cell["sheet"]}!{cell["cell"]} {cell["formula"]}: '
                f'host {json.dumps(cell["value"])}, LibreOffice {json.dumps(calc)}')
    value_differences = len(differences)
    shapes = shape_names(host)
    kept = shape_names(json.load(open(libreoffice_facts, encoding="utf-8")))
    for sheet, name in sorted(shapes - kept):
        differences.append(f"{sheet}: shape {name} is missing after LibreOffice saved the workbook")
    for line in differences:
        print("  " + line)
    print(f"{len(cells) - value_differences} of {len(cells)} formulas agree with LibreOffice; "
          f"it kept {len(shapes & kept)} of {len(shapes)} shapes")
    return 1 if differences or not cells or not shapes else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2], sys.argv[3]))
