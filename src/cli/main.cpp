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
#include "cli/exit_codes.h"
#include "cli/render_command.h"
#include "cli/session.h"
#include "cli/user_edits.h"
#include "cli/workbook_commands.h"
#include "cli/workbook_file.h"
#include "values/values.h"

namespace fs = std::filesystem;

namespace {

struct CommonOptions {
    std::vector<sheethost::UserEdit> userEdits;
    std::string workbook;
    std::string output;
    bool overwrite = false;
    std::string now;
    std::string rows;
    std::optional<std::string> filterSetting;
};

void AddCommonOptions(CLI::App& command, CommonOptions& options, bool withRows) {
    command.add_option("WORKBOOK", options.workbook, "The workbook (.xlsx, .xlsm or .json)")
        ->required()
        ->check(CLI::ExistingFile);
    command.add_option("-o,--output", options.output,
                       "Where to write the result; without it nothing is saved");
    command.add_flag("--overwrite", options.overwrite, "Allow the output to replace the input");
    command.add_option("--now", options.now,
                       "Pin the current date and time, \"YYYY-MM-DD HH:MM\" (default: the clock)");
    if (withRows) {
        command.add_option("--rows", options.rows,
                           "The selected task rows FIRST:LAST (sheet row numbers, such as 12:14), "
                           "which the command works on");
    }
}

void AddFilterOption(CLI::App& command, CommonOptions& options) {
    command.add_option("--spec", options.filterSetting,
                       "Write the filter \"MODE,ARGUMENT\" into the settings sheet's cell A500 "
                       "first, as the workbook's filter dialog does (see the filter command's "
                       "help for the modes)");
}

int Run(const CommonOptions& options, const std::vector<CommandCall>& calls) {
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
    session.filterSetting = options.filterSetting;
    session.userEdits = options.userEdits;
    if (!options.output.empty() && !options.overwrite &&
        WouldReplaceInput(options.output, options.workbook)) {
        std::cerr << "vantora: the output would replace the input workbook; give --overwrite to "
                     "allow it\n";
        return kUsageError;
    }
    try {
        const auto book = ReadWorkbookFile(options.workbook);
        if (RefuseUnusable(*book) || !RunEngineSession(book, calls, session)) {
            return kUnusableWorkbook;
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

// --rows given to an engine command that does not work on the selection: says which ones do.
std::string MisplacedRows(int argc, char** argv) {
    const EngineCommand* command = argc > 1 ? FindEngineCommand(argv[1]) : nullptr;
    if (command == nullptr || command->usesSelection) return {};
    const bool rows = std::any_of(argv + 2, argv + argc, [](const char* argument) {
        return std::string_view(argument).starts_with("--rows");
    });
    if (!rows) return {};
    std::string selectionCommands;
    for (const EngineCommand& other : EngineCommands()) {
        if (!other.usesSelection) continue;
        selectionCommands += (selectionCommands.empty() ? "" : ", ") + std::string(other.name);
    }
    return std::string(command->name) + " works on the whole task table, not on selected rows; " +
           "--rows is for " + selectionCommands;
}

bool HasSubcommand(const CLI::App& app, std::string_view name) {
    const auto commands = app.get_subcommands([](const CLI::App*) { return true; });
    return std::any_of(commands.begin(), commands.end(),
                       [&](const CLI::App* command) { return command->get_name() == name; });
}

// new, check and convert: registered with the parser, run after it.
struct WorkbookCommands {
    CLI::App* newCommand;
    CLI::App* check;
    CLI::App* convert;
    std::shared_ptr<NewOptions> newOptions = std::make_shared<NewOptions>();
    std::shared_ptr<CommonOptions> options = std::make_shared<CommonOptions>();

    std::optional<int> Run() const {
        if (newCommand->parsed()) return RunNew(*newOptions);
        if (check->parsed()) return RunCheck(options->workbook);
        if (convert->parsed())
            return RunConvert(options->workbook, options->output, options->overwrite);
        return std::nullopt;
    }
};

WorkbookCommands AddWorkbookCommands(CLI::App& app) {
    WorkbookCommands commands{
        app.add_subcommand("new", "Make a blank project workbook, ready for your tasks"),
        app.add_subcommand(
            "check",
            "Tell what makes a workbook unusable or surprising, with the sheet, cell "
            "or row"),
        app.add_subcommand("convert",
                           "Write the workbook as another kind of file (.xlsx, .xlsm or .json) "
                           "without running any command"),
    };
    NewOptions& made = *commands.newOptions;
    commands.newCommand->add_option("FILE", made.file, "The new workbook (.xlsx, .xlsm or .json)")
        ->required();
    commands.newCommand->add_option("--start", made.start,
                                    "The first working day, YYYY-MM-DD (default: today)");
    commands.newCommand
        ->add_option("--days", made.workingDays,
                     "How many working days (Monday to Friday) the calendar holds; each "
                     "top-level task takes one")
        ->capture_default_str();
    commands.newCommand->add_flag("--overwrite", made.overwrite, "Replace FILE if it exists");
    CommonOptions& options = *commands.options;
    for (CLI::App* command : {commands.check, commands.convert}) {
        command->add_option("WORKBOOK", options.workbook, "The workbook (.xlsx, .xlsm or .json)")
            ->required()
            ->check(CLI::ExistingFile);
    }
    commands.convert->add_option("-o,--output", options.output, "The file to write")->required();
    commands.convert->add_flag("--overwrite", options.overwrite,
                               "Allow the output to replace the input");
    return commands;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app{
        "Runs the Vantora scheduling engine's commands on a workbook file. Start with "
        "'vantora new project.xlsx', type your tasks, then 'vantora check project.xlsx'."};
    app.footer(kExitCodes);
    app.require_subcommand(1);
    app.set_version_flag("--version", "vantora " VANTORA_VERSION);

    CommonOptions options;
    std::vector<CommandCall> calls;
    // One call per command, filled by its parser; the list never grows, so the values stay put.
    std::vector<CommandCall> parsed;
    parsed.reserve(EngineCommands().size());
    for (const EngineCommand& command : EngineCommands()) {
        CLI::App* sub = app.add_subcommand(command.name, command.help);
        AddCommonOptions(*sub, options, command.usesSelection);
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
            AddFilterOption(*sub, options);
        }
    }

    CLI::App* run = app.add_subcommand(
        "run",
        "Run several commands in one engine lifetime, in order, as the workbook's macros "
        "would call them one after another");
    AddCommonOptions(*run, options, true);
    AddFilterOption(*run, options);
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
    AddCommonOptions(*edit, options, false);
    AddUserEditOptions(*edit);
    edit->callback([&] {
        auto edits = UserEditsInOrder(*edit, parseError);
        if (!edits) {
            throw CLI::ValidationError("edit", parseError);
        }
        options.userEdits = std::move(*edits);
    });

    const WorkbookCommands workbookCommands = AddWorkbookCommands(app);

    if (argc > 1 && argv[1][0] != '-' && !HasSubcommand(app, argv[1])) {
        std::cerr << "vantora: " << UnknownCommand(argv[1]) << '\n';
        return kUsageError;
    }
    if (const std::string misplaced = MisplacedRows(argc, argv); !misplaced.empty()) {
        std::cerr << "vantora: " << misplaced << '\n';
        return kUsageError;
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& done) {
        return app.exit(done);
    } catch (const CLI::ParseError& error) {
        const std::string text = error.what();
        std::cerr << "vantora: " << text
                  << (text.find("--help") == std::string::npos ? " (vantora --help shows the usage)"
                                                               : "")
                  << '\n';
        return kUsageError;
    }
    if (render->parsed()) {
        return RunRender(renderRequest) ? kSuccess : kWorkbookError;
    }
    if (const auto code = workbookCommands.Run()) return *code;
    return Run(options, calls);
}
