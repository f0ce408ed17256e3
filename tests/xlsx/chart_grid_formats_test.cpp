// The formats a calendar grid gives the chart area (text labels, small and coloured fonts, RGB
// fills, coloured borders of several weights, alignments, narrow and hidden columns) come back
// from a saved file as they were.
#include <gtest/gtest.h>

#include "package_files.h"
#include "sheethost/sheethost.h"
#include "xlsx/xlsx.h"

namespace xlsx::testing {
namespace {

constexpr const char* kGrid = R"json({
  "sheets": [{"name": "WBS", "codeName": "wsWBS",
    "columns": {"W": {"width": 3.3}, "X": {"width": 3.3, "hidden": true}, "Y": {"width": 11},
                "Z": {"width": 0.8}},
    "cells": {
      "W2": {"value": "2024/04/05", "quotePrefix": true, "horizontalAlignment": -4131,
             "font": {"size": 8, "bold": true},
             "interior": {"color": 16247773, "colorIndex": 20, "pattern": 1},
             "borders": {"left": {"lineStyle": 1, "weight": -4138, "colorIndex": 16}}},
      "W3": {"value": "8", "quotePrefix": true, "horizontalAlignment": -4108,
             "font": {"size": 8, "bold": true, "colorIndex": 3},
             "interior": {"color": 10086143, "colorIndex": 36, "pattern": 1},
             "borders": {"left": {"lineStyle": 1, "weight": 2, "colorIndex": 15},
                         "bottom": {"lineStyle": 1, "weight": -4138}}},
      "W4": {"value": "Sat", "quotePrefix": true, "font": {"size": 8, "colorIndex": 5}},
      "W20": {"borders": {"top": {"lineStyle": 1, "weight": 2, "colorIndex": 15},
                          "bottom": {"lineStyle": 1, "weight": 2, "colorIndex": 15}}}
    }}]
})json";

TEST(ChartGridFormats, SurviveASaveAndALoad) {
    TempFolder folder;
    std::string error;
    const auto book = sheethost::LoadWorkbookJson(kGrid, &error);
    ASSERT_NE(book, nullptr) << error;
    SaveXlsx(*book, {}, folder / "grid.xlsx");
    const auto again = LoadXlsx(folder / "grid.xlsx");
    const sheethost::Sheet& before = *book->sheets[0];
    const sheethost::Sheet& after = *again->sheets[0];
    EXPECT_EQ(after.cells, before.cells);
    EXPECT_EQ(after.columns, before.columns);
}

}  // namespace
}  // namespace xlsx::testing
