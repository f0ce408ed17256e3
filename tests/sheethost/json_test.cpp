// The JSON description of a workbook: what it loads, the canonical dump, and the round trip.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "sheethost/sheethost.h"
#include "support/host_calls.h"

namespace {

constexpr const char* kFixture = R"json({
  "name": "Plan.xlsm",
  "activeSheet": "Settings",
  "names": {"WSFirstTaskRow": "=Settings!$C$3"},
  "styles": {"header": {"interior": {"colorIndex": 35, "pattern": 1},
                        "horizontalAlignment": -4108}},
  "sheets": [
    {"name": "WBS", "codeName": "wsWBS", "zoom": 85, "selection": "B5:C6,E2",
     "activeCell": "C6", "freezePanes": "W5",
     "pageSetup": {"orientation": "landscape", "fitToPagesWide": 0, "fitToPagesTall": 1},
     "columns": {"A": {"width": 2.5}, "D:E": {"hidden": true, "style": "header"}},
     "rows": {"5": {"height": 18.75, "hidden": true}, "6:7": {"style": {"font": {"bold": true}}}},
     "cells": {
       "B5": "Design", "C5": 0.1, "D5": true, "E5": {"date": "2024-04-01 08:00"},
       "F5": {"value": "100", "quotePrefix": true},
       "H5": {"formula": "=MIN(H6:H9)", "numberFormat": "yyyy/mm/dd"},
       "B6": {"style": "header", "font": {"colorIndex": 3}},
       "C6": {"error": "#N/A"},
       "D6": {"style": {}},
       "M12": {"borders": {"right": {"lineStyle": 1, "weight": -4138}}}
     },
     "formats": [{"range": "B8:C9", "style": "header"},
                 {"range": "C9", "numberFormat": "0.00"}],
     "names": {"Local": "=WBS!$B$5"}},
    {"name": "Settings", "codeName": "wsSettings", "cells": {"C3": 5}}
  ]
})json";

std::shared_ptr<sheethost::Workbook> LoadOrFail(std::string_view text) {
    std::string error;
    auto book = sheethost::LoadWorkbookJson(text, &error);
    EXPECT_NE(book, nullptr) << error;
    return book;
}

// Dates read into General cells give them a date format, as typing does: one copy for them all.
TEST(JsonTest, DatesReadIntoGeneralCellsShareTheirFormat) {
    const auto book = LoadOrFail(R"json({"sheets": [{"name": "WBS", "cells": {
      "A1": {"date": "2024-04-01"}, "A2": {"date": "2024-04-02"}, "A3": {"date": "2024-04-03"}}}]})json");
    ASSERT_NE(book, nullptr);
    const sheethost::Sheet& sheet = *book->sheets[0];
    const auto style = [&](int row) { return sheethost::FindCell(sheet, row, 1)->style; };
    EXPECT_EQ(style(1)->numberFormat, "yyyy/m/d");
    EXPECT_TRUE(style(1).Shares(style(3)));
}

TEST(JsonTest, LoadsEveryPartOfTheDescription) {
    const auto book = LoadOrFail(kFixture);
    ASSERT_NE(book, nullptr);
    EXPECT_EQ(book->name, "Plan.xlsm");
    EXPECT_EQ(book->activeSheet, 1u);
    const sheethost::Sheet& wbs = *book->sheets[0];
    EXPECT_EQ(wbs.codeName, "wsWBS");
    EXPECT_EQ(wbs.zoom, 85);
    EXPECT_EQ(wbs.selection.size(), 2u);
    EXPECT_EQ(wbs.activeCell, (sheethost::CellRef{6, 3}));
    EXPECT_EQ(wbs.frozenAt, (sheethost::CellRef{5, 23}));
    EXPECT_EQ(wbs.pageSetup, (sheethost::PageSetup{true, 0, 1}));
    EXPECT_EQ(book->sheets[1]->frozenAt, sheethost::CellRef{});
    EXPECT_EQ(wbs.columns.at(1).width, 2.5);
    EXPECT_TRUE(wbs.columns.at(5).hidden);
    EXPECT_EQ((*wbs.columns.at(4).style)->interior.colorIndex, 35);
    // A fill given by its index alone takes the palette's colour, as setting ColorIndex does.
    EXPECT_EQ((*wbs.columns.at(4).style)->interior.color, 0xCCFFCC);
    EXPECT_EQ(wbs.rows.at(5).height, 18.75);
    EXPECT_TRUE((*wbs.rows.at(7).style)->font.bold);

    const auto cell = [&](int row, int column) { return *sheethost::FindCell(wbs, row, column); };
    EXPECT_EQ(std::get<double>(cell(5, 5).value), 45383 + 8.0 / 24);
    EXPECT_EQ(cell(5, 5).style->numberFormat, "yyyy/m/d h:mm");
    EXPECT_TRUE(cell(5, 6).quotePrefix);
    EXPECT_EQ(cell(5, 8).formula, "=MIN(H6:H9)");
    // A row format is the base of its cells; a named style replaces it; {} is the default.
    EXPECT_EQ(cell(6, 2).style->font.colorIndex, 3);
    EXPECT_FALSE(cell(6, 2).style->font.bold);
    EXPECT_EQ(cell(6, 2).style->interior.colorIndex, 35);
    EXPECT_EQ(cell(6, 3).value, sheethost::Value(sheethost::ErrorValue::kNA));
    EXPECT_TRUE(cell(6, 3).style->font.bold);
    EXPECT_FALSE(cell(6, 4).style->font.bold);
    EXPECT_EQ(cell(12, 13).style->borders[5].weight, -4138);
    // Formats lay over what the cells had.
    EXPECT_EQ(cell(9, 3).style->numberFormat, "0.00");
    EXPECT_EQ(cell(9, 3).style->interior.colorIndex, 35);
    EXPECT_EQ(wbs.names.front().refersTo, "=WBS!$B$5");
}

