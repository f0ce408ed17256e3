// Which cells a path names: addresses, row and column ranges, unions, defined names, items,
// counts and the selection.
#include <gtest/gtest.h>

#include "sheethost/address.h"
#include "support/host_calls.h"

namespace {

using hosttest::Get;
using hosttest::Number;
using hosttest::Object;
using hosttest::Put;
using hosttest::Text;

class RangeAddressTest : public hosttest::HostTest {
  protected:
    RangeAddressTest() {
        Load(R"json({
          "names": {"WSFirstTaskRow": "=Settings!$C$3", "TaskType": "=Settings!$E$3:$F$5"},
          "sheets": [
            {"name": "WBS", "codeName": "wsWBS", "names": {"Local": "=WBS!$D$4"}},
            {"name": "Settings", "codeName": "wsSettings",
             "cells": {"C3": 5, "E3": "Task", "F3": "T", "E4": "Milestone", "F4": "M",
                       "E5": "Summary", "F5": "S"}}]})json");
        wbs = Sheet("WBS");
        settings = Sheet("Settings");
    }

    std::string AddressOf(IDispatch* sheet, const char* text) {
        return Text(sheet, OLESTR(".Range(%s).Address"), text);
    }

    Object wbs;
    Object settings;
};

TEST_F(RangeAddressTest, ReadsTheSpreadsheetsAddressForms) {
    EXPECT_EQ(AddressOf(wbs.get(), "A1"), "$A$1");
    EXPECT_EQ(AddressOf(wbs.get(), "$b$3:c9"), "$B$3:$C$9");
    EXPECT_EQ(AddressOf(wbs.get(), "C9:B3"), "$B$3:$C$9");
    EXPECT_EQ(AddressOf(wbs.get(), "5:7"), "$5:$7");
    EXPECT_EQ(AddressOf(wbs.get(), "C:D"), "$C:$D");
    EXPECT_EQ(AddressOf(wbs.get(), "B3:B9,H3:I9"), "$B$3:$B$9,$H$3:$I$9");
    EXPECT_EQ(AddressOf(wbs.get(), "WBS!M12"), "$M$12");
    EXPECT_EQ(Text(wbs.get(), OLESTR(".Range(%s).Address(%b,%b)"), "B3", 0, 0), "B3");
    for (const char* bad : {"A0", "XFE1", "A1048577", "5", "C", "A1:5", "Settings!A1", ""}) {
        EXPECT_FALSE(Get(wbs.get(), OLESTR(".Range(%s)"), bad)) << bad;
    }
}

TEST_F(RangeAddressTest, ResolvesWorkbookAndSheetLevelNames) {
    EXPECT_EQ(Number(settings.get(), OLESTR(".Range(%s).Value"), "WSFirstTaskRow"), 5);
    EXPECT_EQ(Number(settings.get(), OLESTR(".Range(%s).Row"), "wsfirsttaskrow"), 3);
    EXPECT_EQ(AddressOf(wbs.get(), "Local"), "$D$4");
    // A name on another sheet does not resolve through this sheet's Range.
    EXPECT_FALSE(Get(wbs.get(), OLESTR(".Range(%s)"), "WSFirstTaskRow"));
    EXPECT_FALSE(Get(settings.get(), OLESTR(".Range(%s)"), "Local"));
}

TEST_F(RangeAddressTest, CountsAndItemsRunRowByRow) {
    // The type-label lookup: items run row by row through both columns of the name.
    EXPECT_EQ(Number(settings.get(), OLESTR(".Range(%s).Rows.Count"), "TaskType"), 3);
    EXPECT_EQ(Number(settings.get(), OLESTR(".Range(%s).Columns.Count"), "TaskType"), 2);
    EXPECT_EQ(Number(settings.get(), OLESTR(".Range(%s).Count"), "TaskType"), 6);
    Object types = Get(settings.get(), OLESTR(".Range(%s)"), "TaskType");
    EXPECT_EQ(Text(types.get(), OLESTR("Cells.item(%s)"), "3"), "Milestone");
    EXPECT_EQ(Text(types.get(), OLESTR(".Cells.item(%s)"), "4"), "M");
    EXPECT_EQ(Text(types.get(), OLESTR(".Cells(%d,%s).Address"), 2, "B"), "$F$4");
    EXPECT_EQ(Text(types.get(), OLESTR(".Rows(%d).Address"), 2), "$E$4:$F$4");
    // Items may lie outside the range, but not off the sheet.
    EXPECT_EQ(Text(types.get(), OLESTR(".Cells.item(%d).Address"), 7), "$E$6");
    Object corner = Get(settings.get(), OLESTR(".Range(%s)"), "A1");
    EXPECT_FALSE(Get(corner.get(), OLESTR(".Cells.item(%d)"), 0));

    EXPECT_EQ(Text(wbs.get(), OLESTR(".Rows(%s).Address"), "5:7"), "$5:$7");
    EXPECT_EQ(Number(wbs.get(), OLESTR(".Rows(%s).Rows.Count"), "5:7"), 3);
    EXPECT_EQ(Text(wbs.get(), OLESTR(".Columns(%d).Address"), 3), "$C:$C");
    EXPECT_EQ(Number(wbs.get(), OLESTR(".Range(%s).EntireRow.Columns.Count"), "B3"), 16384);
    EXPECT_EQ(Text(wbs.get(), OLESTR(".Range(%s).EntireColumn.Address"), "B3:C4"), "$B:$C");
    EXPECT_EQ(Text(wbs.get(), OLESTR(".Range(%s,%s).Address"), "C5", "A2"), "$A$2:$C$5");
}

