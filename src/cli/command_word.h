// The command words of "vantora run": a command name and its whole-number arguments.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "cli/session.h"

// "gantt:2" or "offset:1,3"; missing arguments take their defaults. Null, with the reason in
// `error`, for an unknown name, an argument that is not wholly a number, or a wrong count.
std::optional<CommandCall> ParseCommandWord(const std::string& word, std::string& error);

// "unknown command 'NAME'", with the closest command's name when one is near.
std::string UnknownCommand(std::string_view name);
