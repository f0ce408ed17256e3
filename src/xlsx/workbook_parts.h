// Where a package keeps its workbook, worksheets, styles and shared strings.
#pragma once

#include <pugixml.hpp>
#include <string>
#include <vector>

#include "xlsx/opc.h"
#include "xlsx/package.h"

namespace xlsx {

struct SheetEntry {
    std::string name;
    std::string part;     // empty for sheets that are not worksheets (chart sheets, dialogs)
    pugi::xml_node node;  // the <sheet> element of workbook.xml
};

struct WorkbookParts {
    std::string workbookPart;
    std::vector<Relationship> relationships;  // of the workbook part
    std::vector<SheetEntry> sheets;           // in tab order
    std::string stylesPart;                   // empty when the package has none
    std::string sharedStringsPart;
};

// Parses the workbook part into `workbook` and finds the others; throws XlsxError for a package
// without a workbook.
WorkbookParts LocateParts(const Package& package, pugi::xml_document& workbook);

// The value of the relationship id attribute ("r:id" under whatever prefix the file uses).
pugi::xml_attribute RelationshipIdAttribute(const pugi::xml_node& node);

std::vector<std::string> ReadSharedStrings(const Package& package, const std::string& part);

}  // namespace xlsx
