#include "sheethost/user_edits.h"

#include <charconv>

#include "sheethost/address.h"
#include "sheethost/cell_values.h"
#include "sheethost/rows_edit.h"
#include "sheethost/sheet_edit.h"

namespace sheethost {
namespace {

std::optional<int> ParseRow(std::string_view text) {
    int row = 0;
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), row);
    if (problem != std::errc() || end != text.data() + text.size() || row < 1 || row > kMaxRow) {
        return std::nullopt;
    }
    return row;
}

Area WholeRow(int row) {
    return Area{row, 1, row, kMaxColumn};
}

bool TypeIntoBlock(Sheet& sheet, const Area& area, const std::string& text, std::string& error) {
    if (text.empty()) {
        ClearContents(sheet, {area});
        return true;
    }
    if (double(area.Rows()) * area.Columns() > kMostCellsAtOnce) {
        error = "typing into " + AreaAddress(area, false, false) + " would fill too many cells";
        return false;
    }
    // The first cell tells whether the program takes the text at all; the others take it alike.
    if (!TypeIntoCell(sheet, area.top, area.left, text)) {
        error = "the program does not accept '" + text + "' (a formula it cannot read)";
        return false;
    }
    for (int row = area.top; row <= area.bottom; ++row) {
        for (int column = area.left; column <= area.right; ++column) {
            TypeIntoCell(sheet, row, column, text);
        }
    }
    return true;
}

}  // namespace

std::optional<UserEdit> ParseUserEdit(UserEditKind kind, std::string_view argument,
                                      std::string& error) {
    UserEdit edit{kind, {}, {}};
    if (kind == UserEditKind::kInsertRow || kind == UserEditKind::kDeleteRow) {
        const auto row = ParseRow(argument);
        if (!row) {
            error = "'" + std::string(argument) + "' is not a row number";
            return std::nullopt;
        }
        edit.area = WholeRow(*row);
        return edit;
    }
    std::string_view address = argument;
    if (kind == UserEditKind::kType) {
        const auto equals = argument.find('=');
        if (equals == std::string_view::npos) {
            error = "'" + std::string(argument) + "' must be CELLS=TEXT, such as U12=100 or S14=";
            return std::nullopt;
        }
        address = argument.substr(0, equals);
        edit.text = std::string(argument.substr(equals + 1));
    }
    const auto area = ParseArea(address);
    if (!area) {
        error = "'" + std::string(address) + "' is not a cell or a block of cells";
        return std::nullopt;
    }
    edit.area = *area;
    return edit;
}

IDispatch* PerformUserEdit(const BookPtr& book, const SheetPtr& sheet, const UserEdit& edit,
                           std::string& error) {
    switch (edit.kind) {
        case UserEditKind::kType:
            if (!TypeIntoBlock(*sheet, edit.area, edit.text, error)) return nullptr;
            break;
        case UserEditKind::kInsertRow:
            if (!InsertRows(*book, *sheet, edit.area.top, 1)) {
                error = "inserting row " + std::to_string(edit.area.top) +
                        " would push cells off the sheet";
                return nullptr;
            }
            break;
        case UserEditKind::kDeleteRow:
            DeleteRows(*book, *sheet, edit.area.top, 1);
            break;
        case UserEditKind::kSelect:
            sheet->selection = {edit.area};
            sheet->activeCell = {edit.area.top, edit.area.left};
            for (std::size_t k = 0; k < book->sheets.size(); ++k) {
                if (book->sheets[k] == sheet) book->activeSheet = k;
            }
            break;
    }
    return NewRangeObject(book, sheet, {edit.area});
}

}  // namespace sheethost
