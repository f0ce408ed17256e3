#include "xlsx/workbook_parts.h"

#include <string_view>

#include "xlsx/xlsx.h"
#include "xlsx/xml.h"

namespace xlsx {

pugi::xml_attribute RelationshipIdAttribute(const pugi::xml_node& node) {
    for (pugi::xml_attribute attribute : node.attributes()) {
        const std::string_view name = attribute.name();
        if (name.size() > 3 && name.ends_with(":id")) return attribute;
    }
    return {};
}

WorkbookParts LocateParts(const Package& package, pugi::xml_document& workbook) {
    WorkbookParts parts;
    const auto rootRelationships = ReadRelationships(package, "");
    if (const Relationship* office = FindByType(rootRelationships, kOfficeDocumentType)) {
        parts.workbookPart = office->target;
    }
    const Part* workbookPart = package.Find(parts.workbookPart);
    if (workbookPart == nullptr) {
        throw XlsxError("the file is a zip package but not a workbook: it has no workbook part");
    }
    ParseXml(workbook, workbookPart->bytes, parts.workbookPart);
    if (LocalName(workbook.document_element()) != "workbook") {
        throw XlsxError("the file is not a spreadsheet workbook (its main part is <" +
                        std::string(workbook.document_element().name()) + ">)");
    }
    parts.relationships = ReadRelationships(package, parts.workbookPart);
    for (const Relationship& relationship : parts.relationships) {
        if (relationship.type == kStylesType) parts.stylesPart = relationship.target;
        if (relationship.type == kSharedStringsType) parts.sharedStringsPart = relationship.target;
    }
    for (pugi::xml_node node : Children(Child(workbook.document_element(), "sheets"), "sheet")) {
        SheetEntry entry{node.attribute("name").value(), {}, node};
        const std::string_view id = RelationshipIdAttribute(node).value();
        for (const Relationship& relationship : parts.relationships) {
            if (relationship.id == id && relationship.type == kWorksheetType) {
                entry.part = relationship.target;
            }
        }
        parts.sheets.push_back(std::move(entry));
    }
    return parts;
}

std::vector<std::string> ReadSharedStrings(const Package& package, const std::string& part) {
    std::vector<std::string> strings;
    const Part* found = package.Find(part);
    if (found == nullptr) return strings;
    pugi::xml_document document;
    ParseXml(document, found->bytes, part);
    for (pugi::xml_node item : Children(document.document_element(), "si")) {
        strings.push_back(JoinedText(item));
    }
    return strings;
}

}  // namespace xlsx
