#include "xlsx/sheet_write.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

#include "sheethost/formula.h"
#include "xlsx/page_setup.h"
#include "xlsx/sheet_read.h"
#include "xlsx/sheet_view.h"
#include "xlsx/xml.h"

namespace xlsx {
namespace {

std::string NumberText(double value) {
    std::array<char, 32> text{};
    const auto result = std::to_chars(text.data(), text.data() + text.size(), value);
    return std::string(text.data(), result.ptr);
}

pugi::xml_node AddChild(pugi::xml_node parent, std::string_view localName) {
    return parent.append_child(QualifiedName(parent, localName).c_str());
}

void RemoveChildren(pugi::xml_node parent) {
    while (parent.first_child()) parent.remove_child(parent.first_child());
}

class WorksheetWriter {
  public:
    WorksheetWriter(const sheethost::Sheet& sheet, StyleSheet& styles,
                    const SharedStringIndex& sharedStrings)
        : sheet_(sheet), styles_(styles), sharedStrings_(sharedStrings) {}

    void WriteColumns(pugi::xml_node worksheet) {
        if (pugi::xml_node cols = Child(worksheet, "cols")) worksheet.remove_child(cols);
        if (sheet_.columns.empty()) return;
        pugi::xml_node cols = EnsureChild(worksheet, "cols", kWorksheetOrder);
        // Neighbouring columns alike share one <col> element.
        auto run = sheet_.columns.begin();
        while (run != sheet_.columns.end()) {
            auto last = run;
            for (auto next = std::next(run);
                 next != sheet_.columns.end() && next->first == last->first + 1 &&
                 next->second == run->second;
                 ++next) {
                last = next;
            }
            WriteColumn(cols, run->first, last->first, run->second);
            run = std::next(last);
        }
    }

    // The <row> elements with their cells, as text: the rows are written straight into the
    // part's bytes rather than as a tree, which for a large sheet took more memory than the
    // workbook itself. `prefix` is the namespace prefix of <sheetData> ("" or "x:").
    void WriteRows(std::string& out, std::string_view prefix) {
        prefix_ = prefix;
        // A row is written when it has a format or height of its own or cells: one walk down
        // both, in row order.
        auto info = sheet_.rows.begin();
        auto cell = sheet_.cells.begin();
        while (info != sheet_.rows.end() || cell != sheet_.cells.end()) {
            const int row = info == sheet_.rows.end()    ? cell->first.row
                            : cell == sheet_.cells.end() ? info->first
                                                         : std::min(info->first, cell->first.row);
            Open(out, "row");
            Attribute(out, "r", std::to_string(row));
            if (info != sheet_.rows.end() && info->first == row)
                WriteRowInfo(out, (info++)->second);
            out += '>';
            for (; cell != sheet_.cells.end() && cell->first.row == row; ++cell) {
                WriteCell(out, cell->first, cell->second);
            }
            Close(out, "row");
        }
    }

  private:
    void WriteColumn(pugi::xml_node cols, int first, int last, const sheethost::ColumnInfo& info) {
        pugi::xml_node col = AddChild(cols, "col");
        col.append_attribute("min").set_value(first);
        col.append_attribute("max").set_value(last);
        col.append_attribute("width").set_value(
            CharactersToFileWidth(info.width.value_or(sheethost::kStandardColumnWidth)));
        if (info.style)
            col.append_attribute("style").set_value(styles_.IndexOf(*info.style, false));
        if (info.hidden) col.append_attribute("hidden").set_value(1);
        if (info.width) col.append_attribute("customWidth").set_value(1);
    }

    void Open(std::string& out, std::string_view name) const {
        out += '<';
        out += prefix_;
        out += name;
    }
    void Close(std::string& out, std::string_view name) const {
        out += "</";
        out += prefix_;
        out += name;
        out += '>';
    }
    // Attribute values are numbers, references and letters: nothing to escape.
    static void Attribute(std::string& out, std::string_view name, std::string_view value) {
        out += ' ';
        out += name;
        out += "=\"";
        out += value;
        out += '"';
    }
    // An element holding text only.
    void Element(std::string& out, std::string_view name, std::string_view text) const {
        Open(out, name);
        out += '>';
        AppendXmlText(out, text);
        Close(out, name);
    }

    void WriteRowInfo(std::string& out, const sheethost::RowInfo& info) {
        if (info.style) {
            Attribute(out, "s", std::to_string(styles_.IndexOf(*info.style, false)));
            Attribute(out, "customFormat", "1");
        }
        if (info.height) {
            Attribute(out, "ht", NumberText(*info.height));
            Attribute(out, "customHeight", "1");
        }
        if (info.hidden) Attribute(out, "hidden", "1");
    }

