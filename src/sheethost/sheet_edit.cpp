#include "sheethost/sheet_edit.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <optional>
#include <unordered_map>
#include <utility>

#include "sheethost/cell_values.h"

namespace sheethost {

namespace {

template <class Info>
bool IsNormal(const Info& info) {
    return info != Info{} && info.style != Style{};
}

template <class Info>
void NormalizeInfos(std::map<int, Info>& infos, int first, int last) {
    for (auto it = infos.lower_bound(first); it != infos.end() && it->first <= last;) {
        if (it->second.style == Style{}) it->second.style.reset();
        it = it->second == Info{} ? infos.erase(it) : std::next(it);
    }
}

}  // namespace

void NormalizeRowInfos(Sheet& sheet, int top, int bottom) {
    // Rows already in order are left untouched, so that the tops summed over them stay valid.
    const RowInfos& rows = sheet.rows;
    const bool normal = std::all_of(rows.lower_bound(top), rows.lower_bound(bottom + 1),
                                    [](const auto& entry) { return IsNormal(entry.second); });
    if (!normal) NormalizeInfos(sheet.rows.Edit(), top, bottom);
}

void NormalizeColumnInfos(Sheet& sheet, int left, int right) {
    NormalizeInfos(sheet.columns, left, right);
}

void NormalizeLineInfos(Sheet& sheet) {
    NormalizeRowInfos(sheet, 1, kMaxRow);
    NormalizeColumnInfos(sheet, 1, kMaxColumn);
}

namespace {

// One change made to many formats. Formats that were one shared copy before the change are one
// copy after it, so a block of cells that looked alike still shares its new look; a format the
// change leaves as it was is kept, and its cells are not written to.
class StyleChange {
  public:
    StyleChange(std::function<void(Style&)> change, RecentStyles& recent)
        : change_(std::move(change)), recent_(recent) {}

    void operator()(SharedStyle& style) {
        // Neighbouring cells mostly share a format: the last one changed is tried first.
        if (last_ == nullptr || !last_->first.Shares(style)) last_ = &Changed(style);
        if (!style.Shares(last_->second)) style = last_->second;
    }

    // Visits each format the change has left a cell in.
    template <class Visit>
    void ForEachResult(Visit visit) const {
        for (const auto& [key, done] : done_) visit(done.second);
    }

  private:
    const std::pair<SharedStyle, SharedStyle>& Changed(const SharedStyle& style) {
        const Style* key = style.operator->();
        if (const auto done = done_.find(key); done != done_.end()) return done->second;
        SharedStyle changed = style;
        change_(changed.Edit());
        changed = changed == *style ? style : recent_.Share(std::move(changed));
        // The old copy is held so that its address names no other format meanwhile.
        return done_.emplace(key, std::pair{style, std::move(changed)}).first->second;
    }

    std::function<void(Style&)> change_;
    RecentStyles& recent_;
    std::unordered_map<const Style*, std::pair<SharedStyle, SharedStyle>> done_;
    const std::pair<SharedStyle, SharedStyle>* last_ = nullptr;
};

// Whether a cell's format is the one it would inherit, asked for many cells that mostly share
// both: the last answer is kept.
class InheritsCheck {
  public:
    bool operator()(const SharedStyle& own, const SharedStyle& inherited) {
        if (!own_ || !own_->Shares(own) || !inherited_->Shares(inherited)) {
            own_ = own;
            inherited_ = inherited;
            same_ = own == inherited;
        }
        return same_;
    }

