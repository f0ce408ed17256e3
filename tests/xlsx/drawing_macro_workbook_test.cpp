// A macro workbook whose sheets had no drawing gets shapes, a connector and a report sheet with a
// line chart and conditional formats, as the drawing commands and reports leave it.
#include <gtest/gtest.h>

#include <pugixml.hpp>

#include "package_files.h"
#include "sample_workbook.h"
#include "sheethost/model.h"
#include "xlsx/xlsx.h"

namespace xlsx::testing {
namespace {

namespace mso = sheethost::mso;
using sheethost::Shape;

std::shared_ptr<Shape> AddShape(sheethost::Sheet& sheet, Shape shape) {
    shape.id = static_cast<int>(sheet.shapes.size()) + 2;
    sheet.shapes.push_back(std::make_shared<Shape>(std::move(shape)));
    return sheet.shapes.back();
}

void DrawTasks(sheethost::Sheet& sheet) {
    Shape bar;
    bar.name = "GanntBar3";
    bar.left = 150;
    bar.top = 31;
    bar.width = 60;
    bar.height = 10;
    bar.textFrame = sheethost::TextFrame{};
    const auto first = AddShape(sheet, bar);
    bar.name = "GanntBar4";
    bar.left = 230;
    bar.top = 46;
    const auto second = AddShape(sheet, bar);
    Shape connector;
    connector.name = "TaskDepand4";
    connector.autoShapeType = mso::kShapeMixed;
    connector.connectorType = mso::kConnectorElbow;
    connector.adjustments = {0.5};
    connector.left = 210;
    connector.top = 36;
    connector.width = 20;
    connector.height = 15;
    connector.beginConnection = sheethost::ConnectorEnd{first->id, 4};
    connector.endConnection = sheethost::ConnectorEnd{second->id, 2};
    AddShape(sheet, connector);
}

std::shared_ptr<sheethost::Sheet> ReportSheet() {
    auto sheet = std::make_shared<sheethost::Sheet>();
    sheet->name = "EVM 20240415";
    sheethost::CellAt(*sheet, 2, 2).value = std::string("Date");
    sheethost::CellAt(*sheet, 2, 3).value = std::string("PV");
    for (int row = 3; row <= 6; ++row) {
        sheethost::CellAt(*sheet, row, 3).value = row * 10.0;
        sheethost::CellAt(*sheet, row, 4).style.Edit().conditions = {
            {sheethost::xl::kCellValue, sheethost::xl::kLess, "=1.0", "", 3, std::nullopt}};
    }
    Shape frame;
    frame.type = mso::kChart;
    frame.name = "Chart 1";
    frame.autoShapeType = mso::kShapeNotPrimitive;
    frame.left = 300;
    frame.top = 30;
    frame.width = 360;
    frame.height = 216;
    const auto shape = AddShape(*sheet, frame);
    auto chart = std::make_shared<sheethost::Chart>();
    chart->shapeId = shape->id;
    chart->chartType = 65;
    chart->hasTitle = true;
    chart->title = "EVM";
    chart->series = {
        {"", "='EVM 20240415'!$C$2", "='EVM 20240415'!$C$3:$C$6", "='EVM 20240415'!$B$3:$B$6"}};
    sheet->charts.push_back(chart);
    return sheet;
}

// The part a worksheet's <drawing> element leads to through the worksheet's relationships.
std::string DrawingPartOf(const std::filesystem::path& file, const std::string& worksheet) {
    pugi::xml_document sheet;
    sheet.load_string(ReadPart(file, "xl/worksheets/" + worksheet).c_str());
    const std::string id = sheet.child("worksheet").child("drawing").attribute("r:id").value();
    pugi::xml_document relationships;
    relationships.load_string(ReadPart(file, "xl/worksheets/_rels/" + worksheet + ".rels").c_str());
    for (pugi::xml_node relationship : relationships.child("Relationships").children()) {
        if (id == relationship.attribute("Id").value()) {
            return relationship.attribute("Target").value();
        }
    }
    return {};
}

class MacroWorkbookDrawings : public ::testing::Test {
  protected:
    // Draws on the sample macro workbook and saves it as "drawn.xlsm".
    std::shared_ptr<sheethost::Workbook> SaveDrawn() {
        WriteZip(folder / "plan.xlsm", SampleWorkbook());
        auto book = LoadXlsx(folder / "plan.xlsm");
        DrawTasks(*book->sheets[0]);
        book->sheets.push_back(ReportSheet());
        SaveXlsx(*book, folder / "plan.xlsm", folder / "drawn.xlsm");
        return book;
    }

