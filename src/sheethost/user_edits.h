// What a user does by hand on a worksheet, carried out the way the spreadsheet program carries it
// out before it fires the sheet's event: typing into cells, inserting or deleting a whole row,
// selecting cells. The command line and the DLL scenarios replay a user's session with these, and
// hand the range they answer to the engine's event exports as the program would.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "com/com.h"
#include "sheethost/objects.h"

namespace sheethost {

enum class UserEditKind {
    kType,       // "U12=100": the text typed into every cell of the block (empty clears)
    kInsertRow,  // "41": an empty row inserted before row 41
    kDeleteRow,  // "12": row 12 deleted, the rows below move up
    kSelect,     // "X12:Z12": the block becomes the selection
};

struct UserEdit {
    UserEditKind kind;
    Area area;
    std::string text;  // what is typed, for kType
};

// The edit of `kind` described by `argument`; empty, with the reason in `error`, when the
// argument does not describe one.
std::optional<UserEdit> ParseUserEdit(UserEditKind kind, std::string_view argument,
                                      std::string& error);

// Carries out the edit on `sheet`, and answers the Range object the program passes to the sheet's
// event (a new reference, which the event export releases): the cells typed into, the whole row
// inserted or deleted, the selection. Null, with the reason in `error`, when the program would
// refuse the edit (a formula it cannot read, a row that would push cells off the sheet); the
// sheet is then unchanged.
IDispatch* PerformUserEdit(const BookPtr& book, const SheetPtr& sheet, const UserEdit& edit,
                           std::string& error);

// True for the selection event, false for the change event.
inline bool IsSelection(const UserEdit& edit) {
    return edit.kind == UserEditKind::kSelect;
}

}  // namespace sheethost