  private:
    std::optional<SharedStyle> own_;
    std::optional<SharedStyle> inherited_;
    bool same_ = false;
};

void ChangeCells(Sheet& sheet, const std::vector<CellRef>& cells, StyleChange& change) {
    for (const CellRef& ref : cells) change(CellAt(sheet, ref.row, ref.column).style);
}

void TrimCells(Sheet& sheet, const std::vector<CellRef>& cells) {
    for (const CellRef& ref : cells) TrimCell(sheet, ref.row, ref.column);
}

void ChangeColumns(Sheet& sheet, const Area& area, StyleChange& change) {
    // A row format outranks the column's: where a formatted row crosses the columns, the cell
    // gets an entry of its own that keeps the row's format and takes the change.
    for (const auto& [row, info] : sheet.rows) {
        if (!info.style) continue;
        for (int column = area.left; column <= area.right; ++column) {
            CellAt(sheet, row, column);
        }
    }
    const std::vector<CellRef> cells = CellsIn(sheet, area);
    ChangeCells(sheet, cells, change);
    for (int column = area.left; column <= area.right; ++column) {
        ColumnInfo& info = sheet.columns[column];
        SharedStyle style = info.style.value_or(SharedStyle{});
        change(style);
        info.style = std::move(style);
    }
    TrimCells(sheet, cells);
}

void ChangeRows(Sheet& sheet, const Area& area, StyleChange& change) {
    // Cells under a formatted column keep that column's format once the row has a format of its
    // own, which would otherwise take precedence.
    for (int row = area.top; row <= area.bottom; ++row) {
        const auto found = sheet.rows.find(row);
        if (found != sheet.rows.end() && found->second.style) continue;
        for (const auto& [column, info] : sheet.columns) {
            if (info.style) CellAt(sheet, row, column);
        }
    }
    const std::vector<CellRef> cells = CellsIn(sheet, area);
    ChangeCells(sheet, cells, change);
    for (int row = area.top; row <= area.bottom; ++row) {
        RowInfo& info = sheet.rows[row];
        SharedStyle style = info.style.value_or(SharedStyle{});
        change(style);
        info.style = std::move(style);
    }
    TrimCells(sheet, cells);
}

// The whole sheet: every cell, row and column format takes the change; columns without a format
// get one only when the change alters the default format.
void ChangeSheet(Sheet& sheet, StyleChange& change) {
    for (auto& [ref, cell] : sheet.cells) change(cell.style);
    for (auto& [row, info] : sheet.rows.Edit()) {
        if (info.style) change(*info.style);
    }
    SharedStyle changedDefault;
    change(changedDefault);
    for (int column = 1; column <= kMaxColumn; ++column) {
        const auto found = sheet.columns.find(column);
        if (found != sheet.columns.end() && found->second.style) {
            change(*found->second.style);
        } else if (changedDefault != Style{}) {
            sheet.columns[column].style = changedDefault;
        }
    }
    std::vector<CellRef> cells;
    for (const auto& [ref, cell] : sheet.cells) cells.push_back(ref);
    TrimCells(sheet, cells);
}

// How far ahead of a walk down a block its rows are fetched: the walk spends some tens of
// nanoseconds on a row, a row fetched from main memory takes a few hundred.
constexpr int kRowsAhead = 8;

// The block's cells are walked in the order the sheet keeps them, each found or made next to the
// one before and dropped at once when the change leaves it bare: a search per cell made styling a
// large block grow faster than the block. `changeAt(row, column)` gives a cell's change, or null
// for a cell the change passes over. True when every cell changed holds an entry afterwards, so
// that its format is its own and not its row's or column's.
template <class ChangeAt>
bool ChangeBlock(Sheet& sheet, const Area& area, ChangeAt changeAt) {
    bool allOwn = true;
    auto& cells = sheet.cells;
    // What the block's cells inherit is looked up once per column and once per row.
    std::vector<const SharedStyle*> columnStyles;
    for (int column = area.left; column <= area.right; ++column) {
        columnStyles.push_back(&ColumnStyle(sheet, column));
    }
    InheritsCheck inherits;
    for (int row = area.top; row <= area.bottom; ++row) {
        const SharedStyle* rowStyle = RowStyle(sheet, row);
        cells.Prefetch(row + kRowsAhead);
        auto at = cells.lower_bound(CellRef{row, area.left});
        for (int column = area.left; column <= area.right; ++column) {
            const CellRef ref{row, column};
            const bool exists = at != cells.end() && at->first == ref;
            StyleChange* change = changeAt(row, column);
            if (change == nullptr) {
                if (exists) ++at;
                continue;
            }
            const SharedStyle& inherited =
                rowStyle != nullptr ? *rowStyle : *columnStyles[column - area.left];
            if (exists) {
                (*change)(at->second.style);
                const bool bare = inherits(at->second.style, inherited) && HoldsNothing(at->second);
                at = bare ? cells.erase(at) : std::next(at);
                allOwn = allOwn && !bare;
                continue;
            }
            // A missing cell gets an entry only when the change gives it a format of its own.
            Cell cell;
            cell.style = inherited;
            (*change)(cell.style);
            if (inherits(cell.style, inherited)) {
                allOwn = false;
            } else {
                at = std::next(cells.emplace_hint(at, ref, std::move(cell)));
            }
        }
    }
    return allOwn;
}

// The bounding block of the parts.
Area Bounds(const std::vector<StylePart>& parts) {
    Area bounds = parts.front().cells;
    for (const StylePart& part : parts) {
        bounds.top = std::min(bounds.top, part.cells.top);
        bounds.left = std::min(bounds.left, part.cells.left);
        bounds.bottom = std::max(bounds.bottom, part.cells.bottom);
        bounds.right = std::max(bounds.right, part.cells.right);
    }
    return bounds;
}

// The parts of a by-part change, one bit each, and the change of every mix of parts a cell lies in.
class PartChanges {
  public:
    static constexpr std::size_t kMostParts = 32;

