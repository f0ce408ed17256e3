// Reading a workbook package into the in-memory host.
#include <memory>

#include "sheethost/model.h"
#include "xlsx/conditional_formats.h"
#include "xlsx/drawing.h"
#include "xlsx/package.h"
#include "xlsx/sheet_read.h"
#include "xlsx/styles.h"
#include "xlsx/workbook_parts.h"
#include "xlsx/xlsx.h"
#include "xlsx/xml.h"

namespace xlsx {
namespace {

void ReadDefinedNames(const pugi::xml_node& workbook, sheethost::Workbook& book,
                      const std::vector<int>& worksheetOfTab) {
    for (pugi::xml_node node : Children(Child(workbook, "definedNames"), "definedName")) {
        sheethost::DefinedName name{node.attribute("name").value(),
                                    "=" + std::string(node.text().get())};
        if (auto local = node.attribute("localSheetId")) {
            const int tab = local.as_int(-1);
            if (tab < 0 || tab >= static_cast<int>(worksheetOfTab.size())) continue;
            const int worksheet = worksheetOfTab[static_cast<std::size_t>(tab)];
            // Names local to a chart sheet have no place in the host.
            if (worksheet < 0) continue;
            book.sheets[static_cast<std::size_t>(worksheet)]->names.push_back(std::move(name));
        } else {
            book.names.push_back(std::move(name));
        }
    }
}

}  // namespace

std::shared_ptr<sheethost::Workbook> LoadXlsx(const std::filesystem::path& file) {
    const Package package = ReadPackage(file);
    pugi::xml_document workbookDocument;
    const WorkbookParts parts = LocateParts(package, workbookDocument);
    // Saving edits the content types; a fault there belongs to this file, found now.
    const Part* contentTypes = package.Find("[Content_Types].xml");
    if (contentTypes == nullptr) {
        throw XlsxError("the workbook is corrupt: it has no [Content_Types].xml");
    }
    pugi::xml_document contentTypesDocument;
    ParseXml(contentTypesDocument, contentTypes->bytes, "[Content_Types].xml");

    pugi::xml_document stylesDocument;
    if (const Part* styles = package.Find(parts.stylesPart)) {
        ParseXml(stylesDocument, styles->bytes, parts.stylesPart);
    }
    const ThemeColors theme = ReadThemeColors(package, parts.relationships);
    const StyleSheet styles(stylesDocument, theme);
    const auto sharedStrings = ReadSharedStrings(package, parts.sharedStringsPart);

    auto book = std::make_shared<sheethost::Workbook>();
    book->name = file.filename().string();
    // localSheetId and activeTab count every sheet; the host keeps worksheets only.
    std::vector<int> worksheetOfTab;
    for (const SheetEntry& entry : parts.sheets) {
        // A chart sheet leads to no worksheet part; a worksheet whose part is not there would be
        // lost, and the parts that lead from it left dangling.
        if (entry.part.empty()) {
            worksheetOfTab.push_back(-1);
            continue;
        }
        const Part* part = package.Find(entry.part);
        if (part == nullptr) {
            throw XlsxError("the workbook is corrupt: the part " + entry.part + " of the sheet \"" +
                            entry.name + "\" is missing");
        }
        if (!sheethost::IsValidSheetName(entry.name)) {
            throw XlsxError("the workbook is corrupt: \"" + entry.name.substr(0, 64) +
                            "\" is not a sheet name (1 to 31 characters, none of :\\/?*[])");
        }
        pugi::xml_document sheetDocument;
        ParseXml(sheetDocument, part->bytes, entry.part);
        auto sheet = std::make_shared<sheethost::Sheet>();
        sheet->name = entry.name;
        ReadWorksheet(sheetDocument.document_element(), sharedStrings, styles, *sheet);
        ReadConditionalFormats(sheetDocument.document_element(), styles, *sheet);
        ReadDrawing(package, entry.part, sheetDocument.document_element(), theme, *sheet);
        worksheetOfTab.push_back(static_cast<int>(book->sheets.size()));
        book->sheets.push_back(std::move(sheet));
    }
    if (book->sheets.empty()) throw XlsxError("the workbook has no worksheet");

    const pugi::xml_node workbook = workbookDocument.document_element();
    ReadDefinedNames(workbook, *book, worksheetOfTab);
    const int activeTab =
        Child(Child(workbook, "bookViews"), "workbookView").attribute("activeTab").as_int();
    if (activeTab >= 0 && activeTab < static_cast<int>(worksheetOfTab.size()) &&
        worksheetOfTab[static_cast<std::size_t>(activeTab)] >= 0) {
        book->activeSheet =
            static_cast<std::size_t>(worksheetOfTab[static_cast<std::size_t>(activeTab)]);
    }
    return book;
}

}  // namespace xlsx
