#include "engine/lifecycle.h"

#include <memory>

#include "calendar/calendar.h"
#include "core/engine_state.h"
#include "gantt/gantt.h"
#include "settings/settings.h"
#include "wbs/task_table.h"

void BindWorkbook(IDispatch* workbook) {
    EngineState& state = Engine();
    state.workbook = std::make_unique<XlRef>();
    state.workbook->Attach(workbook);
    state.wbsSheet = std::make_unique<XlRef>(SheetByCodeName("wsWBS"));
    state.settingsSheet = std::make_unique<XlRef>(SheetByCodeName("wsSettings"));
    state.resourceSheet = std::make_unique<XlRef>(SheetByCodeName("wsResource"));
}

void CreateEngineObjects() {
    CreateGanttStyles();
    CreateCalendarSettings();
    CreateSettingsRecord();
    TaskTable_Init();
}

void ReleaseEngineObjects() {
    EngineState& state = Engine();
    state.workbook.reset();
    state.wbsSheet.reset();
    state.settingsSheet.reset();
    state.resourceSheet.reset();
    FreeGanttStyles();
    FreeCalendarSettings();
    FreeSettingsRecord();
    TaskTable_Free();
}
