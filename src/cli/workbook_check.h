// What makes a workbook unusable or surprising for the engine, found before any command runs and
// told with the sheet, cell or row where it stands.
#pragma once

#include <string>
#include <vector>

#include "sheethost/model.h"

struct Finding {
    // The commands cannot use the workbook as it is; otherwise the finding only surprises.
    bool blocking = false;
    // Where: "Settings!C10", "WBS row 12", "the workbook".
    std::string place;
    std::string text;
};

// The sheets by code name, the named settings cells and the calendar, read from the host's model.
std::vector<Finding> CheckLayout(const sheethost::Workbook& book);

// The task rows: predecessors that name no task, ends before starts, resources missing from the
// resource sheet. Needs the engine primed on the workbook (settings, resources, task table).
std::vector<Finding> CheckTaskRows();

bool AnyBlocking(const std::vector<Finding>& findings);
// "Settings!C10: WSFirstTaskRow is 0; it must be a row number, 1 or more".
std::string FindingText(const Finding& finding);
