// The library's exported functions, called by the workbook's macros by these exact names.
//
// Whole numbers are 32-bit signed integers passed by value; objects are passed by reference, so the
// function receives the address of the caller's object variable. Only kpSetWorkBook returns a
// value. Expected order: kpInit, kpSetWorkBook, any commands, kpQuit when the workbook closes.
#pragma once

#include <cstdint>

#include "com/com.h"
#include "core/messages.h"

extern "C" {

void kpInit();
void kpQuit();
// The runtime's error number of the last run-time failure, 0 when all went well.
std::int32_t kpSetWorkBook(IDispatch** workbook);

void kpDrawCalendar(std::int32_t unit);
void kpDrawGanntChart(std::int32_t style);
void kpUpdateWBS();
void kpWBSReschedule();
// The target range's reference is released once on return; the workbook's event macros are built
// around that.
void kpWBSEventOnChange(IDispatch** target);
void kpWBSEventOnSelectionChange(IDispatch** target);
void kpTasksMoveUp();
void kpTasksMoveDown();
void kpTasksMoveRight();
void kpTasksMoveLeft();
void kpTasksOffset(std::int32_t first, std::int32_t second);
void kpWBSFilter();
void kpDrawProgressLines();
void kpEVMByTask();
void kpEVMByProject(std::int32_t first, std::int32_t second);
void kpWorkload(std::int32_t first, std::int32_t second);

// Hosting extras for tests, the command line and batch runs; a workbook's macros never need them.

// Sends every user message (UTF-16 text, MB_ICON* value) to `receiver` instead of a message box;
// a null receiver restores message boxes.
void kpSetMessageReceiver(MessageReceiver receiver);
// Pins the current date and time of every "now" to a date serial (a status date); a value <= 0
// unpins it.
void kpSetStatusDate(double serial);

}  // extern "C"
