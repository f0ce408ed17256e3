// The in-memory spreadsheet host: a workbook held in memory whose automation objects behave like
// the spreadsheet program's for the member paths the engine sends. Tests, the command-line
// program and the Windows test host load a workbook from JSON, hand its Application or Workbook
// object to the engine, and compare the canonical JSON dump afterwards.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "com/com.h"
#include "sheethost/dispatch_object.h"
#include "sheethost/model.h"
#include "sheethost/objects.h"  // NewApplicationObject, NewWorkbookObject: the entry objects

namespace sheethost {

// A workbook with one empty worksheet, "Sheet1".
std::shared_ptr<Workbook> NewWorkbook();

// The largest JSON description loaded: more than the biggest workbook the spreadsheet holds.
inline constexpr std::size_t kMaxWorkbookJsonBytes = std::size_t{256} << 20;

// Loads a workbook from its JSON description (see FIXTURES.md). Null, with the reason in `error`
// when given, for text that is not a valid description.
std::shared_ptr<Workbook> LoadWorkbookJson(std::string_view text, std::string* error = nullptr);

// The canonical JSON of a workbook: every property, keys in a stable order, equal numbers always
// written alike, formats gathered in a style table. Loading the dump gives an equal workbook.
std::string DumpWorkbookJson(const Workbook& book);

// The diagnostics tests read (LiveObjectCount, LiveObjectReport, CallCount, ResetCallCount,
// SetMemberLog) are declared with the objects' base in "sheethost/dispatch_object.h".

}  // namespace sheethost
