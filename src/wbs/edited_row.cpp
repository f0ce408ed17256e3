// One edited cell of a task row: the cells of the row that follow from it, then the redraw.
#include <cmath>
#include <string>

#include "core/engine_state.h"
#include "gantt/chart.h"
#include "settings/settings.h"
#include "values/values.h"
#include "wbs/sheet_events.h"
#include "wbs/wbs_update.h"

namespace {

// The task sheet's date cells hold times of the task's day: whole days are left out. Taken to the
// second, so that the day's serial leaves no rounding error in the time.
double TimeOfDay(double serial) {
    const values::DateTime parts = values::SerialToDateTime(serial);
    return values::TimeSerial(parts.hour, parts.minute, parts.second);
}

// A started task with no percentage is shown as 20 % done.
constexpr char kStartedPercent[] = "20";
constexpr char kCompletePercent[] = "100";

class RowCells {
  public:
    explicit RowCells(const TaskRecord& record)
        : settings_(EngineSettings()), sheet_(EngineWbsSheet()), row_(record.row) {}

    XlObject At(std::int64_t column) const { return sheet_.Cell(row_, column); }
    XlObject Percent() const { return At(settings_.percentCompleteColNo); }
    XlObject ActualStart() const { return At(settings_.actualStartDateColNo); }
    XlObject ActualEnd() const { return At(settings_.actualEndDateColNo); }

  private:
    const SettingsRecord& settings_;
    XlObject sheet_;
    std::int64_t row_;
};

bool IsEmpty(const XlObject& cell) {
    return cell.GetValue().empty();
}

// The percent, actual start and actual end made to agree after one of them was edited.
void AlignProgress(const TaskRecord& record, std::int64_t column) {
    const SettingsRecord& settings = EngineSettings();
    const RowCells cells(record);
    const XlObject percent = cells.Percent();
    const XlObject actualStart = cells.ActualStart();
    const XlObject actualEnd = cells.ActualEnd();
    const auto startAsPlanned = [&] {
        if (IsEmpty(actualStart)) {
            actualStart.SetValueNum(TimeOfDay(record.plannedStart));
        }
    };
    if (column == settings.percentCompleteColNo) {
        const double typed = values::Val(percent.GetValue());
        if (typed >= 100) {
            if (IsEmpty(actualEnd)) {
                actualEnd.SetValueNum(TimeOfDay(record.plannedEnd));
            }
            startAsPlanned();
            percent.SetValue(kCompletePercent);
        } else if (typed > 0) {
            startAsPlanned();
            actualEnd.SetValue("");
        } else {
            actualStart.SetValue("");
            actualEnd.SetValue("");
        }
    }
    if (column == settings.actualEndDateColNo) {
        if (!IsEmpty(actualEnd)) {
            percent.SetValue(kCompletePercent);
            startAsPlanned();
        } else if (!IsEmpty(actualStart)) {
            percent.SetValue(kStartedPercent);
        }
    }
    if (column == settings.actualStartDateColNo) {
        if (IsEmpty(actualStart)) {
            actualEnd.SetValue("");
            percent.SetValue("");
        } else if (IsEmpty(percent)) {
            percent.SetValue(kStartedPercent);
        }
    }
}

// The end `work` minutes after `start`, both read from the row; false when either is missing.
bool WriteEndFromWork(std::int64_t row, const std::string& startColumn,
                      const std::string& workColumn, const std::string& endColumn) {
    const XlObject sheet = EngineWbsSheet();
    const std::string number = std::to_string(row);
    const double start = sheet.RangeOf(startColumn + number).GetValueNum();
    const auto work =
        static_cast<std::int64_t>(std::nearbyint(sheet.RangeOf(workColumn + number).GetValueNum()));
    if (start <= 0 || work <= 0) {
        return false;
    }
    sheet.RangeOf(endColumn + number)
        .SetValue(values::NumberText(TimeOfDay(values::AddMinutes(start, work))));
    return true;
}

// A start or a work edited: the end follows. The columns are taken as the settings order them,
// from the work column to the start column.
void EndFromStartAndWork(const TaskRecord& record, std::int64_t column) {
    const SettingsRecord& settings = EngineSettings();
    if (column >= settings.pvByTaskColNo && column <= settings.plannedStartDateColNo) {
        WriteEndFromWork(record.row, settings.plannedStartDateCol, settings.pvByTaskCol,
                         settings.plannedEndDateCol);
    } else if (column >= settings.acByTaskColNo && column <= settings.actualStartDateColNo) {
        if (WriteEndFromWork(record.row, settings.actualStartDateCol, settings.acByTaskCol,
                             settings.actualEndDateCol)) {
            RowCells(record).Percent().SetValue(kCompletePercent);
        }
    }
}

}  // namespace

void CompleteRowCells(TaskRecord& record, std::int64_t column) {
    if (record.isLeaf != 1) {
        return;
    }
    AlignProgress(record, column);
    EndFromStartAndWork(record, column);
}

void CompleteEditedRow(TaskRecord& record, const XlObject& target) {
    const std::int64_t column = target.GetColumn();
    CompleteRowCells(record, column);
    if (column == EngineSettings().predecessorsColNo) {
        UpdateTask(record);
        DrawAllConnectors();
    } else {
        RedrawTaskBranch(record, true);
    }
}
