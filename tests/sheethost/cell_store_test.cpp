// The sheet's cell store and shared formats: the hashed index must answer as the ordered map does
// after every kind of change, copy and move, and a format shared by many cells must be copied
// before any one of them changes it.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "sheethost/model.h"
#include "sheethost/sheet_edit.h"

namespace {

using sheethost::Area;
using sheethost::CellAt;
using sheethost::CellRef;
using sheethost::Sheet;
using sheethost::Style;

// Every cell of the store is found through the index, and nothing else is.
void ExpectIndexMatchesMap(const sheethost::CellStore<sheethost::Cell>& cells) {
    std::vector<CellRef> refs;
    for (const auto& [ref, cell] : cells) {
        refs.push_back(ref);
        const auto found = cells.find(ref);
        ASSERT_NE(found, cells.end()) << ref.row << "," << ref.column;
        EXPECT_EQ(&found->second, &cell);
    }
    for (const CellRef& missing : {CellRef{1, 1}, CellRef{9, 9}, CellRef{1048576, 16384}}) {
        if (std::find(refs.begin(), refs.end(), missing) == refs.end()) {
            EXPECT_EQ(cells.find(missing), cells.end());
        }
    }
}

TEST(CellStoreTest, TheIndexFollowsEveryChangeCopyAndMove) {
    sheethost::CellStore<sheethost::Cell> cells;
    for (int row : {5, 3, 4}) {
        for (int column : {2, 1, 1030, 6}) cells[{row, column}].value = row * 100.0 + column;
    }
    // Columns past 1,024 share buckets with the next rows' first columns.
    EXPECT_EQ(std::get<double>(cells.find({3, 1030})->second.value), 1330);
    EXPECT_EQ(std::get<double>(cells.find({4, 6})->second.value), 406);
    ExpectIndexMatchesMap(cells);

    // Erasing returns the next cell in row order and forgets the erased one.
    auto next = cells.erase(cells.find({4, 2}));
    EXPECT_EQ(next->first, (CellRef{4, 6}));
    EXPECT_EQ(cells.find({4, 2}), cells.end());
    // A hint in the wrong place still places the cell where it belongs.
    cells.emplace_hint(cells.begin(), CellRef{4, 2}, sheethost::Cell{});
    EXPECT_FALSE(cells.emplace({4, 2}, sheethost::Cell{}).second);
    ExpectIndexMatchesMap(cells);

    // The first cell at or after a place, whether or not a cell stands there.
    EXPECT_EQ(cells.lower_bound({4, 2})->first, (CellRef{4, 2}));
    EXPECT_EQ(cells.lower_bound({4, 3})->first, (CellRef{4, 6}));
    EXPECT_EQ(cells.lower_bound({4, 1031})->first, (CellRef{5, 1}));
    EXPECT_EQ(cells.lower_bound({6, 0}), cells.end());

    // A copy indexes its own cells; a move takes the index along.
    const sheethost::CellStore<sheethost::Cell> copy = cells;
    cells.clear();
    EXPECT_EQ(cells.find({3, 1}), cells.end());
    ExpectIndexMatchesMap(copy);
    sheethost::CellStore<sheethost::Cell> moved = sheethost::CellStore<sheethost::Cell>(copy);
    ExpectIndexMatchesMap(moved);
    sheethost::CellStore<sheethost::Cell> assigned;
    assigned = std::move(moved);
    ExpectIndexMatchesMap(assigned);
    EXPECT_EQ(assigned, copy);
}

TEST(CellStoreTest, ASharedFormatIsCopiedBeforeOneCellChangesIt) {
    Sheet sheet;
    sheethost::ChangeStyle(sheet, {Area{1, 1, 3, 3}},
                           [](Style& style) { style.numberFormat = "0.00"; });
    // The block's cells share the one new format.
    EXPECT_TRUE(CellAt(sheet, 1, 1).style.Shares(CellAt(sheet, 3, 3).style));

    CellAt(sheet, 2, 2).style.Edit().font.bold = true;
    EXPECT_TRUE(CellAt(sheet, 2, 2).style->font.bold);
    EXPECT_FALSE(CellAt(sheet, 1, 1).style->font.bold);
    EXPECT_EQ(CellAt(sheet, 1, 1).style->numberFormat, "0.00");

    // Changing the block again turns both formats, not each cell, into new ones.
    sheethost::ChangeStyle(sheet, {Area{1, 1, 3, 3}},
                           [](Style& style) { style.interior.colorIndex = 6; });
    EXPECT_TRUE(CellAt(sheet, 1, 1).style.Shares(CellAt(sheet, 3, 1).style));
    EXPECT_FALSE(CellAt(sheet, 1, 1).style.Shares(CellAt(sheet, 2, 2).style));
    EXPECT_TRUE(CellAt(sheet, 2, 2).style->font.bold);
    EXPECT_EQ(CellAt(sheet, 2, 2).style->interior.colorIndex, 6);

    // Back to the default, the cells hold nothing of their own and are dropped.
    sheethost::ClearFormats(sheet, {Area{1, 1, 3, 3}});
    EXPECT_TRUE(sheet.cells.empty());
}

}  // namespace
