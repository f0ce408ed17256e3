// Blocks of cells through one Value call: every cell of a block reads exactly as the single-cell
// operations read it, the block's address and the part of it off the sheet, writing, and the
// true / false / mixed answers of a block's flags.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/recording_dispatch.h"
#include "workbook/workbook.h"

namespace {

using testsupport::HeldVariant;
using testsupport::OleString;
using testsupport::RecordingDispatch;

HeldVariant Error(SCODE code) {
    VARIANT value;
    value.vt = VT_ERROR;
    value.scode = code;
    return HeldVariant(value);
}

// rows x columns of VARIANT counted from 1, filled column by column with `cells`.
HeldVariant Block(LONG rows, LONG columns, const std::vector<HeldVariant>& cells) {
    SAFEARRAYBOUND bounds[2] = {{static_cast<ULONG>(rows), 1}, {static_cast<ULONG>(columns), 1}};
    VARIANT block;
    block.vt = VT_ARRAY | VT_VARIANT;
    block.parray = SafeArrayCreate(VT_VARIANT, 2, bounds);
    for (std::size_t k = 0; k < cells.size(); ++k) {
        LONG at[2] = {1 + static_cast<LONG>(k) % rows, 1 + static_cast<LONG>(k) / rows};
        SafeArrayPutElement(block.parray, at, const_cast<VARIANT*>(&cells[k].get()));
    }
    HeldVariant held(block);
    VariantClear(&block);
    return held;
}

std::string Ascii(const OleString& text) {
    return std::string(text.begin(), text.end());
}

// The values a task row holds, of every kind a cell answers.
std::vector<HeldVariant> RowOfEveryKind() {
    return {HeldVariant::Text(OLESTR("1.2.3")),
            HeldVariant::Number(90),
            HeldVariant::Date(45383.375),
            HeldVariant::Text(OLESTR("08:00")),
            HeldVariant::Bool(true),
            Error(static_cast<SCODE>(0x800A07D7)),
            HeldVariant(),
            HeldVariant::Number(0.1 + 0.2),
            HeldVariant::Text(OLESTR("Gr\u00f6\u00dfe")),
            HeldVariant::Text(OLESTR(" 12 "))};
}

TEST(CellValuesTest, EachCellOfABlockReadsAsTheSingleCellOperationsReadIt) {
    const std::vector<HeldVariant> cells = RowOfEveryKind();
    RecordingDispatch range;
    range.Answer(OLESTR("Value"), Block(1, static_cast<LONG>(cells.size()), cells));
    XlRef reference;
    reference.Set(&range);
    const CellValues block = reference.View().GetValues();
    ASSERT_EQ(block.Rows(), 1);
    ASSERT_EQ(block.Columns(), static_cast<std::int64_t>(cells.size()));

    for (std::size_t k = 0; k < cells.size(); ++k) {
        RecordingDispatch cell;
        cell.Answer(OLESTR("Value"), cells[k]);
        XlRef single;
        single.Set(&cell);
        const XlObject view = single.View();
        const auto column = static_cast<std::int64_t>(k);
        EXPECT_EQ(block.Text(0, column), view.GetValue()) << "cell " << k;
        EXPECT_EQ(block.Wide(0, column), view.GetWide("Value")) << "cell " << k;
        EXPECT_EQ(block.Number(0, column), view.GetValueNum()) << "cell " << k;
    }
    // Outside the block there is nothing.
    EXPECT_EQ(block.Text(1, 0), "");
    EXPECT_EQ(block.Number(0, -1), 0.0);
}

TEST(CellValuesTest, ABlockIsReadAtItsAddressAndCellsOffTheSheetReadEmpty) {
    RecordingDispatch sheet, range;
    XlRef reference;
    reference.Set(&sheet);
    sheet.AnswerObject(OLESTR("Range"), &range);
    range.Answer(OLESTR("Value"),
                 Block(2, 2,
                       {HeldVariant::Text(OLESTR("B1")), HeldVariant::Text(OLESTR("B2")),
                        HeldVariant::Text(OLESTR("C1")), HeldVariant::Text(OLESTR("C2"))}));

    // Columns 0..2 of rows 1..2: column 0 does not exist, so only A1:B2 is asked for.
    const CellValues block = ReadCellBlock(reference.View(), 1, 0, 2, 2);
    ASSERT_EQ(sheet.calls().size(), 1u);
    EXPECT_EQ(Ascii(sheet.lastCall().Argument(0).text()), "A1:B2");
    EXPECT_EQ(Ascii(range.lastCall().member), "Value");
    EXPECT_EQ(block.Rows(), 2);
    EXPECT_EQ(block.Columns(), 3);
    EXPECT_EQ(block.Text(0, 0), "");
    EXPECT_EQ(block.Text(0, 1), "B1");
    EXPECT_EQ(block.Text(1, 2), "C2");
    EXPECT_EQ(range.outstanding(), 0);

    // A block wholly off the sheet is not asked for; one cell answers its plain value.
    sheet.ClearCalls();
    EXPECT_EQ(ReadCellBlock(reference.View(), 3, 16385, 3, 16390).Text(0, 0), "");
    EXPECT_TRUE(sheet.calls().empty());
    range.Answer(OLESTR("Value"), HeldVariant::Number(7));
    const CellValues one = ReadCellBlock(reference.View(), 3, 28, 3, 28);
    EXPECT_EQ(Ascii(sheet.lastCall().Argument(0).text()), "AB3:AB3");
    EXPECT_EQ(one.Number(0, 0), 7.0);

    // A failed read reads as empty cells.
    range.Fail(OLESTR("Value"), DISP_E_EXCEPTION);
    const CellValues failed = ReadCellBlock(reference.View(), 1, 1, 2, 2);
    EXPECT_EQ(failed.Text(1, 1), "");
    EXPECT_EQ(failed.Number(0, 0), 0.0);
}

TEST(CellValuesTest, ABlockIsWrittenAsOneArrayOfRowsByColumnsFromOne) {
    RecordingDispatch sheet, range;
    sheet.AnswerObject(OLESTR("Range"), &range);
    XlRef reference;
    reference.Set(&sheet);

    CellValues block(2, 3);
    block.SetText(0, 0, "1.1");
    block.SetText(1, 2, "Gr\u00f6\u00dfe");
    EXPECT_EQ(block.Text(1, 2), "Gr\u00f6\u00dfe");
    WriteCellBlock(reference.View(), 12, 26, block);
    EXPECT_EQ(Ascii(sheet.lastCall().Argument(0).text()), "Z12:AB13");
    const RecordingDispatch::Call& put = range.lastCall();
    EXPECT_EQ(Ascii(put.member), "Value");
    EXPECT_EQ(put.flags, DISPATCH_PROPERTYPUT);
    const VARIANT& written = put.Argument(0).get();
    ASSERT_EQ(written.vt, VT_ARRAY | VT_VARIANT);
    LONG low = 0, rows = 0, columns = 0;
    SafeArrayGetLBound(written.parray, 1, &low);
    SafeArrayGetUBound(written.parray, 1, &rows);
    SafeArrayGetUBound(written.parray, 2, &columns);
    EXPECT_EQ(low, 1);
    EXPECT_EQ(rows, 2);
    EXPECT_EQ(columns, 3);
    VARIANT element;
    VariantInit(&element);
    LONG at[2] = {2, 3};
    ASSERT_EQ(SafeArrayGetElement(written.parray, at, &element), S_OK);
    EXPECT_EQ(NarrowBstr(element.bstrVal), "Gr\u00f6\u00dfe");
    VariantClear(&element);
    EXPECT_EQ(range.outstanding(), 0);
}

TEST(CellValuesTest, AFlagOfABlockIsTrueFalseOrMixed) {
    RecordingDispatch range;
    XlRef reference;
    reference.Set(&range);
    const XlObject view = reference.View();
    range.AnswerBool(OLESTR("HasFormula"), true);
    EXPECT_EQ(view.GetTriState("HasFormula"), XlObject::TriState::kTrue);
    range.AnswerBool(OLESTR("HasFormula"), false);
    EXPECT_EQ(view.GetTriState("HasFormula"), XlObject::TriState::kFalse);
    VARIANT null;
    null.vt = VT_NULL;
    range.Answer(OLESTR("HasFormula"), HeldVariant(null));
    EXPECT_EQ(view.GetTriState("HasFormula"), XlObject::TriState::kMixed);
    range.Fail(OLESTR("HasFormula"), DISP_E_EXCEPTION);
    EXPECT_EQ(view.GetTriState("HasFormula"), XlObject::TriState::kFalse);
}

}  // namespace
