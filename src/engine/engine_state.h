// The engine state: what lives from kpInit to kpQuit and is shared by every command.
//
// The workbook and its three sheets are held by XlRef holders: the references belong to the
// workbook's macros, which passed them in, so the engine never releases them. The records are
// created empty by kpInit and freed by kpQuit. The Gantt drawing state lives with the chart drawing
// and the calendar-day and resource lists with the calendar, which create, load and free them.
//
// The record accessors are meant for commands running between kpInit and kpQuit; outside that span
// the records do not exist.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "com/com.h"
#include "workbook/workbook.h"

struct SettingsRecord;
struct CalendarSettings;
struct TaskTable;

struct EngineState {
    EngineState();
    ~EngineState();
    EngineState(const EngineState&) = delete;
    EngineState& operator=(const EngineState&) = delete;

    std::unique_ptr<XlRef> workbook;
    std::unique_ptr<XlRef> wbsSheet;
    std::unique_ptr<XlRef> settingsSheet;
    std::unique_ptr<XlRef> resourceSheet;
    std::unique_ptr<CalendarSettings> calendarSettings;
    std::unique_ptr<SettingsRecord> settings;
    std::unique_ptr<TaskTable> tasks;
    // The runtime's error number of the last run-time failure; 0 when none happened.
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

SettingsRecord& EngineSettings();
CalendarSettings& EngineCalendarSettings();
TaskTable& EngineTasks();

// The first worksheet of the engine's workbook whose code name equals `codeName` exactly. The
// reference the enumeration handed out for it is kept (the holder never releases it); every other
// worksheet is released. Null when there is none or the workbook cannot be enumerated.
XlRef SheetByCodeName(std::string_view codeName);

// Binds the workbook as the caller's reference stands (no reference is taken) and looks up the WBS,
// settings and resource sheets by code name. Holders bound earlier are replaced without releasing
// what they hold.
void BindWorkbook(IDispatch* workbook);

// Creates the empty records in the order the engine needs them: Gantt drawing state, calendar
// settings, settings, task table. A fresh engine has no run-time failure on record.
void CreateEngineObjects();
// Forgets the workbook and sheets (nothing is released) and frees the records.
void ReleaseEngineObjects();

// Records a run-time failure: the command that hits it stops, and kpSetWorkBook reports it.
void SetLastRuntimeError(std::int32_t number);

// The runtime's error number for a division by zero.
inline constexpr std::int32_t kRuntimeErrorDivisionByZero = 11;
