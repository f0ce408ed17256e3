// A blank project workbook of the layout the engine expects, ready for a planner's tasks.
#pragma once

#include <memory>

#include "sheethost/model.h"

struct BlankProject {
    // The date serial of the first working day; the calendar takes the working days (Monday to
    // Friday, 08:00 to 17:00) from there on.
    double firstDay = 0;
    int workingDays = 10;
};

std::shared_ptr<sheethost::Workbook> NewBlankWorkbook(const BlankProject& project);
