#include "cli/settings_checks.h"

#include <cstdint>
#include <iostream>
#include <string>

#include "core/engine_state.h"
#include "settings/settings.h"
#include "wbs/task_table.h"
#include "workbook/workbook.h"

namespace {

// "WSFirstTaskRow (cell $C$5 of the settings sheet "Settings")".
std::string Place(const char* key) {
    const XlObject sheet = EngineSettingsSheet();
    const XlObject cell = sheet.RangeOf(key);
    if (cell.IsNothing())
        return std::string(key) + " (no cell of the settings sheet has this name)";
    return std::string(key) + " (cell " + cell.GetString("Address") + " of the settings sheet \"" +
           sheet.GetName() + "\")";
}

}  // namespace

bool SettingsAreUsable() {
    const SettingsRecord& settings = EngineSettings();
    bool usable = true;
    auto refuse = [&](const std::string& text) {
        std::cerr << text << '\n';
        usable = false;
    };
    if (settings.firstTaskRow < 1 || settings.firstTaskRow > kSheetRows) {
        refuse(Place("WSFirstTaskRow") + " is " + std::to_string(settings.firstTaskRow) +
               ": the first task row must be a row of the sheet, 1 to 1,048,576.");
    }
    for (const ColumnSetting& column : ColumnSettings()) {
        const std::string& letters = settings.*column.letters;
        const std::int64_t number = settings.*column.number;
        const bool names = column.number == &SettingsRecord::taskNameColNo;
        const std::int64_t last = names ? kSheetColumns - kNameColumns + 1 : kSheetColumns;
        if ((letters.empty() && !names) || (number >= 1 && number <= last)) continue;
        refuse(Place(column.key) + " is \"" + letters + "\" (column " + std::to_string(number) +
               "): " +
               (names ? "the ten task-name columns that start there must lie within the sheet's "
                        "16,384 columns."
                      : "a column of the sheet is given by its letters, A to XFD."));
    }
    return usable;
}

void WarnAboutTaskRowsPastTheLimit() {
    const std::int64_t pastTheLimit = EngineSettings().firstTaskRow + kMaxTaskRows;
    if (EngineTasks().taskCount < kMaxTaskRows || !IsTaskRow(pastTheLimit)) return;
    std::cerr << "The task sheet holds more than 10,000 task rows: the rows from row "
              << pastTheLimit
              << " on are past the limit and get no WBS number, no checks and no drawing.\n";
}
