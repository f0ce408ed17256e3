#include "sheethost/address.h"

#include <algorithm>
#include <charconv>

#include "sheethost/formula.h"

namespace sheethost {
namespace {

// Names may refer to names; a chain longer than this is taken for a loop.
constexpr int kMaxNameDepth = 16;

struct Corner {
    int row = 0;     // 0 when the corner has no row part
    int column = 0;  // 0 when it has no column part
};

std::optional<Corner> ParseCorner(std::string_view text) {
    std::size_t at = 0;
    auto skipDollar = [&] {
        if (at < text.size() && text[at] == '$') ++at;
    };
    Corner corner;
    skipDollar();
    const std::size_t lettersStart = at;
    while (at < text.size() &&
           ((text[at] >= 'A' && text[at] <= 'Z') || (text[at] >= 'a' && text[at] <= 'z'))) {
        ++at;
    }
    if (at > lettersStart) {
        corner.column = ColumnNumber(text.substr(lettersStart, at - lettersStart));
        if (corner.column == 0) return std::nullopt;
        skipDollar();
    } else if (at > 0 && at < text.size() && text[at] == '$') {
        return std::nullopt;  // "$$5"
    }
    if (at < text.size()) {
        const char* begin = text.data() + at;
        const char* end = text.data() + text.size();
        if (*begin < '0' || *begin > '9') return std::nullopt;
        const auto [stop, error] = std::from_chars(begin, end, corner.row);
        if (error != std::errc() || stop != end || corner.row < 1 || corner.row > kMaxRow) {
            return std::nullopt;
        }
    }
    if (corner.row == 0 && corner.column == 0) return std::nullopt;
    return corner;
}

std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    return text;
}

// Splits at `separator` outside single-quoted sheet names.
std::vector<std::string_view> SplitOutsideQuotes(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    bool quoted = false;
    std::size_t start = 0;
    for (std::size_t k = 0; k < text.size(); ++k) {
        if (text[k] == '\'') quoted = !quoted;
        if (!quoted && text[k] == separator) {
            parts.push_back(text.substr(start, k - start));
            start = k + 1;
        }
    }
    parts.push_back(text.substr(start));
    return parts;
}

std::string UnquotedSheetName(std::string_view text) {
    if (text.size() < 2 || text.front() != '\'' || text.back() != '\'') return std::string(text);
    std::string name;
    text = text.substr(1, text.size() - 2);
    for (std::size_t k = 0; k < text.size(); ++k) {
        name += text[k];
        if (text[k] == '\'' && k + 1 < text.size() && text[k + 1] == '\'') ++k;
    }
    return name;
}

std::optional<ResolvedRange> Resolve(const Workbook& book, const std::shared_ptr<Sheet>& sheet,
                                     std::string_view text, int depth);

std::optional<ResolvedRange> ResolveName(const Workbook& book, const std::shared_ptr<Sheet>& sheet,
                                         bool qualified, std::string_view name, int depth) {
    const DefinedName* defined = sheet ? FindName(sheet->names, name) : nullptr;
    std::shared_ptr<Sheet> context = sheet;
    if (defined == nullptr && !qualified) {
        defined = FindName(book.names, name);
        context = nullptr;  // a workbook-level name's references are all qualified
    }
    if (defined == nullptr || depth >= kMaxNameDepth) return std::nullopt;
    std::string_view refersTo = defined->refersTo;
    if (!refersTo.empty() && refersTo.front() == '=') refersTo.remove_prefix(1);
    return Resolve(book, context ? context : sheet, refersTo, depth + 1);
}

std::optional<ResolvedRange> Resolve(const Workbook& book, const std::shared_ptr<Sheet>& sheet,
                                     std::string_view text, int depth) {
    ResolvedRange resolved;
    for (std::string_view part : SplitOutsideQuotes(Trimmed(text), ',')) {
        part = Trimmed(part);
        std::shared_ptr<Sheet> target = sheet;
        bool qualified = false;
        const auto pieces = SplitOutsideQuotes(part, '!');
        if (pieces.size() > 2) return std::nullopt;
        if (pieces.size() == 2) {
            target = FindSheet(book, UnquotedSheetName(pieces[0]));
            qualified = true;
            part = pieces[1];
        }
        if (!target) return std::nullopt;

        ResolvedRange piece;
        if (const auto area = ParseArea(part)) {
            piece = ResolvedRange{target, {*area}};
        } else if (auto named = ResolveName(book, target, qualified, part, depth)) {
            piece = std::move(*named);
        } else {
            return std::nullopt;
        }
        if (resolved.sheet && resolved.sheet != piece.sheet) return std::nullopt;
        resolved.sheet = piece.sheet;
        resolved.areas.insert(resolved.areas.end(), piece.areas.begin(), piece.areas.end());
    }
    return resolved;
}

}  // namespace

