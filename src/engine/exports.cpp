// The exported commands: each is a short fixed sequence that calls the subsystems doing the work.
#include "engine/exports.h"

#include <string>

#include "calendar/calendar.h"
#include "core/clock.h"
#include "core/engine_state.h"
#include "engine/lifecycle.h"
#include "engine/refresh.h"
#include "gantt/chart.h"
#include "gantt/progress_lines.h"
#include "gantt/templates.h"
#include "reports/reports.h"
#include "settings/settings.h"
#include "wbs/filter.h"
#include "wbs/sheet_events.h"
#include "wbs/task_moves.h"
#include "wbs/task_table.h"
#include "wbs/visible_rows.h"
#include "wbs/wbs_update.h"
#include "workbook/automation.h"
#include "workbook/workbook.h"

namespace {

// What the workbook's macros passed by reference; null when they passed no variable at all.
IDispatch* Dereference(IDispatch** reference) {
    return reference != nullptr ? *reference : nullptr;
}

// What every export does around its own steps. The runtime's error number belongs to the call
// that raised it: an error of an earlier command must not make a later kpSetWorkBook fail. The
// program does not redraw while the command writes, and its screen updating is put back as it
// was however the command ends.
class ExportScope {
  public:
    ExportScope() {
        SetLastRuntimeError(0);
        ForgetTemplates();
        const XlObject workbook = EngineWorkbook();
        if (workbook.IsNothing()) {
            return;
        }
        application_ = workbook.GetObject("Application");
        screenWasUpdating_ =
            application_.GetTriState("ScreenUpdating") == XlObject::TriState::kTrue;
        if (screenWasUpdating_) {
            application_.Put(".ScreenUpdating=%b", FALSE);
        }
    }
    ~ExportScope() {
        if (screenWasUpdating_) {
            application_.Put(".ScreenUpdating=%b", TRUE);
        }
    }
    ExportScope(const ExportScope&) = delete;
    ExportScope& operator=(const ExportScope&) = delete;

  private:
    XlObject application_;
    bool screenWasUpdating_ = false;
};

}  // namespace

extern "C" {

void kpInit() {
    const ExportScope scope;
    automation::AutomationInit(TRUE, TRUE);
    automation::ToggleErrors(FALSE);
    ReleaseEngineObjects();
    CreateEngineObjects();
}

void kpQuit() {
    const ExportScope scope;
    automation::AutomationShutdown(FALSE);
    FreeResources();
    FreeCalendarDays();
    ReleaseEngineObjects();
}

std::int32_t kpSetWorkBook(IDispatch** workbook) {
    const ExportScope scope;
    BindWorkbook(Dereference(workbook));
    return Engine().lastRuntimeError;
}

void kpDrawCalendar(std::int32_t unit) {
    const ExportScope scope;
    if (unit > 0) {
        EngineSettingsSheet().RangeOf("CSCalendarUnit").SetValue(std::to_string(unit));
    }
    if (!RefreshSettings()) {
        return;
    }
    DrawCalendarSheet();
    // The bars are laid over the new grid, from the task sheet as it stands now.
    LoadResources();
    TaskTable_Load();
    DrawAllTaskBars();
}

void kpDrawGanntChart(std::int32_t style) {
    const ExportScope scope;
    EngineSettingsSheet().RangeOf("GanntBarStyle").SetValue(std::to_string(style));
    if (!RefreshSettings()) {
        return;
    }
    // The chart shows the task sheet as it stands now, with the resources' bar looks.
    LoadResources();
    TaskTable_Load();
    const AllTaskRowsShown shown(EngineSettings().filterRows);
    DrawAllTaskBars();
}

void kpUpdateWBS() {
    const ExportScope scope;
    if (!RefreshSettings()) {
        return;
    }
    LoadResources();
    SettingsRecord& settings = EngineSettings();
    const std::int64_t savedRescheduleFlag = settings.rescheduleFlag;
    settings.rescheduleFlag = 0;
    TaskTable_Load();
    // Rows the user hid by hand are taken over as the filter.
    settings.filterRows = VisibleRowsText();
    const AllTaskRowsShown shown(settings.filterRows);
    UpdatePass();
    settings.rescheduleFlag = savedRescheduleFlag;
}

void kpWBSReschedule() {
    const ExportScope scope;
    if (!RefreshSettings()) {
        return;
    }
    LoadResources();
    SettingsRecord& settings = EngineSettings();
    // Unlike the update, the list kept from the last filter or update is used as it is.
    const AllTaskRowsShown shown(settings.filterRows);
    const std::int64_t savedRescheduleFlag = settings.rescheduleFlag;
    settings.rescheduleFlag = 1;
    TaskTable_Load();
    UpdatePass();
    settings.rescheduleFlag = savedRescheduleFlag;
    DrawAllTaskBars();
}

void kpWBSEventOnChange(IDispatch** target) {
    const ExportScope scope;
    const XlObject range(Dereference(target));
    OnSheetChange(range);
}

void kpWBSEventOnSelectionChange(IDispatch** target) {
    const ExportScope scope;
    const XlObject range(Dereference(target));
    OnSelectionChange(range);
}

void kpTasksMoveUp() {
    const ExportScope scope;
    MoveTasks(-1);
}

void kpTasksMoveDown() {
    const ExportScope scope;
    MoveTasks(+1);
}

void kpTasksMoveRight() {
    const ExportScope scope;
    IndentTasks(+1);
}

void kpTasksMoveLeft() {
    const ExportScope scope;
    IndentTasks(-1);
}

void kpTasksOffset(std::int32_t first, std::int32_t second) {
    const ExportScope scope;
    OffsetTasks(first, second);
}

void kpWBSFilter() {
    const ExportScope scope;
    FilterCommand();
}

void kpDrawProgressLines() {
    const ExportScope scope;
    DrawProgressLines();
}

void kpEVMByTask() {
    const ExportScope scope;
    EvmByTaskReport(0);
}

void kpEVMByProject(std::int32_t first, std::int32_t second) {
    const ExportScope scope;
    PrepareProjectEvm(first, second);
    WriteProjectEvmReport();
}

void kpWorkload(std::int32_t first, std::int32_t second) {
    const ExportScope scope;
    CollectWorkload();
    WriteWorkloadReport(first, second);
}

void kpSetMessageReceiver(MessageReceiver receiver) {
    SetMessageReceiver(receiver);
}

void kpSetStatusDate(double serial) {
    PinNow(serial);
}

}  // extern "C"