    TempFolder folder;
};

TEST_F(MacroWorkbookDrawings, AddedDrawingsAreRelatedTypedAndReadBackWhileTheMacrosStay) {
    const auto book = SaveDrawn();
    const auto saved = folder / "drawn.xlsm";

    EXPECT_EQ(ReadPart(saved, "xl/vbaProject.bin"), kMacroBytes);
    const std::string types = ReadPart(saved, "[Content_Types].xml");
    EXPECT_NE(types.find("macroEnabled.main+xml"), std::string::npos);
    for (const char* part :
         {"/xl/drawings/drawing1.xml", "/xl/drawings/drawing2.xml", "/xl/charts/chart1.xml"}) {
        EXPECT_NE(types.find(part), std::string::npos) << part;
    }
    const std::string tasksDrawing = DrawingPartOf(saved, "sheet1.xml");
    ASSERT_FALSE(tasksDrawing.empty());
    EXPECT_NE(ReadPart(saved, "xl/drawings/" + tasksDrawing.substr(tasksDrawing.rfind('/') + 1)),
              "");
    EXPECT_NE(ReadPart(saved, "xl/drawings/_rels/drawing2.xml.rels").find("charts/chart1.xml"),
              std::string::npos);
    const std::string report = ReadPart(saved, "xl/worksheets/sheet3.xml");
    EXPECT_LT(report.find("<conditionalFormatting"), report.find("<drawing"))
        << "conditional formats stand before the drawing in a worksheet";

    const auto again = LoadXlsx(saved);
    ASSERT_EQ(again->sheets.size(), 3u);
    const sheethost::Sheet& tasks = *again->sheets[0];
    ASSERT_EQ(tasks.shapes.size(), 3u);
    EXPECT_EQ(tasks.shapes[2]->beginConnection, (sheethost::ConnectorEnd{tasks.shapes[0]->id, 4}));
    EXPECT_EQ(tasks.shapes[2]->endConnection, (sheethost::ConnectorEnd{tasks.shapes[1]->id, 2}));
    const sheethost::Sheet& evm = *again->sheets[2];
    ASSERT_EQ(evm.charts.size(), 1u);
    EXPECT_EQ(evm.charts[0]->series, book->sheets[2]->charts[0]->series);
    EXPECT_EQ(sheethost::EffectiveStyle(evm, 6, 4)->conditions,
              sheethost::EffectiveStyle(*book->sheets[2], 6, 4)->conditions);

    // Saved again unchanged, the added parts stay as they were written.
    SaveXlsx(*again, saved, folder / "again.xlsm");
    for (const char* part : {"xl/drawings/drawing1.xml", "xl/charts/chart1.xml",
                             "xl/vbaProject.bin", "xl/worksheets/_rels/sheet1.xml.rels"}) {
        EXPECT_EQ(ReadPart(folder / "again.xlsm", part), ReadPart(saved, part)) << part;
    }
}

TEST_F(MacroWorkbookDrawings, ADeletedReportSheetTakesItsDrawingAndChartAlong) {
    SaveDrawn();
    auto book = LoadXlsx(folder / "drawn.xlsm");
    book->sheets.pop_back();
    SaveXlsx(*book, folder / "drawn.xlsm", folder / "deleted.xlsm");
    const auto saved = folder / "deleted.xlsm";

    for (const char* gone : {"xl/worksheets/sheet3.xml", "xl/drawings/drawing2.xml",
                             "xl/drawings/_rels/drawing2.xml.rels", "xl/charts/chart1.xml"}) {
        EXPECT_EQ(ReadPart(saved, gone), "") << gone;
    }
    const std::string types = ReadPart(saved, "[Content_Types].xml");
    EXPECT_EQ(types.find("chart1.xml"), std::string::npos);
    EXPECT_EQ(types.find("drawing2.xml"), std::string::npos);
    EXPECT_EQ(ReadPart(saved, "xl/drawings/drawing1.xml"),
              ReadPart(folder / "drawn.xlsm", "xl/drawings/drawing1.xml"));
    for (const char* kept : {"xl/vbaProject.bin", "customUI/customUI14.xml",
                             "xl/printerSettings/printerSettings1.bin"}) {
        EXPECT_EQ(ReadPart(saved, kept), ReadPart(folder / "plan.xlsm", kept)) << kept;
    }
}

}  // namespace
}  // namespace xlsx::testing