    void WriteCell(std::string& out, const sheethost::CellRef& reference,
                   const sheethost::Cell& cell) {
        Open(out, "c");
        Attribute(out, "r",
                  sheethost::ColumnLetters(reference.column) + std::to_string(reference.row));
        if (const int style = styles_.IndexOf(cell.style, cell.quotePrefix); style != 0) {
            Attribute(out, "s", std::to_string(style));
        }
        if (!cell.formula.empty()) {
            // No cached value: whoever opens the file next computes it.
            out += '>';
            Element(out, "f", std::string_view(cell.formula).substr(1));
        } else {
            std::visit([&](const auto& value) { WriteValue(out, value); }, cell.value);
        }
        Close(out, "c");
    }

    // Each writes the rest of the cell's start tag and its content.
    void WriteValue(std::string& out, sheethost::Blank) const { out += '>'; }

    void WriteValue(std::string& out, double value) const {
        if (!std::isfinite(value)) return WriteValue(out, sheethost::ErrorValue::kNum);
        out += '>';
        Element(out, "v", NumberText(value));
    }

    void WriteValue(std::string& out, const std::string& text) const {
        if (auto shared = sharedStrings_.find(text); shared != sharedStrings_.end()) {
            Attribute(out, "t", "s");
            out += '>';
            Element(out, "v", std::to_string(shared->second));
            return;
        }
        Attribute(out, "t", "inlineStr");
        out += '>';
        Open(out, "is");
        out += '>';
        Open(out, "t");
        Attribute(out, "xml:space", "preserve");
        out += '>';
        AppendXmlText(out, text);
        Close(out, "t");
        Close(out, "is");
    }

    void WriteValue(std::string& out, bool value) const {
        Attribute(out, "t", "b");
        out += '>';
        Element(out, "v", value ? "1" : "0");
    }

    void WriteValue(std::string& out, sheethost::ErrorValue error) const {
        Attribute(out, "t", "e");
        out += '>';
        Element(out, "v", sheethost::ErrorText(error));
    }

    const sheethost::Sheet& sheet_;
    StyleSheet& styles_;
    const SharedStringIndex& sharedStrings_;
    std::string_view prefix_;
};

void WriteCodeName(pugi::xml_node worksheet, const std::string& codeName) {
    if (codeName.empty()) {
        Child(worksheet, "sheetPr").remove_attribute("codeName");
        return;
    }
    pugi::xml_node sheetPr = EnsureChild(worksheet, "sheetPr", kWorksheetOrder);
    pugi::xml_attribute attribute = sheetPr.attribute("codeName");
    if (!attribute) attribute = sheetPr.prepend_attribute("codeName");
    attribute.set_value(codeName.c_str());
}

}  // namespace

std::string SqrefText(const std::vector<sheethost::Area>& areas) {
    auto cell = [](int row, int column) {
        return sheethost::ColumnLetters(column) + std::to_string(row);
    };
    std::string text;
    for (const sheethost::Area& area : areas) {
        if (!text.empty()) text += ' ';
        text += cell(area.top, area.left);
        if (area.bottom != area.top || area.right != area.left) {
            text += ':' + cell(area.bottom, area.right);
        }
    }
    return text;
}

void WriteWorksheet(pugi::xml_node worksheet, const sheethost::Sheet& sheet, StyleSheet& styles,
                    const SharedStringIndex& sharedStrings, bool active) {
    WriteCodeName(worksheet, sheet.codeName);
    // The used range changes with the cells; the spreadsheet recomputes it when it is absent.
    if (pugi::xml_node dimension = Child(worksheet, "dimension")) worksheet.remove_child(dimension);
    WriteSheetView(worksheet, sheet, active);
    WritePageSetup(worksheet, sheet);
    WorksheetWriter writer(sheet, styles, sharedStrings);
    writer.WriteColumns(worksheet);
    RemoveChildren(EnsureChild(worksheet, "sheetData", kWorksheetOrder));
}

std::string WorksheetBytes(pugi::xml_document& document, const sheethost::Sheet& sheet,
                           StyleSheet& styles, const SharedStringIndex& sharedStrings) {
    pugi::xml_node sheetData = Child(document.document_element(), "sheetData");
    // The rows go where this instruction stands. It is the only one in the bytes: the parts
    // are read without their instructions, and every "<" of a text or attribute is escaped.
    constexpr std::string_view kPlace = "<?rows?>";
    pugi::xml_node place = sheetData.append_child(pugi::node_pi);
    place.set_name("rows");
    std::string bytes = SerializeXml(document);
    const std::size_t at = bytes.find(kPlace);
    sheetData.remove_child(place);
    const std::string after = bytes.substr(at + kPlace.size());
    bytes.resize(at);
    // Room for the usual cell, so the text is seldom moved as it grows.
    constexpr std::size_t kBytesPerCell = 48;
    bytes.reserve(at + after.size() + kBytesPerCell * sheet.cells.size());
    const std::string prefix = QualifiedName(sheetData, "");
    WorksheetWriter(sheet, styles, sharedStrings).WriteRows(bytes, prefix);
    bytes += after;
    return bytes;
}

}  // namespace xlsx
