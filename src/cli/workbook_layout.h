// The layout the engine expects of a workbook: its sheets by code name and the named cells of the
// settings sheet, with what each means. `vantora new` writes a workbook of this layout and
// `vantora check` measures a workbook against it.
#pragma once

#include <string_view>
#include <vector>

// What a named setting holds, and so what makes its value meaningless.
enum class SettingKind {
    kSheetName,       // the tab name of the task sheet
    kColumn,          // column letters, "A" to "XFD", upper case
    kOptionalColumn,  // column letters, or empty when the workbook does without the column
    kCellAddress,     // one cell, such as "N1"
    kRow,             // a row number, 1 or more
    kNumber,          // any whole number
    kSeparator,       // a text of at least one character
    kFlag,            // 0 or 1
    kUnit,            // minutes per chart column, more than 0
    kRangeAddress,    // a block of cells, such as "W5:DA44"
    kBarStyle,        // 0 to 6
};

struct SettingCell {
    std::string_view key;
    SettingKind kind;
    // The commands cannot run sensibly without it (a missing one only surprises otherwise).
    bool required;
    // The value a new workbook gets (CSBodyRange is computed from its calendar).
    std::string_view blankValue;
    std::string_view meaning;
};

// In the order the settings sheet lists them.
const std::vector<SettingCell>& SettingCells();

struct SheetRole {
    std::string_view codeName;
    std::string_view tabName;  // as a new workbook names it
    bool required;
    std::string_view role;
};

const std::vector<SheetRole>& SheetRoles();
