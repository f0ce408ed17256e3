// Writing the in-memory workbook back into its package.
#include <algorithm>
#include <array>
#include <cctype>
#include <map>
#include <set>
#include <string_view>

#include "xlsx/conditional_formats.h"
#include "xlsx/drawing.h"
#include "xlsx/opc.h"
#include "xlsx/package.h"
#include "xlsx/sheet_write.h"
#include "xlsx/styles.h"
#include "xlsx/workbook_parts.h"
#include "xlsx/xlsx.h"
#include "xlsx/xml.h"

namespace xlsx {
namespace {

constexpr std::string_view kStylesContentType =
    "application/vnd.openxmlformats-officedocument.spreadsheetml.styles+xml";

// The workbook part's content type is what tells the spreadsheet program whether the package may
// hold macros: it refuses to open an .xlsm whose workbook says otherwise, and the reverse.
constexpr std::string_view kWorkbookContentType =
    "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml";
constexpr std::string_view kMacroWorkbookContentType =
    "application/vnd.ms-excel.sheet.macroEnabled.main+xml";
constexpr std::string_view kVbaProjectType =
    "http://schemas.microsoft.com/office/2006/relationships/vbaProject";

bool IsMacroFile(const std::filesystem::path& target) {
    std::string extension = target.extension().string();
    for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return extension == ".xlsm";
}

constexpr std::array<std::string_view, 12> kWorkbookOrder{
    "fileVersion",  "fileSharing", "workbookPr",     "workbookProtection",
    "bookViews",    "sheets",      "functionGroups", "externalReferences",
    "definedNames", "calcPr",      "oleSize",        "extLst"};

// The parts of a workbook package with one empty worksheet's worth of structure, for a workbook
// that was not loaded from a file.
Package NewPackage() {
    Package package;
    package.Put(
        "[Content_Types].xml",
        R"(<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">)"
        R"(<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>)"
        R"(<Default Extension="xml" ContentType="application/xml"/>)"
        R"(<Override PartName="/xl/workbook.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml"/>)"
        R"(</Types>)");
    package.Put(
        "_rels/.rels",
        R"(<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)"
        R"(<Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument" Target="xl/workbook.xml"/>)"
        R"(</Relationships>)");
    package.Put("xl/workbook.xml",
                R"(<workbook xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" )"
                R"(xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships">)"
                R"(<bookViews><workbookView/></bookViews><sheets/></workbook>)");
    return package;
}

// The workbook part's relationships and the package's content types, edited as the saved sheets
// require.
struct WorkbookEditor {
    WorkbookEditor(Package& package, const std::string& workbookPart)
        : package(package), relationships(package, workbookPart) {}

    // Adds a part related to the workbook; answers the relationship id.
    std::string AddPart(const std::string& partName, std::string_view type,
                        std::string_view contentType) {
        types.Override(partName, contentType);
        return relationships.Add(type, partName);
    }

    // Unrelates a part the workbook no longer uses; Store removes it.
    void DropPart(const std::string& partName) { relationships.RemoveTarget(partName); }

    // Stores the edits. Every part the package reached before (`reachedBefore`) and no longer
    // reaches goes, with its relationships and content type: the parts this save dropped and
    // what only they led to (the drawing, charts and pictures of a deleted sheet, a chart no
    // longer shown).
    void Store(const std::set<std::string>& reachedBefore) {
        relationships.Store();
        const std::set<std::string> reached = ReachableParts(package);
        for (const std::string& part : reachedBefore) {
            if (!reached.contains(part)) RemovePart(package, types, part);
        }
        types.Store();
    }

    Package& package;
    ContentTypes types{package};
    PartRelationships relationships;
};

// A worksheet of the source package and the document it was parsed into.
struct SourceSheet {
    const SheetEntry* entry;
    std::unique_ptr<pugi::xml_document> document;
    bool used = false;
};

std::string CodeNameOf(const pugi::xml_document& document) {
    return Child(document.document_element(), "sheetPr").attribute("codeName").value();
}

// The prefix under which the workbook element binds the relationships namespace, declared as
// "r" when it binds none.
std::string RelationshipPrefix(pugi::xml_node workbook) {
    constexpr std::string_view kNamespace =
        "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
    for (pugi::xml_attribute attribute : workbook.attributes()) {
        const std::string_view name = attribute.name();
        if (name.starts_with("xmlns:") && attribute.value() == kNamespace) {
            return std::string(name.substr(6));
        }
    }
    workbook.append_attribute("xmlns:r").set_value(std::string(kNamespace).c_str());
    return "r";
}

