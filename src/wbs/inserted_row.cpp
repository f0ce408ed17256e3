// A task typed into the row below the last one: it gets default times and a resource, and when it
// took the table's last bordered row the table grows by a row.
#include <string>

#include "calendar/calendar.h"
#include "core/engine_state.h"
#include "core/messages.h"
#include "gantt/chart.h"
#include "settings/settings.h"
#include "values/values.h"
#include "wbs/reschedule.h"
#include "wbs/sheet_events.h"

namespace {

// PasteSpecial's "values only".
constexpr int kPasteValues = -4163;

XlObject TaskColumns(std::int64_t row) {
    const SettingsRecord& settings = EngineSettings();
    const std::string number = std::to_string(row);
    return EngineWbsSheet().RangeOf(settings.firstCol + number + ":" + settings.lastCol + number);
}

// A sheet row is inserted at `row`, the typed row (now one lower) moves back up as values, and an
// empty bordered row stays below it for the next task, where the cursor goes.
void ExtendTable(const XlObject& target, std::int64_t row) {
    target.Call(".EntireRow.Insert");
    TaskColumns(row + 1).Call(".Copy");
    TaskColumns(row).Call(".PasteSpecial(%d)", kPasteValues);
    // Nothing stays on the clipboard, so that the next row insert inserts an empty row.
    EngineWorkbook().Put(".Application.CutCopyMode=%b", FALSE);
    TaskColumns(row + 1).ClearContents();
    EngineWbsSheet().Call(".Cells(%d,%d).Select", static_cast<int>(row + 1),
                          static_cast<int>(target.GetColumn()));
}

}  // namespace

void FillInsertedRow(const XlObject& target) {
    const std::int64_t row = target.GetRow();
    if (row == LastTableRow()) {
        ExtendTable(target, row);
    }
    const SettingsRecord& settings = EngineSettings();
    double start = 0;
    const ResourceRecord* resource = nullptr;
    if (row == settings.firstTaskRow) {
        resource = FirstResource();
        if (const CalendarDay* day = FirstCalendarDay()) {
            start = day->start;
        }
    } else if (TaskRecord* last = Tasks_Last()) {
        TaskRecord_ReadRow(*last);
        start = last->plannedEnd;
        resource = FindResource(last->resourceCell);
    }
    if (resource == nullptr) {
        ShowMessage("Please input resource information first!", MB_ICONINFORMATION);
        return;
    }
    // One chart column of work is the length a new task starts with.
    const std::int64_t minutes = EngineCalendarSettings().CSCalendarUnit;
    WritePlannedTimesOfDay(row, start, values::AddMinutes(start, minutes));
    // The resource cell names the resource by the key that tasks find it by.
    EngineWbsSheet()
        .Cell(row, settings.resourceColNo)
        .SetWide("Value", WideStringView(BstrGet(resource->keyText),
                                         static_cast<std::size_t>(BstrLength(resource->keyText))));
    TaskTable_Load();
    RedrawTasksFromRow(row);
}
