// The exit codes of the vantora program, as --help lists them.
#pragma once

enum ExitCode {
    kSuccess = 0,
    kUsageError = 2,
    kWorkbookError = 3,
    kUnusableWorkbook = 5,
};

inline constexpr const char* kExitCodes =
    "Exit codes: 0 done; 2 wrong usage; 3 the workbook cannot be read or written; 5 the workbook "
    "cannot be used as it is (vantora check WORKBOOK tells what to change).";
