// The engine commands the program offers, one per export of the library.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// A whole-number argument of an export: given after the workbook on the command line, or, when it
// has a default, as an option "--name N".
struct CommandArgument {
    CommandArgument(std::string name, bool hasDefault = false, int defaultValue = 0,
                    std::string help = {})
        : name(std::move(name)),
          hasDefault(hasDefault),
          defaultValue(defaultValue),
          help(std::move(help)) {}

    std::string name;
    bool hasDefault = false;
    int defaultValue = 0;
    // What the number means to a planner; "The command's <name>" when empty.
    std::string help;
};

struct EngineCommand {
    const char* name;
    const char* help;
    std::vector<CommandArgument> arguments;
    void (*run)(std::span<const int> arguments);
    // The command works on the selected task rows, which --rows gives.
    bool usesSelection = false;
    // More about the arguments, shown under the command's own --help.
    const char* details = "";
};

const std::vector<EngineCommand>& EngineCommands();
const EngineCommand* FindEngineCommand(std::string_view name);
// The known command name closest to a mistyped one (engine commands and `others`), or empty when
// none is close.
std::string ClosestCommandName(std::string_view name, std::span<const std::string_view> others);