TEST(JsonTest, DumpIsCanonicalAndRoundTrips) {
    const auto first = LoadOrFail(kFixture);
    ASSERT_NE(first, nullptr);
    const std::string dump = sheethost::DumpWorkbookJson(*first);
    const auto second = LoadOrFail(dump);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(sheethost::DumpWorkbookJson(*second), dump);
    EXPECT_EQ(second->sheets[0]->cells, first->sheets[0]->cells);
    EXPECT_EQ(second->sheets[0]->rows, first->sheets[0]->rows);
    EXPECT_EQ(second->sheets[0]->columns, first->sheets[0]->columns);
    // Whole numbers are written without a fraction; shared formats appear once in the table.
    EXPECT_NE(dump.find("\"C3\": 5\n"), std::string::npos);
    EXPECT_NE(dump.find("\"height\": 18.75"), std::string::npos);
    EXPECT_EQ(nlohmann::json::parse(dump).at("styles").size(), 7u);
    EXPECT_EQ(second->sheets[0]->frozenAt, first->sheets[0]->frozenAt);
    EXPECT_EQ(second->sheets[0]->pageSetup, first->sheets[0]->pageSetup);
    // A sheet without panes or page setup dumps neither.
    const nlohmann::json settings = nlohmann::json::parse(dump).at("sheets").at(1);
    EXPECT_FALSE(settings.contains("freezePanes"));
    EXPECT_FALSE(settings.contains("pageSetup"));
}

TEST(JsonTest, ChangesMadeThroughTheObjectsSurviveTheRoundTrip) {
    const auto book = LoadOrFail(kFixture);
    ASSERT_NE(book, nullptr);
    {
        const hosttest::Object sheet =
            hosttest::Object::Adopt(sheethost::NewWorksheetObject(book, book->sheets[0]));
        hosttest::Put(sheet.get(), OLESTR(".Range(%s).Borders(%d).LineStyle=%d"), "B2:C3", 7, 1);
        hosttest::Call(sheet.get(), OLESTR(".Range(%s).FormatConditions.Add(%d,%d,%s)"), "B2", 1, 6,
                       "0");
        hosttest::Put(sheet.get(), OLESTR(".Rows(%d).Hidden=%b"), 20, 1);
        hosttest::Put(sheet.get(), OLESTR(".Range(%s).Value=%s"), "K1", "'007");
    }
    const std::string dump = sheethost::DumpWorkbookJson(*book);
    const auto reloaded = LoadOrFail(dump);
    ASSERT_NE(reloaded, nullptr);
    EXPECT_EQ(sheethost::DumpWorkbookJson(*reloaded), dump);
    EXPECT_EQ(reloaded->sheets[0]->cells, book->sheets[0]->cells);
}

TEST(JsonTest, NamesTheFaultOfABadDescription) {
    const auto refused = [](std::string_view text) {
        std::string error;
        EXPECT_EQ(sheethost::LoadWorkbookJson(text, &error), nullptr) << text;
        return error;
    };
    EXPECT_EQ(refused(R"json({"sheets":[{"name":"A","cells":{"B5":{"fomula":"=1"}}}]})json"),
              "sheets[0].cells.B5: unknown property 'fomula'");
    EXPECT_EQ(refused(R"json({"sheets":[{"name":"A","cells":{"B0":1}}]})json"),
              "sheets[0].cells.B0: not a cell address");
    EXPECT_EQ(refused(R"json({"sheets":[{"name":"A","rows":{"x":{}}}]})json"),
              "sheets[0].rows.x: 'x' is not a row or a range of them");
    EXPECT_EQ(refused(R"json({"sheets":[{"name":"A","cells":{"A1":{"style":"nope"}}}]})json"),
              "sheets[0].cells.A1: unknown style 'nope'");
    EXPECT_EQ(refused(R"json({"sheets":[{"name":"A","cells":{"A1":{"font":{"colour":3}}}}]})json"),
              "sheets[0].cells.A1.font: unknown style property 'colour'");
    EXPECT_EQ(refused(R"json({"sheets":[{"name":"A","freezePanes":"B2:C3"}]})json"),
              "sheets[0]: bad freezePanes");
    EXPECT_EQ(refused(R"json({"sheets":[{"name":"A","pageSetup":{"orientation":"wide"}}]})json"),
              "sheets[0].pageSetup: orientation must be portrait or landscape");
    EXPECT_EQ(refused(R"json({"sheets":[]})json"), "sheets: a workbook has at least one sheet");
    EXPECT_FALSE(refused("{not json").empty());
}

}  // namespace