std::optional<Area> ParseArea(std::string_view text) {
    text = Trimmed(text);
    const std::size_t colon = text.find(':');
    const auto first = ParseCorner(text.substr(0, colon));
    if (!first) return std::nullopt;
    Corner second = *first;
    if (colon != std::string_view::npos) {
        const auto parsed = ParseCorner(text.substr(colon + 1));
        if (!parsed) return std::nullopt;
        second = *parsed;
    }
    const bool firstIsCell = first->row != 0 && first->column != 0;
    const bool sameKind =
        (first->row != 0) == (second.row != 0) && (first->column != 0) == (second.column != 0);
    // A lone row number or column letters ("5", "C") is not an address; "5:5" and "C:C" are.
    if (!sameKind || (colon == std::string_view::npos && !firstIsCell)) return std::nullopt;

    Area area;
    if (first->column == 0) {  // whole rows
        area =
            Area{std::min(first->row, second.row), 1, std::max(first->row, second.row), kMaxColumn};
    } else if (first->row == 0) {  // whole columns
        area = Area{1, std::min(first->column, second.column), kMaxRow,
                    std::max(first->column, second.column)};
    } else {
        area = Area{std::min(first->row, second.row), std::min(first->column, second.column),
                    std::max(first->row, second.row), std::max(first->column, second.column)};
    }
    return area;
}

std::string AreaAddress(const Area& area, bool rowAbsolute, bool columnAbsolute) {
    const std::string rowDollar = rowAbsolute ? "$" : "";
    const std::string columnDollar = columnAbsolute ? "$" : "";
    if (area.WholeRows() && !area.WholeColumns()) {
        return rowDollar + std::to_string(area.top) + ":" + rowDollar + std::to_string(area.bottom);
    }
    if (area.WholeColumns()) {
        return columnDollar + ColumnLetters(area.left) + ":" + columnDollar +
               ColumnLetters(area.right);
    }
    auto cell = [&](int row, int column) {
        return columnDollar + ColumnLetters(column) + rowDollar + std::to_string(row);
    };
    std::string text = cell(area.top, area.left);
    if (area.Rows() > 1 || area.Columns() > 1) text += ":" + cell(area.bottom, area.right);
    return text;
}

std::string AreasAddress(const std::vector<Area>& areas, bool rowAbsolute, bool columnAbsolute) {
    std::string text;
    for (const Area& area : areas) {
        if (!text.empty()) text += ",";
        text += AreaAddress(area, rowAbsolute, columnAbsolute);
    }
    return text;
}

std::string QuotedSheetName(std::string_view name) {
    const bool plain = !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
               c == '_' || c == '.';
    }) && !(name.front() >= '0' && name.front() <= '9');
    if (plain) return std::string(name);
    std::string quoted = "'";
    for (char c : name) {
        quoted += c;
        if (c == '\'') quoted += '\'';
    }
    return quoted + "'";
}

std::optional<ResolvedRange> ResolveAddress(const Workbook& book,
                                            const std::shared_ptr<Sheet>& sheet,
                                            std::string_view text) {
    return Resolve(book, sheet, text, 0);
}

}  // namespace sheethost