// The source sheet a host sheet came from: the same name, else (after a rename) the same code
// name.
SourceSheet* MatchSource(std::vector<SourceSheet>& sources, const sheethost::Sheet& sheet) {
    for (auto& source : sources) {
        if (!source.used && sheethost::SameName(source.entry->name, sheet.name)) return &source;
    }
    if (sheet.codeName.empty()) return nullptr;
    for (auto& source : sources) {
        if (!source.used && CodeNameOf(*source.document) == sheet.codeName) return &source;
    }
    return nullptr;
}

SharedStringIndex IndexSharedStrings(const Package& package, const std::string& part) {
    SharedStringIndex index;
    const auto strings = ReadSharedStrings(package, part);
    for (std::size_t at = 0; at < strings.size(); ++at) {
        index.emplace(strings[at], static_cast<int>(at));
    }
    return index;
}

// Rewrites <definedNames> from the host's names, reusing the original element of a name (its
// comment, hidden flag and other attributes) when it is still there.
void WriteDefinedNames(pugi::xml_node workbook, const sheethost::Workbook& book,
                       const std::vector<std::string>& originalTabNames) {
    pugi::xml_document originals;
    std::map<std::pair<std::string, std::string>, pugi::xml_node> byName;  // (scope, name)
    auto key = [](std::string_view scope, std::string_view name) {
        auto lower = [](std::string_view text) {
            std::string out(text);
            std::transform(out.begin(), out.end(), out.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
            return out;
        };
        return std::make_pair(lower(scope), lower(name));
    };
    if (pugi::xml_node existing = Child(workbook, "definedNames")) {
        for (pugi::xml_node node : Children(existing, "definedName")) {
            std::string scope;
            if (auto local = node.attribute("localSheetId")) {
                const auto tab = static_cast<std::size_t>(local.as_uint());
                if (tab < originalTabNames.size()) scope = originalTabNames[tab];
            }
            pugi::xml_node copy = originals.append_copy(node);
            byName.emplace(key(scope, node.attribute("name").value()), copy);
        }
        workbook.remove_child(existing);
    }
    bool any = !book.names.empty();
    for (const auto& sheet : book.sheets) any = any || !sheet->names.empty();
    if (!any) return;
    pugi::xml_node section = EnsureChild(workbook, "definedNames", kWorkbookOrder);
    auto write = [&](const sheethost::DefinedName& name, const std::string& scope, int tab) {
        pugi::xml_node node;
        if (auto original = byName.find(key(scope, name.name)); original != byName.end()) {
            node = section.append_copy(original->second);
        } else {
            node = section.append_child(QualifiedName(section, "definedName").c_str());
            node.append_attribute("name").set_value(name.name.c_str());
        }
        node.remove_attribute("localSheetId");
        if (tab >= 0) node.append_attribute("localSheetId").set_value(tab);
        const std::string_view formula = name.refersTo;
        node.text().set(
            std::string(formula.starts_with('=') ? formula.substr(1) : formula).c_str());
    };
    for (const auto& name : book.names) write(name, "", -1);
    for (std::size_t tab = 0; tab < book.sheets.size(); ++tab) {
        for (const auto& name : book.sheets[tab]->names) {
            write(name, book.sheets[tab]->name, static_cast<int>(tab));
        }
    }
}

void RefuseOverwritingSource(const std::filesystem::path& source,
                             const std::filesystem::path& target, const SaveOptions& options) {
    std::error_code error;
    if (!source.empty() && !options.overwriteSource &&
        std::filesystem::equivalent(source, target, error)) {
        throw XlsxError("refusing to overwrite the workbook it was loaded from (\"" +
                        target.string() + "\"); choose another output file");
    }
}

}  // namespace