TEST_F(RangeAddressTest, SelectionFollowsSelectOnTheActiveSheet) {
    ASSERT_EQ(hosttest::Call(wbs.get(), OLESTR(".Rows(%s).Select"), "5:7"), S_OK);
    Object selection = Get(application.get(), OLESTR(".Selection"));
    EXPECT_EQ(Number(selection.get(), OLESTR(".Rows.Count")), 3);
    EXPECT_EQ(Text(selection.get(), OLESTR("Cells.item(%s).Row"), "1"), "5");
    // Cells of a sheet that is not active cannot be selected.
    EXPECT_TRUE(FAILED(hosttest::Call(settings.get(), OLESTR(".Cells.Select"))));
    EXPECT_EQ(hosttest::LastDescription(), "Select method of Range class failed");
    hosttest::Call(settings.get(), OLESTR(".Activate"));
    EXPECT_EQ(hosttest::Call(settings.get(), OLESTR(".Cells(%d,%d).Select"), 4, 2), S_OK);
    EXPECT_EQ(Text(application.get(), OLESTR(".Selection.Address")), "$B$4");
    EXPECT_EQ(Text(application.get(), OLESTR(".ActiveCell.Address")), "$B$4");
}

TEST_F(RangeAddressTest, EnumeratesCellsRowsAndOffsets) {
    const auto addresses = [](IDispatch* range) {
        std::vector<std::string> seen;
        IEnumVARIANT* enumerator = nullptr;
        if (automation::EnumBegin(&enumerator, range, nullptr) != S_OK) return seen;
        IDispatch* item = nullptr;
        while (automation::EnumNextObject(enumerator, &item) == S_OK) {
            seen.push_back(Text(item, OLESTR(".Address(%b,%b)"), 0, 0));
            item->Release();
        }
        enumerator->Release();
        return seen;
    };
    Object block = Get(wbs.get(), OLESTR(".Range(%s)"), "B2:C3,E5");
    EXPECT_EQ(addresses(block.get()), (std::vector<std::string>{"B2", "C2", "B3", "C3", "E5"}));
    Object rows = Get(block.get(), OLESTR(".Rows"));
    EXPECT_EQ(addresses(rows.get()), (std::vector<std::string>{"B2:C2", "B3:C3", "E5"}));
    EXPECT_EQ(Text(block.get(), OLESTR(".Offset(%d,%d).Address"), 1, 2), "$D$3:$E$4,$G$6");
    EXPECT_EQ(Text(block.get(), OLESTR(".Resize(%d).Address"), 1), "$B$2:$C$2");
    EXPECT_FALSE(Get(block.get(), OLESTR(".Offset(%d,%d)"), -2, 0));
    Put(settings.get(), OLESTR(".Range(%s).Value=%d"), "H20", 1);
    EXPECT_EQ(Text(settings.get(), OLESTR(".UsedRange.Address")), "$C$3:$H$20");
}

TEST(AddressTextTest, WritesAndReadsSheetQualifiedAddresses) {
    using sheethost::Area;
    EXPECT_EQ(sheethost::QuotedSheetName("WBS"), "WBS");
    EXPECT_EQ(sheethost::QuotedSheetName("My Sheet"), "'My Sheet'");
    EXPECT_EQ(sheethost::QuotedSheetName("It's"), "'It''s'");
    EXPECT_EQ(sheethost::QuotedSheetName("2024"), "'2024'");

    sheethost::Workbook book;
    auto sheet = std::make_shared<sheethost::Sheet>();
    sheet->name = "It's";
    book.sheets.push_back(sheet);
    const auto resolved = sheethost::ResolveAddress(book, nullptr, "'It''s'!$B$2:C3");
    ASSERT_TRUE(resolved);
    EXPECT_EQ(resolved->sheet, sheet);
    EXPECT_EQ(resolved->areas.front(), (Area{2, 2, 3, 3}));
    EXPECT_EQ(sheethost::AreaAddress(Area{2, 2, 3, 3}, true, false), "B$2:C$3");
}

}  // namespace
