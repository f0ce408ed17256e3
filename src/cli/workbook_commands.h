// The commands of the program that work on whole workbooks rather than run the engine: make a new
// one, check one, convert one to another file format. Each answers an exit code and prints what it
// did; errors go to standard error as "vantora: ...".
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "cli/workbook_check.h"
#include "sheethost/model.h"

struct NewOptions {
    std::filesystem::path file;
    std::string start;  // "YYYY-MM-DD"; today when empty
    int workingDays = 10;
    bool overwrite = false;
};

int RunNew(const NewOptions& options);
int RunCheck(const std::filesystem::path& workbook);
int RunConvert(const std::filesystem::path& workbook, const std::filesystem::path& output,
               bool overwrite);

// Every finding of both halves of the check: the layout, then, when the layout can be used, the
// task rows as the engine reads them.
std::vector<Finding> CheckWorkbook(const std::shared_ptr<sheethost::Workbook>& book);

// Prints the blocking findings that stop a command; true when there were any.
bool RefuseUnusable(const sheethost::Workbook& book);
