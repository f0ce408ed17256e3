#include "wbs/wbs_update.h"

#include <algorithm>
#include <string>

#include "calendar/calendar.h"
#include "calendar/task_tests.h"
#include "core/engine_state.h"
#include "core/messages.h"
#include "settings/settings.h"
#include "values/values.h"
#include "wbs/reschedule.h"
#include "wbs/task_status.h"

namespace {

// The WBS number and the name run together in messages, exactly as the workbook's users know them.
std::string TaskTitle(const TaskRecord& task) {
    return task.wbsNo + BstrText(task.nameCell);
}

void CheckResource(TaskRecord& task, const CalendarDay* currentDay) {
    if (ResourceRecord* resource = FindResource(task.resourceCell)) {
        if (EngineSettings().rescheduleFlag != 0) {
            PlaceTask(task, *resource, currentDay);
            // The release date is checked against the dates the placement has just written.
            TaskRecord_ReadRow(task);
        }
        // Written so that a release date that is not a number also warns.
        if (resource->releaseDate != 0 && !(resource->releaseDate >= task.plannedEnd)) {
            ShowMessage("Attention: Plan of task '" + TaskTitle(task) + "' is over " +
                            BstrText(task.resourceCell) + "'s release date.",
                        MB_ICONWARNING);
        }
        return;
    }
    // A recurring task names its cycle ("W2", "M") where others name a resource.
    if (ParseTaskCycle(task)) {
        return;
    }
    const std::string resourceText = BstrText(task.resourceCell);
    if (!resourceText.empty()) {
        ShowMessage("Can not get " + resourceText + "'s information from 'Resources' sheet.",
                    MB_ICONWARNING);
    } else {
        ShowMessage("Please specify resource for task '" + TaskTitle(task) + "'",
                    MB_ICONINFORMATION);
    }
}

// An ordinary task holds values only: formulas left from a time when it was a summary task are
// replaced by the values they show.
void FreezeRow(const TaskRecord& task) {
    const SettingsRecord& settings = EngineSettings();
    const XlObject sheet = EngineWbsSheet();
    // Asked of the whole row first: an ordinary task's row seldom holds a formula. Columns off the
    // sheet hold none.
    const std::int64_t left = std::max<std::int64_t>(settings.firstColNo, 1);
    const std::int64_t right = std::min(settings.lastColNo, kSheetColumns);
    if (left > right || task.row < 1 || task.row > kSheetRows ||
        sheet.RangeOf(BlockAddress(task.row, left, task.row, right)).GetTriState("HasFormula") ==
            XlObject::TriState::kFalse) {
        return;
    }
    for (std::int64_t column = settings.firstColNo; column <= settings.lastColNo; ++column) {
        const XlObject cell = sheet.Cell(task.row, column);
        if (cell.GetNumber("HasFormula") != 0) {
            const std::string value = cell.GetValue();
            cell.SetFormula("");
            cell.SetValue(value);
        }
    }
}

// Plain clock minutes: the calendar's working periods are not subtracted.
void WriteWorkMinutes(const TaskRecord& task) {
    const SettingsRecord& settings = EngineSettings();
    const XlObject sheet = EngineWbsSheet();
    if (task.plannedStart != 0 && task.plannedEnd != 0) {
        sheet.SetCell(task.row, settings.pvByTaskColNo,
                      std::to_string(values::MinutesBetween(task.plannedStart, task.plannedEnd)));
    }
    if (task.actualStart != 0 && task.actualEnd != 0) {
        sheet.SetCell(task.row, settings.acByTaskColNo,
                      std::to_string(values::MinutesBetween(task.actualStart, task.actualEnd)));
        sheet.SetCell(task.row, settings.percentCompleteColNo, "100");
    }
}

}  // namespace

void UpdatePass() {
    const CalendarDay* currentDay = nullptr;
    for (TaskRecord* task = Tasks_First(); task != nullptr; task = Tasks_Next(*task)) {
        TaskRecord_ReadRow(*task);
        // Each top-level group is one calendar day, and every resource starts the day free.
        if (task->level == 1 && task->isLeaf == 0 && task->groupIndex <= CalendarDayCount()) {
            currentDay = CalendarDayAt(task->groupIndex);
            LoadResources();
        }
        if (task->isLeaf == 1) {
            CheckResource(*task, currentDay);
        }
        // Nothing was written to the row since it was last read: the record holds what it shows.
        WriteBackTask(*task);
    }
}

void UpdateTask(TaskRecord& task) {
    TaskRecord_ReadRow(task);
    WriteBackTask(task);
}

void WriteBackTask(TaskRecord& task) {
    const SettingsRecord& settings = EngineSettings();
    EngineWbsSheet().SetCell(task.row, settings.wbsNoColNo, task.wbsNo);
    if (task.isLeaf == 1) {
        FreezeRow(task);
        WriteWorkMinutes(task);
    }
    CheckPredecessors(task);
    ColourTaskRow(task);
    // Deeper summaries are reached from their top-level summary.
    if (task.level == 1 && task.isLeaf == 0) {
        SummaryRollup(task);
    }
}
