// One run of the program is one engine lifetime, as a workbook's macros would drive the library:
// kpInit, kpSetWorkBook, the commands in order, kpQuit.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "sheethost/model.h"
#include "sheethost/user_edits.h"

struct CommandCall {
    const EngineCommand* command;
    std::vector<int> arguments;
};

struct RowSpan {
    int first;
    int last;
};

struct SessionOptions {
    // The status date every "now" of the engine sees; the clock when absent.
    std::optional<double> now;
    // The task rows selected on the task sheet, which the moves work on.
    std::optional<RowSpan> selectedRows;
    // Written into the settings sheet's filter cell before the first command, as the workbook's
    // filter dialog writes it.
    std::optional<std::string> filterSetting;
    // A user's edits of the task sheet, replayed with their sheet events after the commands.
    std::vector<sheethost::UserEdit> userEdits;
};

// Runs `calls` on `book` in one engine lifetime. Before the first command the engine is primed as
// an open workbook would be after an update: settings, resources and the task table loaded,
// nothing written. Messages to the user are printed to standard error. False, with nothing run,
// when the workbook's settings cannot be used (the user has been told why).
bool RunEngineSession(const std::shared_ptr<sheethost::Workbook>& book,
                      std::span<const CommandCall> calls, const SessionOptions& options);

// The same engine lifetime around `body` instead of a list of commands.
bool WithPrimedEngine(const std::shared_ptr<sheethost::Workbook>& book,
                      const SessionOptions& options, const std::function<void()>& body);
