// Workbooks that never came from a file (the sample project loaded from JSON, as the demo saves
// it) written as new packages and read back.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "package_files.h"
#include "sheethost/sheethost.h"
#include "xlsx/xlsx.h"

namespace xlsx::testing {
namespace {

std::shared_ptr<sheethost::Workbook> SampleProject() {
    const auto path = std::filesystem::path(__FILE__).parent_path().parent_path().parent_path() /
                      "examples" / "sample.json";
    std::ifstream file(path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    std::string error;
    auto book = sheethost::LoadWorkbookJson(text.str(), &error);
    EXPECT_NE(book, nullptr) << error;
    return book;
}

// The shape as the host makes one of its kind, which a file gives back: the fixture leaves out
// what the host's Add methods set (the text frame of an auto shape, the mixed type of a
// connector). An elbow's bends are kept as they are, none included.
sheethost::Shape AsTheHostMakesIt(sheethost::Shape shape) {
    if (shape.connectorType) {
        shape.autoShapeType = sheethost::mso::kShapeMixed;
    } else if (shape.type == sheethost::mso::kAutoShape || shape.type == sheethost::mso::kTextBox) {
        if (!shape.textFrame) shape.textFrame = sheethost::TextFrame{};
    }
    return shape;
}

// The file keeps positions in whole EMUs from cell corners.
void ExpectSameShape(const sheethost::Shape& after, const sheethost::Shape& before) {
    SCOPED_TRACE(before.name);
    EXPECT_NEAR(after.left, before.left, 0.01);
    EXPECT_NEAR(after.top, before.top, 0.01);
    EXPECT_NEAR(after.width, before.width, 0.01);
    EXPECT_NEAR(after.height, before.height, 0.01);
    sheethost::Shape placed = after;
    placed.left = before.left;
    placed.top = before.top;
    placed.width = before.width;
    placed.height = before.height;
    EXPECT_EQ(sheethost::ShapeToJson(placed).dump(),
              sheethost::ShapeToJson(AsTheHostMakesIt(before)).dump());
}

TEST(NewPackage, SampleProjectFromJsonLoadsBackEqual) {
    TempFolder folder;
    const auto book = SampleProject();
    ASSERT_NE(book, nullptr);
    SaveXlsx(*book, {}, folder / "demo.xlsx");
    const auto again = LoadXlsx(folder / "demo.xlsx");

    ASSERT_EQ(again->sheets.size(), book->sheets.size());
    EXPECT_EQ(again->names, book->names);
    EXPECT_EQ(again->activeSheet, book->activeSheet);
    std::size_t shapes = 0;
    for (std::size_t index = 0; index < book->sheets.size(); ++index) {
        const sheethost::Sheet& before = *book->sheets[index];
        const sheethost::Sheet& after = *again->sheets[index];
        SCOPED_TRACE(before.name);
        EXPECT_EQ(after.name, before.name);
        EXPECT_EQ(after.codeName, before.codeName);
        EXPECT_EQ(after.cells, before.cells);
        EXPECT_EQ(after.rows, before.rows);
        EXPECT_EQ(after.columns, before.columns);
        EXPECT_EQ(after.names, before.names);
        EXPECT_EQ(after.zoom, before.zoom);
        EXPECT_EQ(after.selection, before.selection);
        EXPECT_EQ(after.activeCell, before.activeCell);
        ASSERT_EQ(after.shapes.size(), before.shapes.size());
        for (std::size_t at = 0; at < before.shapes.size(); ++at) {
            ExpectSameShape(*after.shapes[at], *before.shapes[at]);
        }
        shapes += before.shapes.size();
    }
    EXPECT_GT(shapes, 0u) << "the sample's template shapes should be part of the check";
}

}  // namespace
}  // namespace xlsx::testing
