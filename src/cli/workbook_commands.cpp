#include "cli/workbook_commands.h"

#include <ctime>
#include <iostream>

#include "cli/blank_workbook.h"
#include "cli/exit_codes.h"
#include "cli/session.h"
#include "cli/workbook_file.h"
#include "values/values.h"

namespace fs = std::filesystem;

namespace {

double Today() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return values::DateSerial(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
}

}  // namespace

std::vector<Finding> CheckWorkbook(const std::shared_ptr<sheethost::Workbook>& book) {
    std::vector<Finding> findings = CheckLayout(*book);
    if (AnyBlocking(findings)) return findings;
    WithPrimedEngine(book, SessionOptions{}, [&] {
        for (Finding& finding : CheckTaskRows()) findings.push_back(std::move(finding));
    });
    return findings;
}

bool RefuseUnusable(const sheethost::Workbook& book) {
    const std::vector<Finding> findings = CheckLayout(book);
    for (const Finding& finding : findings) {
        if (finding.blocking) std::cerr << "vantora: " << FindingText(finding) << '\n';
    }
    return AnyBlocking(findings);
}

int RunNew(const NewOptions& options) {
    BlankProject project;
    project.workingDays = options.workingDays;
    if (options.workingDays < 1) {
        std::cerr << "vantora: --days must be 1 or more working days\n";
        return kUsageError;
    }
    if (options.start.empty()) {
        project.firstDay = Today();
    } else if (const auto start = values::ParseDateText(options.start)) {
        project.firstDay = *start;
    } else {
        std::cerr << "vantora: --start must be a date such as 2024-04-15\n";
        return kUsageError;
    }
    if (fs::exists(options.file) && !options.overwrite) {
        std::cerr << "vantora: " << options.file.string()
                  << " already exists; give --overwrite to replace it\n";
        return kUsageError;
    }
    try {
        WriteWorkbookFile(*NewBlankWorkbook(project), {}, options.file);
    } catch (const WorkbookFileError& error) {
        std::cerr << "vantora: " << error.what() << '\n';
        return kWorkbookError;
    }
    const std::string file = options.file.string();
    std::cout << "made " << file << ": a blank project of " << project.workingDays
              << " working days from " << values::FormatDate(project.firstDay, "yyyy/mm/dd")
              << ".\nType one task a row from row 5 of the WBS sheet (the column of the name is "
                 "its outline level), then run:\n  vantora update-wbs "
              << file << " -o " << file << " --overwrite\n";
    return kSuccess;
}

int RunCheck(const fs::path& workbook) {
    std::vector<Finding> findings;
    try {
        findings = CheckWorkbook(ReadWorkbookFile(workbook));
    } catch (const WorkbookFileError& error) {
        std::cerr << "vantora: " << error.what() << '\n';
        return kWorkbookError;
    }
    std::size_t errors = 0;
    for (const Finding& finding : findings) {
        errors += finding.blocking ? 1 : 0;
        std::cout << (finding.blocking ? "error: " : "warning: ") << FindingText(finding) << '\n';
    }
    const std::size_t warnings = findings.size() - errors;
    std::cout << workbook.string() << ": "
              << (errors > 0 ? "cannot be used until the errors are mended"
                             : "ready for every command")
              << " (" << errors << " error(s), " << warnings << " warning(s))\n";
    return errors > 0 ? kUnusableWorkbook : kSuccess;
}

int RunConvert(const fs::path& workbook, const fs::path& output, bool overwrite) {
    if (!overwrite && WouldReplaceInput(output, workbook)) {
        std::cerr << "vantora: the output would replace the input workbook; give --overwrite to "
                     "allow it\n";
        return kUsageError;
    }
    try {
        WriteWorkbookFile(*ReadWorkbookFile(workbook), workbook, output);
    } catch (const WorkbookFileError& error) {
        std::cerr << "vantora: " << error.what() << '\n';
        return kWorkbookError;
    }
    std::cout << "saved " << output.string() << '\n';
    return kSuccess;
}
