// The cell formats of styles.xml as host styles, and new formats appended for styles the file
// does not hold yet (existing entries are never changed, so the formats of cells the host did not
// touch stay exactly as they were).
#pragma once

#include <optional>
#include <pugixml.hpp>
#include <unordered_map>
#include <utility>
#include <vector>

#include "sheethost/model.h"
#include "xlsx/colors.h"

namespace xlsx {

class StyleSheet {
  public:
    // Reads the document's formats, their theme colours from `theme`; an empty document is given
    // the minimal entries every workbook needs.
    StyleSheet(pugi::xml_document& document, const ThemeColors& theme);

    // The style of cellXfs entry `index` (the default style when out of range), and whether that
    // entry marks text typed with a leading apostrophe.
    const sheethost::SharedStyle& StyleAt(int index) const;
    bool QuotePrefixAt(int index) const;

    // The cellXfs entry for a style, appended (with its font, fill, border and number format as
    // needed) when none matches. Conditional formats are not part of the entry.
    int IndexOf(const sheethost::SharedStyle& style, bool quotePrefix);

    // A conditional format's look (font colour, interior colour) as a differential format: the
    // dxfs entry the file holds, or a new one appended. Reading answers the colour indexes.
    struct Differential {
        std::optional<int> fontColorIndex;
        std::optional<int> interiorColorIndex;
        bool operator==(const Differential&) const = default;
    };
    Differential DifferentialAt(int index) const;
    int DifferentialIndex(const Differential& look);

  private:
    struct Format {
        sheethost::SharedStyle style;
        bool quotePrefix = false;
    };
    int FormatIndex(const sheethost::Style& wanted, bool quotePrefix);
    int FontIndex(const sheethost::CellFont& font);
    int FillIndex(const sheethost::Interior& interior);
    int BorderIndex(const sheethost::CellBorders& borders);
    int NumberFormatId(const std::string& code);
    pugi::xml_node Section(const char* localName);

    pugi::xml_node root_;
    std::vector<std::pair<int, std::string>> numberFormats_;  // custom id, code
    std::vector<sheethost::CellFont> fonts_;
    std::vector<sheethost::Interior> fills_;
    std::vector<sheethost::CellBorders> borders_;
    std::vector<Format> formats_;
    // The entries of the shared formats asked for so far, with and without the apostrophe mark:
    // a sheet's cells share a handful of formats, each compared with the entries only once.
    std::unordered_map<const sheethost::Style*, std::pair<sheethost::SharedStyle, int>> entryOf_[2];
    std::vector<Differential> differentials_;
};

// The code of a built-in number format id ("General" for 0, "m/d/yyyy" for 14); empty if unknown.
std::string BuiltInNumberFormat(int id);

}  // namespace xlsx
