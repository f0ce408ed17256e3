#!/usr/bin/env python3
"""Writes a variant of a JSON workbook for the DLL scenarios, so that every variant follows the
sample as it changes:

    derive_workbook.py VARIANT SOURCE.json TARGET.json

  as-is            the workbook unchanged
  no-templates     no template shapes on any sheet: the engine's built-in looks must stand in
  hidden-rows      the finished tasks hidden by hand, as a user filters the plan down to open work
  no-resource-sheet  the resource sheet removed: binding leaves its reference null
  untidy           cells as users leave them: formulas and error values on ordinary tasks,
                   numbers and times typed as text, missing and unknown resources, violated links
  select:FIRST:LAST  whole rows FIRST to LAST selected on the task sheet, which is made the
                   active sheet, as a user selects rows before moving them
  filter:TEXT      the filter cell A500 of the settings sheet set to TEXT ("5," or "1,CREW,"),
                   as the workbook's filter dialog writes it

Variants join with "+": "select:21:22+filter:5,".
"""
import json
import sys


def sheet_with_code(book, code_name):
    return next(sheet for sheet in book["sheets"] if sheet.get("codeName") == code_name)


def no_templates(book):
    for sheet in book["sheets"]:
        sheet["shapes"] = []


def hidden_rows(book):
    wbs = sheet_with_code(book, "wsWBS")
    rows = {}
    # Row ranges such as "5:44" become single rows, so that some of them can be hidden.
    for key, info in wbs.get("rows", {}).items():
        first, _, last = key.partition(":")
        for row in range(int(first), int(last or first) + 1):
            rows[str(row)] = dict(info)
    for row in (7, 8, 9, 11, 12, 13, 15, 16, 17, 20, 24):
        rows.setdefault(str(row), {})["hidden"] = True
    wbs["rows"] = rows


def no_resource_sheet(book):
    book["sheets"] = [s for s in book["sheets"] if s.get("codeName") != "wsResource"]


def untidy(book):
    cells = sheet_with_code(book, "wsWBS")["cells"]
    cells["O7"] = {"formula": "=45*2"}
    cells["V8"] = {"formula": "=\"A\"&1"}
    cells["U9"] = {"formula": "=50+50"}
    cells["Q24"] = {"formula": "=1/0"}
    cells["P20"] = "08:00"
    cells["O21"] = "60"
    cells["T21"] = True
    del cells["N12"]
    cells["N13"] = "NOBODY"
    cells["V20"] = "D3"
    cells["V21"] = "D1ff,zz,3ss,D1"
    cells["V22"] = "2.1.1SF, D2"


def select_rows(book, first, last):
    wbs = sheet_with_code(book, "wsWBS")
    wbs["selection"] = f"{first}:{last}"
    wbs["activeCell"] = f"A{first}"
    book["activeSheet"] = wbs["name"]


def filter_setting(book, setting):
    sheet_with_code(book, "wsSettings").setdefault("cells", {})["A500"] = setting


VARIANTS = {
    "as-is": lambda book: None,
    "no-templates": no_templates,
    "hidden-rows": hidden_rows,
    "no-resource-sheet": no_resource_sheet,
    "untidy": untidy,
}


def apply_variant(book, variant):
    name, _, argument = variant.partition(":")
    if name == "select":
        first, _, last = argument.partition(":")
        select_rows(book, int(first), int(last))
    elif name == "filter":
        filter_setting(book, argument)
    elif variant in VARIANTS:
        VARIANTS[variant](book)
    else:
        sys.exit(__doc__)


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    with open(sys.argv[2], encoding="utf-8") as source:
        book = json.load(source)
    for variant in sys.argv[1].split("+"):
        apply_variant(book, variant)
    with open(sys.argv[3], "w", encoding="utf-8") as target:
        json.dump(book, target, indent=1)


if __name__ == "__main__":
    main()