void SaveXlsx(const sheethost::Workbook& book, const std::filesystem::path& source,
              const std::filesystem::path& target, const SaveOptions& options) {
    RefuseOverwritingSource(source, target, options);
    if (book.sheets.empty()) throw XlsxError("a workbook needs at least one worksheet");
    Package package = source.empty() ? NewPackage() : ReadPackage(source);
    const std::set<std::string> reachedBefore = ReachableParts(package);
    pugi::xml_document workbookDocument;
    WorkbookParts parts = LocateParts(package, workbookDocument);
    WorkbookEditor editor(package, parts.workbookPart);
    const bool macroFile = IsMacroFile(target);
    const bool hasMacros = std::any_of(
        parts.relationships.begin(), parts.relationships.end(),
        [](const Relationship& relationship) { return relationship.type == kVbaProjectType; });
    if (hasMacros && !macroFile) {
        throw XlsxError("the workbook has macros, which would be lost in \"" + target.string() +
                        "\"; save it as a macro-enabled .xlsm file");
    }
    editor.types.Override(parts.workbookPart,
                          macroFile ? kMacroWorkbookContentType : kWorkbookContentType);

    pugi::xml_document stylesDocument;
    if (const Part* styles = package.Find(parts.stylesPart)) {
        ParseXml(stylesDocument, styles->bytes, parts.stylesPart);
    } else {
        parts.stylesPart = "xl/styles.xml";
        editor.AddPart(parts.stylesPart, kStylesType, kStylesContentType);
    }
    const ThemeColors theme = ReadThemeColors(package, parts.relationships);
    StyleSheet styles(stylesDocument, theme);
    const SharedStringIndex sharedStrings = IndexSharedStrings(package, parts.sharedStringsPart);

    std::vector<SourceSheet> sources;
    std::vector<std::string> originalTabNames;
    for (const SheetEntry& entry : parts.sheets) {
        originalTabNames.push_back(entry.name);
        const Part* part = package.Find(entry.part);
        if (part == nullptr) continue;
        auto document = std::make_unique<pugi::xml_document>();
        ParseXml(*document, part->bytes, entry.part);
        sources.push_back(SourceSheet{&entry, std::move(document)});
    }

    pugi::xml_node workbook = workbookDocument.document_element();
    pugi::xml_node sheetsNode = EnsureChild(workbook, "sheets", kWorkbookOrder);
    unsigned nextSheetId = 1;
    for (const SheetEntry& entry : parts.sheets) {
        nextSheetId = std::max(nextSheetId, entry.node.attribute("sheetId").as_uint() + 1);
    }
    pugi::xml_document newSheets;
    pugi::xml_node newList = newSheets.append_child(sheetsNode.name());
    for (std::size_t tab = 0; tab < book.sheets.size(); ++tab) {
        const sheethost::Sheet& sheet = *book.sheets[tab];
        SourceSheet* source = MatchSource(sources, sheet);
        pugi::xml_document fresh;
        pugi::xml_node element;
        std::string partName;
        if (source != nullptr) {
            source->used = true;
            partName = source->entry->part;
            element = newList.append_copy(source->entry->node);
        } else {
            fresh.load_string(kEmptyWorksheet);
            partName = FreePartName(package, "xl/worksheets/sheet", ".xml");
            const std::string id = editor.AddPart(partName, kWorksheetType, kWorksheetContentType);
            element = newList.append_child(QualifiedName(sheetsNode, "sheet").c_str());
            element.append_attribute("name");
            element.append_attribute("sheetId").set_value(nextSheetId++);
            element.append_attribute((RelationshipPrefix(workbook) + ":id").c_str())
                .set_value(id.c_str());
        }
        element.attribute("name").set_value(sheet.name.c_str());
        pugi::xml_document& document = source != nullptr ? *source->document : fresh;
        WriteWorksheet(document.document_element(), sheet, styles, sharedStrings,
                       tab == book.activeSheet);
        WriteConditionalFormats(document.document_element(), styles, sheet);
        WriteDrawing(package, editor.types, partName, document.document_element(), theme, sheet);
        package.Put(partName, WorksheetBytes(document, sheet, styles, sharedStrings));
    }
    // Sheets that are not worksheets stay, after the worksheets; worksheets the host deleted go.
    for (const SheetEntry& entry : parts.sheets) {
        if (entry.part.empty()) newList.append_copy(entry.node);
    }
    for (const SourceSheet& source : sources) {
        if (!source.used) editor.DropPart(source.entry->part);
    }
    while (sheetsNode.first_child()) sheetsNode.remove_child(sheetsNode.first_child());
    for (pugi::xml_node node : newList.children()) sheetsNode.append_copy(node);

    WriteDefinedNames(workbook, book, originalTabNames);
    if (pugi::xml_node view = Child(Child(workbook, "bookViews"), "workbookView")) {
        view.remove_attribute("activeTab");
        view.append_attribute("activeTab").set_value(static_cast<unsigned>(book.activeSheet));
    }
    // Formulas are saved without results: the next program to open the file recalculates, and
    // the old calculation chain no longer matches the cells.
    pugi::xml_node calcPr = EnsureChild(workbook, "calcPr", kWorkbookOrder);
    calcPr.remove_attribute("fullCalcOnLoad");
    calcPr.append_attribute("fullCalcOnLoad").set_value(1);
    for (const Relationship& relationship : parts.relationships) {
        if (relationship.type == kCalcChainType) editor.DropPart(relationship.target);
    }

    package.Put(parts.workbookPart, SerializeXml(workbookDocument));
    package.Put(parts.stylesPart, SerializeXml(stylesDocument));
    editor.Store(reachedBefore);
    WritePackageAtomically(package, target);
}

}  // namespace xlsx
