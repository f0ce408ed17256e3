// The `edit` command: a user's edits of the task sheet replayed in the order given, each followed
// by the sheet event the spreadsheet program fires for it, so that what the engine does while
// someone types can be run without the program.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "sheethost/user_edits.h"

// What `vantora edit --help` says.
inline constexpr const char* kEditHelp =
    "Replay what a user does on the task sheet, in the order given, each followed by the sheet "
    "event the spreadsheet program fires: --set types into cells (the change event), "
    "--insert-row and --delete-row change whole rows (the change event), --select selects cells "
    "(the selection event, whose status bar text is printed). With the settings' auto-update "
    "mode off the engine ignores the changes.";

// Adds --set, --insert-row, --delete-row and --select to `command`.
void AddUserEditOptions(CLI::App& command);

// The edits given to `command`, in the order they were given on the command line; empty, with
// the reason in `error`, when one of them does not describe an edit.
std::optional<std::vector<sheethost::UserEdit>> UserEditsInOrder(const CLI::App& command,
                                                                 std::string& error);

// Makes each edit on the task sheet (the sheet whose code name is wsWBS) and passes the range the
// program would pass to the engine's event. A selection prints the status bar's text; an edit the
// program would refuse is reported on standard error and skipped.
void ReplayUserEdits(const sheethost::BookPtr& book, std::span<const sheethost::UserEdit> edits);
