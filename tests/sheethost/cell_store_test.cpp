// The sheet's cell store and shared formats: lookups and walks must agree after every kind of
// change, copy and move, and a format shared by many cells must be copied before any one of them
// changes it.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <initializer_list>
#include <utility>
#include <vector>

#include "sheethost/cell_values.h"
#include "sheethost/model.h"
#include "sheethost/sheet_edit.h"

namespace {

using sheethost::Area;
using sheethost::CellAt;
using sheethost::CellRef;
using sheethost::Sheet;
using sheethost::Style;
using Store = sheethost::CellStore<sheethost::Cell>;

// Every cell of the store is found where a walk meets it, and nothing else is.
void ExpectFoundAsWalked(const sheethost::CellStore<sheethost::Cell>& cells) {
    std::vector<CellRef> refs;
    for (const auto& [ref, cell] : cells) {
        if (!refs.empty()) {
            EXPECT_LT(refs.back(), ref);
        }
        refs.push_back(ref);
        const auto found = cells.find(ref);
        ASSERT_NE(found, cells.end()) << ref.row << "," << ref.column;
        EXPECT_EQ(&found->second, &cell);
    }
    EXPECT_EQ(refs.size(), cells.size());
    for (const CellRef& missing : {CellRef{1, 1}, CellRef{9, 9}, CellRef{1048576, 16384}}) {
        if (std::find(refs.begin(), refs.end(), missing) == refs.end()) {
            EXPECT_EQ(cells.find(missing), cells.end());
        }
    }
}

TEST(CellStoreTest, CellsAreFoundAndWalkedInOrderAfterEveryChangeCopyAndMove) {
    sheethost::CellStore<sheethost::Cell> cells;
    // Rows far apart, in blocks of rows made apart, and cells given out of column order.
    for (int row : {700, 3, 1048576, 4}) {
        for (int column : {2, 1, 16384, 6}) cells[{row, column}].value = row * 100.0 + column;
    }
    EXPECT_EQ(std::get<double>(cells.find({3, 16384})->second.value), 16684);
    EXPECT_EQ(std::get<double>(cells.find({1048576, 6})->second.value), 104857606);
    EXPECT_EQ(cells.LastRow(), 1048576);
    ExpectFoundAsWalked(cells);

    // Erasing returns the next cell in row order, also when that lies in a later row.
    auto next = cells.erase(cells.find({4, 2}));
    EXPECT_EQ(next->first, (CellRef{4, 6}));
    EXPECT_EQ(cells.find({4, 2}), cells.end());
    next = cells.erase(cells.find({4, 16384}));
    EXPECT_EQ(next->first, (CellRef{700, 1}));
    // A hint in the wrong place still places the cell where it belongs.
    cells.emplace_hint(cells.begin(), CellRef{4, 2}, sheethost::Cell{});
    cells.emplace_hint(cells.find({700, 1}), CellRef{4, 16384}, sheethost::Cell{});
    EXPECT_FALSE(cells.emplace({4, 2}, sheethost::Cell{}).second);
    ExpectFoundAsWalked(cells);

    // The first cell at or after a place, whether or not a cell stands there.
    EXPECT_EQ(cells.lower_bound({4, 2})->first, (CellRef{4, 2}));
    EXPECT_EQ(cells.lower_bound({4, 3})->first, (CellRef{4, 6}));
    EXPECT_EQ(cells.lower_bound({5, 0})->first, (CellRef{700, 1}));
    EXPECT_EQ(cells.lower_bound({701, 0})->first, (CellRef{1048576, 1}));
    EXPECT_EQ(cells.lower_bound({1048576, 16385}), cells.end());

    // The last row follows its cells away.
    for (int column : {1, 2, 6, 16384}) cells.erase(cells.find({1048576, column}));
    EXPECT_EQ(cells.LastRow(), 700);
    EXPECT_EQ(cells.lower_bound({701, 0}), cells.end());

    // A copy holds cells of its own; a move takes them along.
    const sheethost::CellStore<sheethost::Cell> copy = cells;
    cells.clear();
    EXPECT_EQ(cells.find({3, 1}), cells.end());
    EXPECT_EQ(cells.begin(), cells.end());
    EXPECT_EQ(cells.LastRow(), 0);
    ExpectFoundAsWalked(copy);
    sheethost::CellStore<sheethost::Cell> moved = sheethost::CellStore<sheethost::Cell>(copy);
    ExpectFoundAsWalked(moved);
    sheethost::CellStore<sheethost::Cell> assigned;
    assigned = std::move(moved);
    ExpectFoundAsWalked(assigned);
    // What a store moved from holds is nothing, walked or asked.
    EXPECT_EQ(moved.begin(), moved.end());
    EXPECT_EQ(moved.LastRow(), 0);
    EXPECT_EQ(moved.find({3, 1}), moved.end());
    EXPECT_EQ(assigned, copy);
    assigned[{3, 1}].value = 1.0;
    EXPECT_FALSE(assigned == copy);
}

// Walks pass over rows and blocks of rows that hold no cell by marks kept on every change: a mark
// left behind by an erase, a copy or a move would hide cells or stop a walk short.
TEST(CellStoreTest, WalksPassOverRowsAndBlocksEmptiedBetweenCells) {
    Store cells;
    for (int row : {1, 2, 200, 300, 70000, 1048576}) cells[{row, 3}].value = double(row);
    // Row 2 emptied in a block that still holds cells, the block of row 300 emptied altogether.
    cells.erase(cells.find({2, 3}));
    cells.erase(cells.find({300, 3}));
    cells.ReserveRow(400, 4);  // a row made with room but no cell
    const Store copy = cells;
    Store taken = copy;
    Store moved(std::move(taken));
    for (const Store* store : std::initializer_list<const Store*>{&cells, &copy, &moved}) {
        std::vector<int> rows;
        for (const auto& [ref, cell] : *store) rows.push_back(ref.row);
        EXPECT_EQ(rows, (std::vector<int>{1, 200, 70000, 1048576}));
        EXPECT_EQ(store->lower_bound({2, 1})->first, (CellRef{200, 3}));
        EXPECT_EQ(store->lower_bound({201, 1})->first, (CellRef{70000, 3}));
        EXPECT_EQ(store->lower_bound({70000, 4})->first, (CellRef{1048576, 3}));
        ExpectFoundAsWalked(*store);
    }
    // A cell back in an emptied block is met again, and the last row follows the last cell.
    moved[{300, 1}].value = 1.0;
    EXPECT_EQ(moved.lower_bound({201, 1})->first, (CellRef{300, 1}));
    moved.erase(moved.find({1048576, 3}));
    moved.erase(moved.find({70000, 3}));
    EXPECT_EQ(moved.LastRow(), 300);
    EXPECT_EQ(moved.lower_bound({301, 1}), moved.end());
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

// A column formatted one cell at a time, or typed into with dates, must end with one copy of each
// format: a copy per cell made every later change of the block copy every cell again.
TEST(CellStoreTest, FormatsMadeOneCellAtATimeAreShared) {
    Sheet sheet;
    for (int row = 1; row <= 40; ++row) {
        // Rows alternate between two formats, and between them other formats come and go.
        sheethost::ChangeStyle(sheet, {Area{row, 1, row, 1}}, [row](Style& style) {
            style.interior.colorIndex = row % 2 == 0 ? 3 : 4;
        });
        sheethost::ChangeStyle(sheet, {Area{row, 5, row, 5}},
                               [row](Style& style) { style.font.size = row; });
        ASSERT_TRUE(
            sheethost::TypeIntoCell(sheet, row, 2, "2024/4/" + std::to_string(row % 28 + 1)));
    }
    for (int row = 3; row <= 40; ++row) {
        EXPECT_TRUE(CellAt(sheet, row, 1).style.Shares(CellAt(sheet, row - 2, 1).style)) << row;
        EXPECT_FALSE(CellAt(sheet, row, 1).style.Shares(CellAt(sheet, row - 1, 1).style)) << row;
        EXPECT_TRUE(CellAt(sheet, row, 2).style.Shares(CellAt(sheet, 1, 2).style)) << row;
    }
    EXPECT_EQ(CellAt(sheet, 40, 1).style->interior.colorIndex, 3);
    EXPECT_EQ(CellAt(sheet, 39, 1).style->interior.colorIndex, 4);
    EXPECT_EQ(CellAt(sheet, 40, 2).style->numberFormat, "yyyy/m/d");
    EXPECT_EQ(CellAt(sheet, 40, 5).style->font.size, 40);

    // A shared copy is still copied before one cell changes it.
    CellAt(sheet, 4, 2).style.Edit().font.italic = true;
    EXPECT_FALSE(CellAt(sheet, 6, 2).style->font.italic);
}

// Borders change the cells on both sides of an edge in one walk: the outcome must be that of
// each part changed in turn, overlaps taking their changes in order, over cells that hold values,
// inherit a row or column format, or are missing.
TEST(CellStoreTest, AChangeByPartEndsAsItsPartsChangedInTurn) {
    Sheet sheet;
    CellAt(sheet, 3, 3).value = 1.0;
    CellAt(sheet, 9, 9).value = 2.0;
    sheethost::ChangeStyle(sheet, {Area{4, 1, 4, sheethost::kMaxColumn}},
                           [](Style& style) { style.font.italic = true; });
    sheethost::ChangeStyle(sheet, {Area{1, 5, sheethost::kMaxRow, 5}},
                           [](Style& style) { style.numberFormat = "0.0"; });
    const auto lineStyle = [](int value) {
        return [value](Style& style) { style.borders[0].lineStyle = value; };
    };
    const std::vector<sheethost::StylePart> parts{
        {Area{2, 2, 5, 4}, lineStyle(1)},
        {Area{3, 3, 6, 6}, lineStyle(2)},
        {Area{1, 1, 1, 1}, [](Style& style) { style.font.bold = true; }},
        {Area{7, 7, 8, 8}, [](Style&) {}},
    };
    Sheet inTurn = sheet;
    for (const auto& part : parts) sheethost::ChangeStyle(inTurn, {part.cells}, part.change);
    sheethost::ChangeStyleByPart(sheet, parts);

    EXPECT_EQ(sheet.cells, inTurn.cells);
    EXPECT_EQ(CellAt(sheet, 3, 3).style->borders[0].lineStyle, 2);
    EXPECT_TRUE(CellAt(sheet, 4, 5).style->font.italic);
    EXPECT_EQ(sheet.cells.find({7, 7}), sheet.cells.end());  // changed to nothing: no entry
    EXPECT_EQ(sheet.cells.find({1, 3}), sheet.cells.end());  // between the parts: untouched
    // Cells that lie in the same parts and looked alike share their new format.
    EXPECT_TRUE(CellAt(sheet, 2, 2).style.Shares(CellAt(sheet, 2, 3).style));
}

// Borders are set a property at a time over the same parts, and a change that would leave every
// format the last walk left as it is passes over the cells. It must still reach a cell changed
// since, and must not pass over a change that does something.
class RepeatedPartChangeTest : public ::testing::Test {
  protected:
    RepeatedPartChangeTest() {
        for (int row = 2; row <= 4; ++row) {
            for (int column = 2; column <= 4; ++column) CellAt(sheet, row, column).value = 1.0;
        }
    }

    // The inside horizontal lines of B2:D4: the bottom of rows 2 and 3, the top of rows 3 and 4.
    static std::vector<sheethost::StylePart> InsideLines(
        std::function<void(sheethost::Border&)> how) {
        const auto side = [how](std::size_t slot) {
            return [how, slot](Style& style) { how(style.borders[slot]); };
        };
        return {{Area{2, 2, 3, 4}, side(kBottom)}, {Area{3, 2, 4, 4}, side(kTop)}};
    }
    static constexpr std::size_t kTop = 3;
    static constexpr std::size_t kBottom = 4;

    const sheethost::Border& Top(int row, int column) {
        return CellAt(sheet, row, column).style->borders[kTop];
    }

    Sheet sheet;
};

TEST_F(RepeatedPartChangeTest, APropertyThatChangesSomethingIsApplied) {
    sheethost::ChangeStyleByPart(sheet, InsideLines([](auto& b) { b.lineStyle = 1; }));
    sheethost::ChangeStyleByPart(sheet, InsideLines([](auto& b) { b.weight = -4138; }));
    EXPECT_EQ(Top(3, 3).lineStyle, 1);
    EXPECT_EQ(Top(4, 2).weight, -4138);
    EXPECT_EQ(Top(2, 2).lineStyle, sheethost::xl::kNone);  // the top row's top is an edge
}

TEST_F(RepeatedPartChangeTest, ACellChangedSinceTheLastWalkIsReached) {
    sheethost::ChangeStyleByPart(sheet, InsideLines([](auto& b) { b.lineStyle = 1; }));
    // The weight the lines already have: nothing to do, unless a cell changed meanwhile.
    sheethost::ChangeStyleByPart(sheet, InsideLines([](auto& b) { b.weight = 2; }));
    CellAt(sheet, 3, 3).style.Edit().borders[kTop].weight = -4138;
    sheethost::ChangeStyleByPart(sheet, InsideLines([](auto& b) { b.weight = 2; }));
    EXPECT_EQ(Top(3, 3).weight, 2);

    // The same over a sheet that took each change in turn, cell by cell.
    Sheet inTurn;
    for (int row = 2; row <= 4; ++row) {
        for (int column = 2; column <= 4; ++column) CellAt(inTurn, row, column).value = 1.0;
    }
    for (const auto& part : InsideLines([](auto& b) { b.lineStyle = 1; })) {
        sheethost::ChangeStyle(inTurn, {part.cells}, part.change);
    }
    EXPECT_EQ(sheet.cells, inTurn.cells);
}

}  // namespace
