#include "sheethost/model.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace sheethost {
namespace {

const SharedStyle& DefaultStyle() {
    static const SharedStyle style{Style{}};
    return style;
}

char LowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

SharedStyle::SharedStyle() : SharedStyle(DefaultStyle()) {}

Style& SharedStyle::Edit() {
    if (style_.use_count() > 1) style_ = std::make_shared<Style>(*style_);
    return *style_;
}

SharedStyle RecentStyles::Share(SharedStyle made) {
    // Newest first, and a format found again becomes the newest: the formats a change makes row
    // after row stay, while formats made once pass through.
    auto found = std::find(kept_.begin(), kept_.end(), made);
    if (found == kept_.end()) {
        found = std::prev(kept_.end());
        *found = std::move(made);
    }
    std::rotate(kept_.begin(), found, std::next(found));
    return kept_.front();
}

const SharedStyle* RowStyle(const Sheet& sheet, int row) {
    const auto found = sheet.rows.find(row);
    return found != sheet.rows.end() && found->second.style ? &*found->second.style : nullptr;
}

const SharedStyle& ColumnStyle(const Sheet& sheet, int column) {
    const auto found = sheet.columns.find(column);
    return found != sheet.columns.end() && found->second.style ? *found->second.style
                                                               : DefaultStyle();
}

const SharedStyle& InheritedStyle(const Sheet& sheet, int row, int column) {
    const SharedStyle* rowStyle = RowStyle(sheet, row);
    return rowStyle != nullptr ? *rowStyle : ColumnStyle(sheet, column);
}

const SharedStyle& EffectiveStyle(const Sheet& sheet, int row, int column) {
    if (const Cell* cell = FindCell(sheet, row, column)) return cell->style;
    return InheritedStyle(sheet, row, column);
}

const std::string& FormulaText::Text() const {
    static const std::string kNone;
    return text_ ? *text_ : kNone;
}

Cell& CellAt(Sheet& sheet, int row, int column) {
    const CellRef key{row, column};
    auto found = sheet.cells.find(key);
    if (found == sheet.cells.end()) {
        Cell cell;
        cell.style = InheritedStyle(sheet, row, column);
        found = sheet.cells.emplace(key, std::move(cell)).first;
    }
    return found->second;
}

const Cell* FindCell(const Sheet& sheet, int row, int column) {
    const auto found = sheet.cells.find(CellRef{row, column});
    return found == sheet.cells.end() ? nullptr : &found->second;
}

void TrimCell(Sheet& sheet, int row, int column) {
    const auto found = sheet.cells.find(CellRef{row, column});
    if (found == sheet.cells.end()) return;
    if (IsBareCell(sheet, found->first, found->second)) sheet.cells.erase(found);
}

bool IsBareCell(const Sheet& sheet, const CellRef& ref, const Cell& cell) {
    return HoldsNothing(cell) && cell.style == InheritedStyle(sheet, ref.row, ref.column);
}

bool HoldsNothing(const Cell& cell) {
    return std::holds_alternative<Blank>(cell.value) && cell.formula.empty() && !cell.quotePrefix;
}

std::size_t CharacterCount(std::string_view utf8) {
    std::size_t count = 0;
    for (const char byte : utf8) {
        const auto code = static_cast<unsigned char>(byte);
        if ((code & 0xC0) != 0x80) ++count;  // each sequence counts once ...
        if (code >= 0xF0) ++count;           // ... and twice when it needs two UTF-16 units
    }
    return count;
}

bool IsValidSheetName(std::string_view name) {
    return !name.empty() && CharacterCount(name) <= kMaxSheetNameCharacters &&
           name.find_first_of(":\\/?*[]") == name.npos && name.front() != '\'' &&
           name.back() != '\'';
}

bool SameName(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return LowerAscii(x) == LowerAscii(y); });
}

std::shared_ptr<Sheet> FindSheet(const Workbook& book, std::string_view name) {
    for (const auto& sheet : book.sheets) {
        if (SameName(sheet->name, name)) return sheet;
    }
    return nullptr;
}

const DefinedName* FindName(const std::vector<DefinedName>& names, std::string_view name) {
    for (const DefinedName& defined : names) {
        if (SameName(defined.name, name)) return &defined;
    }
    return nullptr;
}

double CharactersToPoints(double characters) {
    // Widths count digits of the default font (7 pixels each) plus 5 pixels of cell padding;
    // below one character the padding shrinks with the width.
    if (characters <= 0) return 0;
    const double pixels =
        characters < 1 ? std::round(characters * 12) : std::round(characters * 7) + 5;
    return pixels * 0.75;
}

double PointsToCharacters(double points) {
    const double pixels = std::round(points / 0.75);
    if (pixels <= 0) return 0;
    const double characters = pixels < 12 ? pixels / 12 : (pixels - 5) / 7;
    return std::round(characters * 100) / 100;
}

double ColumnWidthPoints(const Sheet& sheet, int column) {
    const auto found = sheet.columns.find(column);
    if (found == sheet.columns.end()) return CharactersToPoints(kStandardColumnWidth);
    if (found->second.hidden) return 0;
    return CharactersToPoints(found->second.width.value_or(kStandardColumnWidth));
}

namespace {

double HeightOf(const RowInfo& info) {
    return info.hidden ? 0 : info.height.value_or(kStandardRowHeight);
}

double HeightIn(const RowInfos& rows, int row) {
    const auto found = rows.find(row);
    return found == rows.end() ? kStandardRowHeight : HeightOf(found->second);
}

}  // namespace

double RowHeightPoints(const Sheet& sheet, int row) {
    return HeightIn(sheet.rows, row);
}

double ColumnLeft(const Sheet& sheet, int column) {
    const double standard = CharactersToPoints(kStandardColumnWidth);
    double left = (column - 1) * standard;
    for (auto it = sheet.columns.begin(); it != sheet.columns.end() && it->first < column; ++it) {
        left += ColumnWidthPoints(sheet, it->first) - standard;
    }
    return left;
}

double RowInfos::Top(int row) const {
    if (!summed_) {
        summedRows_.clear();
        extraAbove_.assign(1, 0.0);
        for (const auto& [number, info] : map_) {
            summedRows_.push_back(number);
            extraAbove_.push_back(extraAbove_.back() + HeightOf(info) - kStandardRowHeight);
        }
        summed_ = true;
    }
    const auto above = std::lower_bound(summedRows_.begin(), summedRows_.end(), row);
    return (row - 1) * kStandardRowHeight + extraAbove_[std::size_t(above - summedRows_.begin())];
}

double RowTop(const Sheet& sheet, int row) {
    return sheet.rows.Top(row);
}

bool IsDateFormat(std::string_view numberFormat) {
    bool quoted = false;
    for (std::size_t k = 0; k < numberFormat.size(); ++k) {
        const char c = LowerAscii(numberFormat[k]);
        if (quoted) {
            quoted = c != '"';
            continue;
        }
        switch (c) {
            case '"':
                quoted = true;
                break;
            case '\\':
            case '_':
            case '*':
                ++k;
                break;  // the next character is literal (or padding)
            case '[': {
                // [Red], [$-411] and the like are not date parts; [h], [mm], [ss] are.
                const std::size_t end = numberFormat.find(']', k);
                if (end == std::string_view::npos) return false;
                const char inner = LowerAscii(numberFormat[k + 1]);
                if (inner == 'h' || inner == 'm' || inner == 's') return true;
                k = end;
                break;
            }
            case 'y':
            case 'm':
            case 'd':
            case 'h':
            case 's':
                return true;
            default:
                break;
        }
    }
    return false;
}

}  // namespace sheethost
