#include "engine/engine_state.h"

#include "calendar/calendar.h"
#include "gantt/gantt.h"
#include "settings/settings.h"
#include "wbs/task_table.h"
#include "workbook/automation.h"

EngineState::EngineState() = default;
EngineState::~EngineState() = default;

EngineState& Engine() {
    static EngineState state;
    return state;
}

namespace {

XlObject ViewOf(const std::unique_ptr<XlRef>& holder) {
    return holder ? holder->View() : XlObject();
}

struct ReleaseEnumerator {
    void operator()(IEnumVARIANT* enumerator) const { enumerator->Release(); }
};

}  // namespace

XlObject EngineWorkbook() {
    return ViewOf(Engine().workbook);
}
XlObject EngineWbsSheet() {
    return ViewOf(Engine().wbsSheet);
}
XlObject EngineSettingsSheet() {
    return ViewOf(Engine().settingsSheet);
}
XlObject EngineResourceSheet() {
    return ViewOf(Engine().resourceSheet);
}

SettingsRecord& EngineSettings() {
    return *Engine().settings;
}
CalendarSettings& EngineCalendarSettings() {
    return *Engine().calendarSettings;
}
TaskTable& EngineTasks() {
    return *Engine().tasks;
}

XlRef SheetByCodeName(std::string_view codeName) {
    XlRef found;
    IEnumVARIANT* rawEnumerator = nullptr;
    if (FAILED(automation::EnumBegin(&rawEnumerator, EngineWorkbook().object(),
                                     OLESTR(".Worksheets")))) {
        return found;
    }
    const std::unique_ptr<IEnumVARIANT, ReleaseEnumerator> enumerator(rawEnumerator);
    for (;;) {
        IDispatch* sheet = nullptr;
        if (automation::EnumNextObject(enumerator.get(), &sheet) != S_OK || sheet == nullptr) {
            return found;
        }
        XlObject candidate(sheet);
        if (candidate.GetCodeName() == codeName) {
            found.Attach(candidate.Detach());
            return found;
        }
    }
}

void BindWorkbook(IDispatch* workbook) {
    EngineState& state = Engine();
    state.workbook = std::make_unique<XlRef>();
    state.workbook->Attach(workbook);
    state.wbsSheet = std::make_unique<XlRef>(SheetByCodeName("wsWBS"));
    state.settingsSheet = std::make_unique<XlRef>(SheetByCodeName("wsSettings"));
    state.resourceSheet = std::make_unique<XlRef>(SheetByCodeName("wsResource"));
}

void ReleaseEngineObjects() {
    EngineState& state = Engine();
    state.workbook.reset();
    state.wbsSheet.reset();
    state.settingsSheet.reset();
    state.resourceSheet.reset();
    FreeGanttStyles();
    state.calendarSettings.reset();
    state.settings.reset();
    TaskTable_Free();
}

void CreateEngineObjects() {
    EngineState& state = Engine();
    state.lastRuntimeError = 0;
    CreateGanttStyles();
    state.calendarSettings = std::make_unique<CalendarSettings>();
    state.settings = std::make_unique<SettingsRecord>();
    TaskTable_Init();
}

void SetLastRuntimeError(std::int32_t number) {
    Engine().lastRuntimeError = number;
}
