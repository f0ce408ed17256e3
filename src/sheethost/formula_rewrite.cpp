// The reference rewriters: both copy a formula token by token, replacing only the text of
// reference tokens, so text literals, names and spacing come out exactly as they went in.
#include <optional>
#include <utility>

#include "sheethost/formula.h"
#include "sheethost/formula_lexer.h"

namespace sheethost {
namespace {

using formula::Reference;
using formula::ReferenceEnd;
using formula::Token;
using formula::TokenKind;

// The new text of a reference, or empty when the reference no longer points anywhere.
using ReferenceChange = std::function<std::optional<std::string>(const Reference&)>;

std::string RewriteReferences(std::string_view text, const ReferenceChange& change) {
    if (text.empty() || text.front() != '=') return std::string(text);
    const std::string_view body = text.substr(1);
    const auto tokens = formula::Tokenize(body);
    if (!tokens) return std::string(text);
    std::string result = "=";
    std::size_t copied = 0;  // the part of `body` already in `result`
    for (const Token& token : *tokens) {
        if (token.kind != TokenKind::kReference) continue;
        const std::size_t start = static_cast<std::size_t>(token.source.data() - body.data());
        result += body.substr(copied, start - copied);
        result += token.sheetPart;
        result += change(token.reference).value_or("#REF!");
        copied = start + token.source.size();
    }
    result += body.substr(copied);
    return result;
}

bool IsValidRow(int row) {
    return row >= 1 && row <= kMaxRow;
}

// The new row of `row`, 0 when it is gone or pushed off the sheet.
int MappedRow(int row, const std::function<int(int)>& mapRow) {
    const int mapped = mapRow(row);
    return IsValidRow(mapped) ? mapped : 0;
}

}  // namespace

std::string RewriteRowReferences(std::string_view formula, std::string_view formulaSheet,
                                 std::string_view movedSheet,
                                 const std::function<int(int)>& mapRow) {
    return RewriteReferences(
        formula, [&](const Reference& reference) -> std::optional<std::string> {
            const std::string_view sheet = reference.sheet.empty() ? formulaSheet : reference.sheet;
            const bool wholeColumns = reference.first.row == 0;
            if (!formula::SameSheetName(sheet, movedSheet) || wholeColumns) {
                return formula::ReferenceText(reference.first, reference.last, reference.isRange);
            }
            if (!reference.isRange) {
                ReferenceEnd cell = reference.first;
                cell.row = MappedRow(cell.row, mapRow);
                if (cell.row == 0) return std::nullopt;
                return formula::ReferenceText(cell, cell, false);
            }
            ReferenceEnd first = reference.first;
            ReferenceEnd last = reference.last;
            if (first.row > last.row) std::swap(first, last);
            // A block keeps the rows that survive: each end moves to the nearest surviving row
            // inside the block, so deleting some of its rows shrinks it and deleting all of them
            // loses it.
            int top = 0;
            for (int row = first.row; row <= last.row && top == 0; ++row)
                top = MappedRow(row, mapRow);
            if (top == 0) return std::nullopt;
            int bottom = 0;
            for (int row = last.row; row >= first.row && bottom == 0; --row)
                bottom = MappedRow(row, mapRow);
            first.row = top;
            last.row = bottom;
            // Rows moved past one another turn the block around; it is written top first.
            if (first.row > last.row) std::swap(first, last);
            return formula::ReferenceText(first, last, true);
        });
}

std::string OffsetReferences(std::string_view formula, int rowOffset, int columnOffset) {
    // Moves the relative parts of one end; false when it leaves the sheet. A whole-row end has no
    // column part and a whole-column end no row part (both 0).
    const auto shift = [&](ReferenceEnd& end) {
        if (end.row != 0 && !end.rowAbsolute) {
            end.row += rowOffset;
            if (!IsValidRow(end.row)) return false;
        }
        if (end.column != 0 && !end.columnAbsolute) {
            end.column += columnOffset;
            if (end.column < 1 || end.column > kMaxColumn) return false;
        }
        return true;
    };
    return RewriteReferences(formula,
                             [&](const Reference& reference) -> std::optional<std::string> {
                                 ReferenceEnd first = reference.first;
                                 ReferenceEnd last = reference.last;
                                 if (!shift(first) || !shift(last)) return std::nullopt;
                                 return formula::ReferenceText(first, last, reference.isRange);
                             });
}

}  // namespace sheethost
