// A host sheet written into a worksheet part, keeping the elements the host does not model.
#pragma once

#include <array>
#include <map>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "sheethost/model.h"
#include "xlsx/styles.h"

namespace xlsx {

// The shared-string table of the source package: texts already there are written by index so
// that their rich text survives; other texts are written inline.
using SharedStringIndex = std::map<std::string, int, std::less<>>;

// The children of <worksheet> in the order the file format requires.
inline constexpr std::array<std::string_view, 39> kWorksheetOrder{"sheetPr",
                                                                  "dimension",
                                                                  "sheetViews",
                                                                  "sheetFormatPr",
                                                                  "cols",
                                                                  "sheetData",
                                                                  "sheetCalcPr",
                                                                  "sheetProtection",
                                                                  "protectedRanges",
                                                                  "scenarios",
                                                                  "autoFilter",
                                                                  "sortState",
                                                                  "dataConsolidate",
                                                                  "customSheetViews",
                                                                  "mergeCells",
                                                                  "phoneticPr",
                                                                  "conditionalFormatting",
                                                                  "dataValidations",
                                                                  "hyperlinks",
                                                                  "printOptions",
                                                                  "pageMargins",
                                                                  "pageSetup",
                                                                  "headerFooter",
                                                                  "rowBreaks",
                                                                  "colBreaks",
                                                                  "customProperties",
                                                                  "cellWatches",
                                                                  "ignoredErrors",
                                                                  "smartTags",
                                                                  "drawing",
                                                                  "legacyDrawing",
                                                                  "legacyDrawingHF",
                                                                  "drawingHF",
                                                                  "picture",
                                                                  "oleObjects",
                                                                  "controls",
                                                                  "webPublishItems",
                                                                  "tableParts",
                                                                  "extLst"};

inline constexpr const char* kEmptyWorksheet =
    R"(<worksheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" )"
    R"(xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships">)"
    R"(<sheetData/></worksheet>)";

// A list of blocks as the file writes references: corners without dollars, whole rows and
// columns spelled out ("A1:B3 A7:XFD7").
std::string SqrefText(const std::vector<sheethost::Area>& areas);

// Replaces the code name, view, columns, rows and cells of the <worksheet> element with the
// sheet's, and marks its tab selected when it is the active sheet. Formulas are written without
// cached values.
// The rows are written by WorksheetBytes.
void WriteWorksheet(pugi::xml_node worksheet, const sheethost::Sheet& sheet, StyleSheet& styles,
                    const SharedStringIndex& sharedStrings, bool active);

// The bytes of the worksheet part: `document` as WriteWorksheet and the other writers left it,
// with the sheet's rows and cells in its <sheetData>.
std::string WorksheetBytes(pugi::xml_document& document, const sheethost::Sheet& sheet,
                           StyleSheet& styles, const SharedStringIndex& sharedStrings);

}  // namespace xlsx
