#include "cli/user_edits.h"

#include <iostream>
#include <map>

#include "engine/exports.h"

namespace {

struct EditOption {
    const char* name;
    sheethost::UserEditKind kind;
    const char* help;
};

constexpr EditOption kEditOptions[] = {
    {"--set", sheethost::UserEditKind::kType,
     "CELLS=TEXT: type TEXT into the cells (U12=100; S14= clears; B40:V40= clears a block)"},
    {"--insert-row", sheethost::UserEditKind::kInsertRow, "ROW: insert an empty row before ROW"},
    {"--delete-row", sheethost::UserEditKind::kDeleteRow, "ROW: delete row ROW"},
    {"--select", sheethost::UserEditKind::kSelect,
     "CELLS: select the cells (X12:Z12) and print the status bar's text"},
};

sheethost::SheetPtr TaskSheet(const sheethost::Workbook& book) {
    for (const auto& sheet : book.sheets) {
        if (sheet->codeName == "wsWBS") return sheet;
    }
    return nullptr;
}

}  // namespace

void AddUserEditOptions(CLI::App& command) {
    for (const EditOption& option : kEditOptions) {
        // Each occurrence takes one value; every occurrence is kept.
        command.add_option(option.name, option.help)
            ->expected(1)
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    }
}

std::optional<std::vector<sheethost::UserEdit>> UserEditsInOrder(const CLI::App& command,
                                                                 std::string& error) {
    // Each option keeps its own values in order; the parse order says which option came when.
    std::map<const CLI::Option*, std::size_t> used;
    std::vector<sheethost::UserEdit> edits;
    for (const CLI::Option* option : command.parse_order()) {
        for (const EditOption& known : kEditOptions) {
            if (option->get_name() != known.name) continue;
            const std::size_t index = used[option]++;
            const auto edit =
                sheethost::ParseUserEdit(known.kind, option->results().at(index), error);
            if (!edit) {
                error = std::string(known.name) + " " + error;
                return std::nullopt;
            }
            edits.push_back(*edit);
        }
    }
    if (edits.empty()) {
        error = "give at least one of --set, --insert-row, --delete-row, --select";
        return std::nullopt;
    }
    return edits;
}

void ReplayUserEdits(const sheethost::BookPtr& book, std::span<const sheethost::UserEdit> edits) {
    const sheethost::SheetPtr sheet = TaskSheet(*book);
    if (!sheet) {
        std::cerr << "vantora: the workbook has no task sheet (code name wsWBS) to edit\n";
        return;
    }
    for (const sheethost::UserEdit& edit : edits) {
        std::string error;
        IDispatch* target = sheethost::PerformUserEdit(book, sheet, edit, error);
        if (target == nullptr) {
            std::cerr << "vantora: the edit is refused: " << error << '\n';
            continue;
        }
        // The event export releases the range once, as the program's event passes it.
        if (sheethost::IsSelection(edit)) {
            kpWBSEventOnSelectionChange(&target);
            std::cout << "status bar: " << book->statusBar.value_or("(the program's own)") << '\n';
        } else {
            kpWBSEventOnChange(&target);
        }
    }
}
