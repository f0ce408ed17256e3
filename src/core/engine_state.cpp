#include "core/engine_state.h"

#include "workbook/automation.h"

EngineState& Engine() {
    // Deliberately never destroyed: see the header.
    static EngineState* const state = new EngineState();
    return *state;
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

GanttStyles& EngineGanttStyles() {
    return *Engine().ganttStyles;
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

void SetLastRuntimeError(std::int32_t number) {
    Engine().lastRuntimeError = number;
}
