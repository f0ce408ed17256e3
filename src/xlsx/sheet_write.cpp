#include "xlsx/sheet_write.h"

#include <array>
#include <charconv>
#include <cmath>
#include <set>
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

    void WriteRows(pugi::xml_node sheetData) {
        RemoveChildren(sheetData);
        std::set<int> rows;
        for (const auto& [number, info] : sheet_.rows) rows.insert(number);
        for (const auto& [reference, cell] : sheet_.cells) rows.insert(reference.row);
        for (int row : rows) {
            pugi::xml_node rowNode = AddChild(sheetData, "row");
            rowNode.append_attribute("r").set_value(row);
            if (auto info = sheet_.rows.find(row); info != sheet_.rows.end()) {
                WriteRowInfo(rowNode, info->second);
            }
            for (auto cell = sheet_.cells.lower_bound({row, 1});
                 cell != sheet_.cells.end() && cell->first.row == row; ++cell) {
                WriteCell(rowNode, cell->first, cell->second);
            }
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

    void WriteRowInfo(pugi::xml_node rowNode, const sheethost::RowInfo& info) {
        if (info.style) {
            rowNode.append_attribute("s").set_value(styles_.IndexOf(*info.style, false));
            rowNode.append_attribute("customFormat").set_value(1);
        }
        if (info.height) {
            rowNode.append_attribute("ht").set_value(*info.height);
            rowNode.append_attribute("customHeight").set_value(1);
        }
        if (info.hidden) rowNode.append_attribute("hidden").set_value(1);
    }

    void WriteCell(pugi::xml_node rowNode, const sheethost::CellRef& reference,
                   const sheethost::Cell& cell) {
        pugi::xml_node c = AddChild(rowNode, "c");
        c.append_attribute("r").set_value(
            (sheethost::ColumnLetters(reference.column) + std::to_string(reference.row)).c_str());
        if (const int style = styles_.IndexOf(cell.style, cell.quotePrefix); style != 0) {
            c.append_attribute("s").set_value(style);
        }
        if (!cell.formula.empty()) {
            // No cached value: whoever opens the file next computes it.
            AddChild(c, "f").text().set(cell.formula.c_str() + 1);
            return;
        }
        std::visit([&](const auto& value) { WriteValue(c, value); }, cell.value);
    }

    void WriteValue(pugi::xml_node, sheethost::Blank) {}

    void WriteValue(pugi::xml_node c, double value) {
        if (!std::isfinite(value)) return WriteValue(c, sheethost::ErrorValue::kNum);
        AddChild(c, "v").text().set(NumberText(value).c_str());
    }

    void WriteValue(pugi::xml_node c, const std::string& text) {
        if (auto shared = sharedStrings_.find(text); shared != sharedStrings_.end()) {
            c.append_attribute("t").set_value("s");
            AddChild(c, "v").text().set(shared->second);
            return;
        }
        c.append_attribute("t").set_value("inlineStr");
        pugi::xml_node t = AddChild(AddChild(c, "is"), "t");
        t.append_attribute("xml:space").set_value("preserve");
        t.text().set(text.c_str());
    }

    void WriteValue(pugi::xml_node c, bool value) {
        c.append_attribute("t").set_value("b");
        AddChild(c, "v").text().set(value ? "1" : "0");
    }

    void WriteValue(pugi::xml_node c, sheethost::ErrorValue error) {
        c.append_attribute("t").set_value("e");
        AddChild(c, "v").text().set(sheethost::ErrorText(error));
    }

    const sheethost::Sheet& sheet_;
    StyleSheet& styles_;
    const SharedStringIndex& sharedStrings_;
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
    writer.WriteRows(EnsureChild(worksheet, "sheetData", kWorksheetOrder));
}

}  // namespace xlsx
