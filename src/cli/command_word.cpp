#include "cli/command_word.h"

#include <algorithm>
#include <charconv>

#include "cli/commands.h"

namespace {

// The commands that are not engine commands, for the suggestion after a mistyped name.
constexpr std::string_view kWorkbookCommands[] = {"run", "new", "check", "convert"};

}  // namespace

std::string UnknownCommand(std::string_view name) {
    std::string text = "unknown command '" + std::string(name) + "'";
    const std::string closest = ClosestCommandName(name, kWorkbookCommands);
    if (!closest.empty()) text += "; did you mean '" + closest + "'?";
    return text + " (vantora --help lists the commands)";
}

std::optional<CommandCall> ParseCommandWord(const std::string& word, std::string& error) {
    const auto colon = word.find(':');
    const std::string name = word.substr(0, colon);
    const EngineCommand* command = FindEngineCommand(name);
    if (command == nullptr) {
        error = UnknownCommand(name);
        return std::nullopt;
    }
    CommandCall call{command, {}};
    if (colon != std::string::npos) {
        std::string list = word.substr(colon + 1);
        for (std::size_t at = 0; at <= list.size();) {
            const auto comma = std::min(list.find(',', at), list.size());
            // The whole of each argument is the number: "5abc" is no 5.
            int value = 0;
            const auto [end, fault] = std::from_chars(list.data() + at, list.data() + comma, value);
            if (fault != std::errc() || end != list.data() + comma) {
                error = "'" + word + "': the arguments must be whole numbers";
                return std::nullopt;
            }
            call.arguments.push_back(value);
            at = comma + 1;
        }
    }
    for (std::size_t i = call.arguments.size(); i < command->arguments.size(); ++i) {
        if (command->arguments[i].hasDefault) {
            call.arguments.push_back(command->arguments[i].defaultValue);
        }
    }
    if (call.arguments.size() != command->arguments.size()) {
        error =
            "'" + name + "' takes " + std::to_string(command->arguments.size()) + " argument(s)";
        return std::nullopt;
    }
    return call;
}