    PartChanges(const std::vector<StylePart>& parts, RecentStyles& recent)
        : parts_(parts), recent_(recent) {}

    // The parts that hold row `row` (or, for columns, column `column`).
    std::uint32_t RowMask(int row) const {
        return Mask([row](const Area& a) { return a.top <= row && row <= a.bottom; });
    }
    std::uint32_t ColumnMask(int column) const {
        return Mask([column](const Area& a) { return a.left <= column && column <= a.right; });
    }

    // The change of a cell in the parts of `mask`, null for a cell in none.
    StyleChange* For(std::uint32_t mask) {
        if (mask == 0) return nullptr;
        auto found = changes_.find(mask);
        if (found == changes_.end())
            found = changes_.try_emplace(mask, InTurn(mask), recent_).first;
        return &found->second;
    }

    // The formats the changes have left cells in, with the parts of each.
    std::vector<PartWalkMemo::Result> Results() const {
        std::vector<PartWalkMemo::Result> results;
        // Named members rather than a structured binding: older compilers cannot capture bindings.
        for (const auto& entry : changes_) {
            const std::uint32_t mask = entry.first;
            entry.second.ForEachResult([&](const SharedStyle& style) {
                results.push_back({mask, style});
            });
        }
        return results;
    }

    // Whether the changes would leave each of these formats as it is.
    bool Leave(const std::vector<PartWalkMemo::Result>& results) {
        return std::all_of(results.begin(), results.end(), [this](const auto& result) {
            SharedStyle style = result.style;
            (*For(result.parts))(style);
            return style.Shares(result.style);
        });
    }

  private:
    std::function<void(Style&)> InTurn(std::uint32_t mask) const {
        return [this, mask](Style& style) {
            for (std::size_t part = 0; part < parts_.size(); ++part) {
                if (mask & (1u << part)) parts_[part].change(style);
            }
        };
    }

    template <class Holds>
    std::uint32_t Mask(Holds holds) const {
        std::uint32_t mask = 0;
        for (std::size_t part = 0; part < parts_.size(); ++part) {
            if (holds(parts_[part].cells)) mask |= 1u << part;
        }
        return mask;
    }

