// The creation and release sequence of the engine state (kpInit, kpQuit) and the binding of the
// workbook (kpSetWorkBook).
#pragma once

#include "com/com.h"

// Binds the workbook as the caller's reference stands (no reference is taken) and looks up the WBS,
// settings and resource sheets by code name. Holders bound earlier are replaced without releasing
// what they hold.
void BindWorkbook(IDispatch* workbook);

// Creates the empty records in the order the engine needs them: Gantt drawing state, calendar
// settings, settings, task table.
void CreateEngineObjects();
// Forgets the workbook and sheets (nothing is released) and frees the records, each through the
// subsystem that owns it.
void ReleaseEngineObjects();
