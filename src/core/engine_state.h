// The engine state: what lives from kpInit to kpQuit and is shared by every command.
//
// The workbook and its three sheets are held by XlRef holders: the references belong to the
// workbook's macros, which passed them in, so the engine never releases them. The subsystem records
// are created empty by kpInit and freed by kpQuit, each by the subsystem that owns it; the state
// only points at them, so this floor knows no subsystem beyond the names of its records.
//
// The state itself is never destroyed. When the spreadsheet program unloads the library without a
// kpQuit, the host objects and wide strings the records still hold may already be gone: they are
// forgotten then, never released. Only kpQuit releases.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "com/com.h"
#include "workbook/workbook.h"

struct GanttStyles;
struct CalendarSettings;
struct SettingsRecord;
struct TaskTable;

struct EngineState {
    std::unique_ptr<XlRef> workbook;
    std::unique_ptr<XlRef> wbsSheet;
    std::unique_ptr<XlRef> settingsSheet;
    std::unique_ptr<XlRef> resourceSheet;
    // Owned by their subsystems' create and free functions; null outside kpInit .. kpQuit.
    GanttStyles* ganttStyles = nullptr;
    CalendarSettings* calendarSettings = nullptr;
    SettingsRecord* settings = nullptr;
    TaskTable* tasks = nullptr;
    // The runtime's error number of the current export's last run-time failure; 0 when none
    // happened. Every export starts with it cleared.
    std::int32_t lastRuntimeError = 0;
};

// The one engine state of the loaded library.
EngineState& Engine();

// Non-owning views of the bound workbook and sheets; empty views when nothing is bound (the
// automation layer then fails every call on them quietly).
XlObject EngineWorkbook();
XlObject EngineWbsSheet();
XlObject EngineSettingsSheet();
XlObject EngineResourceSheet();

// The records; meant for commands running between kpInit and kpQuit.
GanttStyles& EngineGanttStyles();
SettingsRecord& EngineSettings();
CalendarSettings& EngineCalendarSettings();
TaskTable& EngineTasks();

// The first worksheet of the engine's workbook whose code name equals `codeName` exactly. The
// reference the enumeration handed out for it is kept (the holder never releases it); every other
// worksheet is released. Null when there is none or the workbook cannot be enumerated.
XlRef SheetByCodeName(std::string_view codeName);

// Records a run-time failure: the command that hits it stops, and kpSetWorkBook reports it.
void SetLastRuntimeError(std::int32_t number);

// The runtime's error number for a division by zero.
inline constexpr std::int32_t kRuntimeErrorDivisionByZero = 11;