    const std::vector<StylePart>& parts_;
    RecentStyles& recent_;
    std::unordered_map<std::uint32_t, StyleChange> changes_;
};

}  // namespace

std::vector<CellRef> CellsIn(const Sheet& sheet, const Area& area) {
    std::vector<CellRef> cells;
    for (auto it = sheet.cells.lower_bound(CellRef{area.top, 0});
         it != sheet.cells.end() && it->first.row <= area.bottom; ++it) {
        if (it->first.column >= area.left && it->first.column <= area.right) {
            cells.push_back(it->first);
        }
    }
    return cells;
}

double CellsStyledBy(const Sheet& sheet, const std::vector<Area>& areas) {
    const auto formatted = [](const auto& lines) {
        return static_cast<double>(std::count_if(
            lines.begin(), lines.end(), [](const auto& line) { return line.second.style; }));
    };
    double cells = 0;
    for (const Area& area : areas) {
        if (area.WholeColumns() && area.WholeRows()) continue;
        if (area.WholeColumns()) {
            cells += formatted(sheet.rows) * area.Columns();
        } else if (area.WholeRows()) {
            cells += static_cast<double>(area.Rows()) * formatted(sheet.columns);
        } else {
            cells += static_cast<double>(area.Rows()) * area.Columns();
        }
    }
    return cells;
}

void ChangeStyle(Sheet& sheet, const std::vector<Area>& areas,
                 const std::function<void(Style&)>& how) {
    if (CellsStyledBy(sheet, areas) > kMostCellsStyledAtOnce) throw std::bad_alloc();
    StyleChange change(how, sheet.recentStyles);
    for (const Area& area : areas) {
        if (area.WholeColumns() && area.WholeRows()) {
            ChangeSheet(sheet, change);
        } else if (area.WholeColumns()) {
            ChangeColumns(sheet, area, change);
        } else if (area.WholeRows()) {
            ChangeRows(sheet, area, change);
        } else {
            // A block leaves the formats of its rows and columns as they were.
            ChangeBlock(sheet, area, [&change](int, int) { return &change; });
            continue;
        }
        NormalizeRowInfos(sheet, area.top, area.bottom);
        NormalizeColumnInfos(sheet, area.left, area.right);
    }
}

void ChangeStyleByPart(Sheet& sheet, const std::vector<StylePart>& parts) {
    const bool blocks = std::none_of(parts.begin(), parts.end(), [](const StylePart& part) {
        return part.cells.WholeRows() || part.cells.WholeColumns();
    });
    if (parts.empty() || !blocks || parts.size() > PartChanges::kMostParts) {
        for (const StylePart& part : parts) ChangeStyle(sheet, {part.cells}, part.change);
        return;
    }
    std::vector<Area> areas;
    for (const StylePart& part : parts) areas.push_back(part.cells);
    if (CellsStyledBy(sheet, areas) > kMostCellsStyledAtOnce) throw std::bad_alloc();
    const Area bounds = Bounds(parts);
    PartChanges changes(parts, sheet.recentStyles);
    if (const auto* left = sheet.lastPartWalk.LeftIn(areas, sheet.cells.Changes())) {
        if (changes.Leave(*left)) return;
    }
    std::vector<std::uint32_t> columnMasks;
    for (int column = bounds.left; column <= bounds.right; ++column) {
        columnMasks.push_back(changes.ColumnMask(column));
    }
    int maskRow = 0;
    std::uint32_t rowMask = 0;
    const bool allOwn = ChangeBlock(sheet, bounds, [&](int row, int column) {
        if (row != maskRow) {
            maskRow = row;
            rowMask = changes.RowMask(row);
        }
        return changes.For(rowMask & columnMasks[column - bounds.left]);
    });
    // Formats inherited from rows and columns change without the cells knowing: only a walk that
    // left every cell a format of its own can vouch for them.
    sheet.lastPartWalk =
        allOwn ? PartWalkMemo(std::move(areas), sheet.cells.Changes(), changes.Results())
               : PartWalkMemo();
}

void ClearContents(Sheet& sheet, const std::vector<Area>& areas) {
    for (const Area& area : areas) {
        for (const CellRef& ref : CellsIn(sheet, area)) {
            ClearCellContents(sheet, ref.row, ref.column);
        }
    }
}

void ClearFormats(Sheet& sheet, const std::vector<Area>& areas) {
    ChangeStyle(sheet, areas, [](Style& style) { style = Style{}; });
}

Clipboard CopyCells(const Workbook& book, const std::shared_ptr<Sheet>& sheet, const Area& area,
                    bool cut) {
    Clipboard clipboard{sheet, area, cut, {}};
    auto take = [&](int row, int column) {
        const Cell* cell = FindCell(*sheet, row, column);
        const Style& style = EffectiveStyle(*sheet, row, column);
        if (cell == nullptr && style == Style{}) return;
        ClippedCell clipped{cell ? *cell : Cell{}, CellDisplayValue(book, *sheet, row, column)};
        clipped.cell.style = style;
        clipboard.cells.emplace(CellRef{row - area.top, column - area.left}, std::move(clipped));
    };
    if (area.WholeRows() || area.WholeColumns()) {
        // Whole rows or columns: the cells that exist; row and column formats stay behind.
        for (const CellRef& ref : CellsIn(*sheet, area)) take(ref.row, ref.column);
    } else {
        for (int row = area.top; row <= area.bottom; ++row) {
            for (int column = area.left; column <= area.right; ++column) take(row, column);
        }
    }
    return clipboard;
}

void PasteCells(Sheet& sheet, const Clipboard& clipboard, int top, int left, PasteKind kind) {
    const Area& source = clipboard.area;
    const Area target{top, left, std::min(top + source.Rows() - 1, kMaxRow),
                      std::min(left + source.Columns() - 1, kMaxColumn)};
    if (kind != PasteKind::kFormats) ClearContents(sheet, {target});
    if (kind != PasteKind::kValues) ClearFormats(sheet, {target});
    for (const auto& [offset, clipped] : clipboard.cells) {
        const int row = top + offset.row;
        const int column = left + offset.column;
        if (!target.Contains(row, column)) continue;
        Cell& cell = CellAt(sheet, row, column);
        switch (kind) {
            case PasteKind::kAll:
                cell = clipped.cell;
                if (!cell.formula.empty()) {
                    cell.formula =
                        OffsetReferences(cell.formula, top - source.top, left - source.left);
                }
                break;
            case PasteKind::kValues:
                cell.value = clipped.shown;
                cell.formula.clear();
                cell.quotePrefix = clipped.cell.quotePrefix;
                break;
            case PasteKind::kFormats:
                cell.style = clipped.cell.style;
                break;
        }
        TrimCell(sheet, row, column);
    }
}

}  // namespace sheethost
