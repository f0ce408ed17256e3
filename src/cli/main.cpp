// vantora: runs the engine's commands on a workbook file, without the spreadsheet program.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "cli/command_word.h"
#include "cli/commands.h"
#include "cli/render_command.h"
#include "cli/session.h"
#include "cli/user_edits.h"
#include "cli/workbook_file.h"
#include "values/values.h"

namespace fs = std::filesystem;

namespace {

// Exit codes, as --help lists them.
enum ExitCode {
    kSuccess = 0,
    kUsageError = 2,
    kWorkbookError = 3,
    kNotBuilt = 4,
    kUnusableSettings = 5,
};

constexpr const char* kExitCodes =
    "Exit codes: 0 done; 2 wrong usage; 3 the workbook cannot be read or written; 4 the command's "
    "engine part is not built yet; 5 the workbook's settings cannot be used.";

struct CommonOptions {
    std::vector<sheethost::UserEdit> userEdits;
    std::string workbook;
    std::string output;
    bool overwrite = false;
    std::string now;
    std::string rows;
    std::optional<std::string> filterSpec;
};

void AddCommonOptions(CLI::App& command, CommonOptions& options) {
    command.add_option("WORKBOOK", options.workbook, "The workbook (.xlsx, .xlsm or .json)")
        ->required()
        ->check(CLI::ExistingFile);
    command.add_option("-o,--output", options.output,
                       "Where to write the result; without it nothing is saved");
    command.add_flag("--overwrite", options.overwrite, "Allow the output to replace the input");
    command.add_option("--now", options.now,
                       "Pin the current date and time, \"YYYY-MM-DD HH:MM\" (default: the clock)");
    command.add_option("--rows", options.rows,
                       "The selected task rows FIRST:LAST, which the moves work on");
}

void AddFilterSpecOption(CLI::App& command, CommonOptions& options) {
    command.add_option("--spec", options.filterSpec,
                       "Write the filter \"MODE,ARGUMENT\" into the settings sheet's cell A500 "
                       "first, as the workbook's filter dialog does (see the filter command's "
                       "help for the modes)");
}

int Run(const CommonOptions& options, const std::vector<CommandCall>& calls) {
    for (const CommandCall& call : calls) {
        if (!call.command->built) {
            std::cerr << "vantora: the command '" << call.command->name
                      << "' is not built yet in this version of the engine\n";
            return kNotBuilt;
        }
    }
    SessionOptions session;
    if (!options.now.empty()) {
        session.now = values::ParseDateText(options.now);
        if (!session.now) {
            std::cerr << "vantora: --now must be a date and time such as \"2024-04-15 12:00\"\n";
            return kUsageError;
        }
    }
    if (!options.rows.empty()) {
        RowSpan rows{};
        char colon = 0;
        std::istringstream in(options.rows);
        if (!(in >> rows.first >> colon >> rows.last) || colon != ':' || rows.first < 1 ||
            rows.last < rows.first) {
            std::cerr << "vantora: --rows must be FIRST:LAST, such as 12:14\n";
            return kUsageError;
        }
        session.selectedRows = rows;
    }
    session.filterSpec = options.filterSpec;
    session.userEdits = options.userEdits;
    // A path the file system cannot look at (too long, a loop of links) is no input: the write
    // below reports it.
    std::error_code unreadable;
    if (!options.output.empty() && !options.overwrite &&
        fs::equivalent(options.output, options.workbook, unreadable)) {
        std::cerr << "vantora: the output would replace the input workbook; give --overwrite to "
                     "allow it\n";
        return kUsageError;
    }
    try {
        const auto book = ReadWorkbookFile(options.workbook);
        if (!RunEngineSession(book, calls, session)) {
            return kUnusableSettings;
        }
        for (const CommandCall& call : calls) {
            std::cout << "ran " << call.command->name << '\n';
        }
        if (options.output.empty()) {
            std::cout << "nothing saved (no --output given)\n";
        } else {
            WriteWorkbookFile(*book, options.workbook, options.output);
            std::cout << "saved " << options.output << '\n';
        }
    } catch (const WorkbookFileError& error) {
        std::cerr << "vantora: " << error.what() << '\n';
        return kWorkbookError;
    } catch (const std::filesystem::filesystem_error& error) {
        std::cerr << "vantora: " << error.path1().string() << ": " << error.code().message()
                  << '\n';
        return kWorkbookError;
    }
    return kSuccess;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app{"Runs the Vantora scheduling engine's commands on a workbook file."};
    app.footer(kExitCodes);
    app.require_subcommand(1);

    CommonOptions options;
    std::vector<CommandCall> calls;
    // One call per command, filled by its parser; the list never grows, so the values stay put.
    std::vector<CommandCall> parsed;
    parsed.reserve(EngineCommands().size());
    for (const EngineCommand& command : EngineCommands()) {
        CLI::App* sub = app.add_subcommand(command.name, command.help);
        AddCommonOptions(*sub, options);
        CommandCall& call = parsed.emplace_back(CommandCall{&command, {}});
        call.arguments.resize(command.arguments.size());
        for (std::size_t i = 0; i < command.arguments.size(); ++i) {
            const CommandArgument& argument = command.arguments[i];
            const std::string help =
                argument.help.empty() ? "The command's " + argument.name : argument.help;
            if (argument.hasDefault) {
                call.arguments[i] = argument.defaultValue;
                sub->add_option("--" + argument.name, call.arguments[i], help)
                    ->capture_default_str();
            } else {
                sub->add_option(argument.name, call.arguments[i], help)->required();
            }
        }
        sub->callback([&] { calls.push_back(call); });
        if (*command.details != '\0') {
            sub->footer(command.details);
        }
        if (std::string_view(command.name) == "filter") {
            AddFilterSpecOption(*sub, options);
        }
    }

    CLI::App* run = app.add_subcommand(
        "run",
        "Run several commands in one engine lifetime, in order, as the workbook's macros "
        "would call them one after another");
    AddCommonOptions(*run, options);
    AddFilterSpecOption(*run, options);
    std::vector<std::string> words;
    run->add_option("COMMAND", words,
                    "A command name, with its whole-number arguments after a colon: update-wbs, "
                    "gantt:2, offset:1,3")
        ->required();
    std::string parseError;
    run->callback([&] {
        for (const std::string& word : words) {
            auto call = ParseCommandWord(word, parseError);
            if (!call) {
                throw CLI::ValidationError("COMMAND", parseError);
            }
            calls.push_back(*call);
        }
    });

    RenderRequest renderRequest;
    const CLI::App* render = AddRenderCommand(app, renderRequest);
    CLI::App* edit = app.add_subcommand("edit", kEditHelp);
    AddCommonOptions(*edit, options);
    AddUserEditOptions(*edit);
    edit->callback([&] {
        auto edits = UserEditsInOrder(*edit, parseError);
        if (!edits) {
            throw CLI::ValidationError("edit", parseError);
        }
        options.userEdits = std::move(*edits);
    });

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const int code = app.exit(error);
        return code == 0 ? kSuccess : kUsageError;
    }
    if (render->parsed()) {
        return RunRender(renderRequest) ? kSuccess : kWorkbookError;
    }
    return Run(options, calls);
}
