// Shapes, connectors, freeforms, text boxes and charts through a save and a load.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <set>

#include "package_files.h"
#include "sheethost/model.h"
#include "sheethost/shape_sheet.h"
#include "sheethost/sheethost.h"
#include "xlsx/xlsx.h"

namespace xlsx::testing {
namespace {

namespace mso = sheethost::mso;
using sheethost::Shape;

// The shape with its geometry rounded to hundredths of a point: the file keeps positions in
// EMUs from cell corners, so a round trip may move a shape by a fraction of that.
Shape Rounded(Shape shape) {
    auto round = [](double& value) { value = std::round(value * 100) / 100; };
    for (double* value : {&shape.left, &shape.top, &shape.width, &shape.height}) round(*value);
    for (auto& node : shape.nodes) {
        round(node.x);
        round(node.y);
    }
    return shape;
}

std::shared_ptr<Shape> AddShape(sheethost::Sheet& sheet, Shape shape) {
    shape.id = static_cast<int>(sheet.shapes.size()) + 2;
    sheet.shapes.push_back(std::make_shared<Shape>(std::move(shape)));
    return sheet.shapes.back();
}

// A sheet drawn as the engine draws: a bar with text, a hidden marker, a text box, a connector
// glued between two bars, a freeform, a line, and a chart; on uneven rows and columns.
std::shared_ptr<sheethost::Workbook> DrawnWorkbook() {
    auto book = sheethost::NewWorkbook();
    sheethost::Sheet& sheet = *book->sheets[0];
    sheet.name = "WBS";
    sheet.columns[2].width = 30;
    sheet.columns[3].hidden = true;
    sheet.rows[4].height = 27.75;
    sheet.rows[6].hidden = true;

    Shape bar;
    bar.name = "GanntBar5";
    bar.left = 60.5;
    bar.top = 52.25;
    bar.width = 120;
    bar.height = 11.5;
    bar.autoShapeType = 5;
    bar.adjustments = {0.16667};
    bar.fill = {true, 0.25, 0x3366FF, 0xFFFFFF, mso::kFillPatterned, 21};
    bar.line.weight = 1.5;
    bar.line.dashStyle = 4;
    bar.line.foreColor = 0x0000FF;
    bar.line.style = 2;
    sheethost::TextFrame text;
    text.runs = {{"Pack ", {"Calibri", 9, true, false, 0xFFFFFF}},
                 {"boxes\nand crates", {"Arial", 8, false, true, 0x00FF00}}};
    text.horizontalAlignment = -4108;
    text.verticalAlignment = -4108;
    text.autoMargins = false;
    text.marginLeft = 1.5;
    bar.textFrame = text;
    const auto first = AddShape(sheet, bar);

    Shape second = bar;
    second.name = "GanntBar7";
    second.top = 100;
    second.left = 200;
    second.placement = mso::kMove;
    second.textFrame = sheethost::TextFrame{};
    const auto last = AddShape(sheet, second);

    Shape marker;
    marker.name = "TaskStatus9";
    marker.autoShapeType = 9;
    marker.left = 3;
    marker.top = 130.75;
    marker.width = 9;
    marker.height = 9;
    marker.visible = false;
    marker.placement = mso::kFreeFloating;
    marker.line.visible = false;
    marker.textFrame = sheethost::TextFrame{};
    AddShape(sheet, marker);

    Shape box;
    box.type = mso::kTextBox;
    box.name = "Note";
    box.left = 400;
    box.top = 20;
    box.width = 80;
    box.height = 30;
    box.fill.foreColor = 0xFFFFFF;
    box.line.foreColor = 0;
    sheethost::TextFrame note;
    note.runs = {{"Status 2024/04/15", {}}};
    note.autoSize = true;
    box.textFrame = note;
    AddShape(sheet, box);

    Shape connector;
    connector.name = "Connector 12";
    connector.autoShapeType = mso::kShapeMixed;
    connector.connectorType = mso::kConnectorElbow;
    connector.adjustments = {0.5};
    connector.left = 180.5;
    connector.top = 58;
    connector.width = 19.5;
    connector.height = 47.75;
    connector.fill.visible = false;
    connector.line.endArrowheadStyle = 2;
    connector.beginConnection = sheethost::ConnectorEnd{first->id, 4};
    connector.endConnection = sheethost::ConnectorEnd{last->id, 2};
    AddShape(sheet, connector);

    Shape freeform;
    freeform.type = mso::kFreeform;
    freeform.name = "Freeform 3";
    freeform.autoShapeType = mso::kShapeNotPrimitive;
    freeform.left = 50;
    freeform.top = 200;
    freeform.width = 100;
    freeform.height = 10;
    freeform.nodes = {
        {0, 0, 50, 200}, {0, 0, 150, 200}, {0, 0, 145, 210}, {0, 0, 55, 210}, {0, 0, 50, 200}};
    AddShape(sheet, freeform);

    Shape line;
    line.type = mso::kLine;
    line.name = "ProgressLine";
    line.autoShapeType = mso::kShapeMixed;
    line.connectorType = mso::kConnectorStraight;
    line.left = 300;
    line.top = 10;
    line.width = 0;
    line.height = 150;
    line.verticalFlip = true;
    line.fill.visible = false;
    line.line.foreColor = 0x0000FF;
    AddShape(sheet, line);

    Shape frame;
    frame.type = mso::kChart;
    frame.name = "Chart 1";
    frame.autoShapeType = mso::kShapeNotPrimitive;
    frame.left = 50;
    frame.top = 250;
    frame.width = 360;
    frame.height = 216;
    const auto chartFrame = AddShape(sheet, frame);
    auto chart = std::make_shared<sheethost::Chart>();
    chart->shapeId = chartFrame->id;
    chart->chartType = 65;
    chart->hasTitle = true;
    chart->title = "EVM 20240415";
    chart->categoryAxis.categoryType = 2;
    chart->series = {{"PV", "=WBS!$C$2", "=WBS!$C$3:$C$9", "=WBS!$B$3:$B$9"},
                     {"EV", "=WBS!$D$2", "=WBS!$D$3:$D$9", "=WBS!$B$3:$B$9"}};
    sheet.charts.push_back(chart);
    return book;
}

class DrawingTest : public ::testing::Test {
  protected:
    TempFolder folder;
};

TEST_F(DrawingTest, EveryKindOfShapeAndTheChartSurviveASaveAndALoad) {
    const auto book = DrawnWorkbook();
    SaveXlsx(*book, {}, folder / "drawn.xlsx");
    const auto loaded = LoadXlsx(folder / "drawn.xlsx");

    const sheethost::Sheet& original = *book->sheets[0];
    const sheethost::Sheet& sheet = *loaded->sheets[0];
    ASSERT_EQ(sheet.shapes.size(), original.shapes.size());
    for (std::size_t at = 0; at < sheet.shapes.size(); ++at) {
        SCOPED_TRACE(original.shapes[at]->name);
        EXPECT_EQ(Rounded(*sheet.shapes[at]), Rounded(*original.shapes[at]));
    }
    ASSERT_EQ(sheet.charts.size(), 1u);
    sheethost::Chart expected = *original.charts[0];
    expected.series[0].name.clear();  // a name read from a cell is the cell's, not a copy
    expected.series[1].name.clear();
    EXPECT_EQ(*sheet.charts[0], expected);
}

TEST_F(DrawingTest, AnUnchangedDrawingIsKeptByteForByte) {
    SaveXlsx(*DrawnWorkbook(), {}, folder / "first.xlsx");
    const auto loaded = LoadXlsx(folder / "first.xlsx");
    SaveXlsx(*loaded, folder / "first.xlsx", folder / "second.xlsx");
    EXPECT_EQ(ReadPart(folder / "second.xlsx", "xl/drawings/drawing1.xml"),
              ReadPart(folder / "first.xlsx", "xl/drawings/drawing1.xml"));
    EXPECT_EQ(ReadPart(folder / "second.xlsx", "xl/charts/chart1.xml"),
              ReadPart(folder / "first.xlsx", "xl/charts/chart1.xml"));
}

TEST_F(DrawingTest, ElbowsNameTheirPresetAfterTheirBendsAndNumberTheirGuides) {
    const auto book = DrawnWorkbook();
    const auto& original = book->sheets[0]->shapes;
    const auto found = std::find_if(original.begin(), original.end(), [](const auto& shape) {
        return shape->name == "Connector 12";
    });
    ASSERT_NE(found, original.end());
    const std::size_t at = static_cast<std::size_t>(found - original.begin());
    Shape connector = **found;
    for (const auto& [name, bends] : std::vector<std::pair<std::string, std::vector<double>>>{
             {"Turns once", {}}, {"Doubles back", {-0.4, 0.5, 1.4}}}) {
        connector.name = name;
        connector.adjustments = bends;
        AddShape(*book->sheets[0], connector);
    }
    SaveXlsx(*book, {}, folder / "drawn.xlsx");
    const std::string drawing = ReadPart(folder / "drawn.xlsx", "xl/drawings/drawing1.xml");
    EXPECT_NE(
        drawing.find(R"(prst="bentConnector3"><a:avLst><a:gd name="adj1" fmla="val 50000"/>)"),
        std::string::npos);
    EXPECT_NE(drawing.find(R"(prst="bentConnector2"><a:avLst/>)"), std::string::npos);
    EXPECT_NE(
        drawing.find(R"(prst="bentConnector5"><a:avLst><a:gd name="adj1" fmla="val -40000"/>)"),
        std::string::npos);

    const auto loaded = LoadXlsx(folder / "drawn.xlsx");
    const auto& shapes = loaded->sheets[0]->shapes;
    EXPECT_EQ(shapes[at]->adjustments, std::vector<double>{0.5});
    EXPECT_EQ(shapes[shapes.size() - 2]->adjustments, std::vector<double>{});
    EXPECT_EQ(shapes.back()->adjustments, (std::vector<double>{-0.4, 0.5, 1.4}));
}

TEST_F(DrawingTest, TextSizedToItsTextStaysOnOneLineAndOtherTextWraps) {
    const auto book = DrawnWorkbook();
    Shape wrapped;
    wrapped.name = "Wrapped";
    wrapped.textFrame = sheethost::TextFrame{};
    wrapped.textFrame->runs = {{"A note that may wrap", {}}};
    AddShape(*book->sheets[0], wrapped);
    SaveXlsx(*book, {}, folder / "drawn.xlsx");

    const std::string drawing = ReadPart(folder / "drawn.xlsx", "xl/drawings/drawing1.xml");
    const std::size_t sized = drawing.find("Status 2024/04/15");
    const std::size_t free = drawing.find("A note that may wrap");
    ASSERT_NE(sized, std::string::npos);
    ASSERT_NE(free, std::string::npos);
    EXPECT_NE(drawing.rfind("wrap=\"none\"", sized), std::string::npos);
    EXPECT_GT(drawing.rfind("wrap=\"square\"", free), sized);
}

TEST_F(DrawingTest, RemovingEveryShapeRemovesTheDrawing) {
    SaveXlsx(*DrawnWorkbook(), {}, folder / "first.xlsx");
    const auto loaded = LoadXlsx(folder / "first.xlsx");
    loaded->sheets[0]->shapes.clear();
    loaded->sheets[0]->charts.clear();
    SaveXlsx(*loaded, folder / "first.xlsx", folder / "second.xlsx");
    EXPECT_EQ(ReadPart(folder / "second.xlsx", "xl/drawings/drawing1.xml"), "");
    EXPECT_EQ(ReadPart(folder / "second.xlsx", "xl/charts/chart1.xml"), "");
    EXPECT_EQ(ReadPart(folder / "second.xlsx", "xl/worksheets/sheet1.xml").find("drawing"),
              std::string::npos);
    EXPECT_TRUE(LoadXlsx(folder / "second.xlsx")->sheets[0]->shapes.empty());
}

TEST_F(DrawingTest, AutoShapeTypesKeepTheirNumbersAndNameTheirPresets) {
    auto book = sheethost::NewWorkbook();
    const std::vector<std::pair<int, std::string>> presets{
        {4, "diamond"},           {7, "triangle"},        {33, "rightArrow"}, {52, "chevron"},
        {61, "flowChartProcess"}, {82, "flowChartMerge"}, {92, "star5"},      {96, "star32"}};
    for (const auto& [type, name] : presets) {
        Shape shape;
        shape.name = name;
        shape.autoShapeType = type;
        shape.width = shape.height = 10;
        shape.textFrame = sheethost::TextFrame{};
        AddShape(*book->sheets[0], shape);
    }
    SaveXlsx(*book, {}, folder / "types.xlsx");
    const std::string drawing = ReadPart(folder / "types.xlsx", "xl/drawings/drawing1.xml");
    const auto loaded = LoadXlsx(folder / "types.xlsx");
    ASSERT_EQ(loaded->sheets[0]->shapes.size(), presets.size());
    for (std::size_t at = 0; at < presets.size(); ++at) {
        const auto& [type, name] = presets[at];
        EXPECT_NE(drawing.find("prst=\"" + name + "\""), std::string::npos) << name;
        EXPECT_EQ(loaded->sheets[0]->shapes[at]->autoShapeType, type) << name;
    }
}

}  // namespace
}  // namespace xlsx::testing

namespace xlsx::testing {
namespace {

// A workbook as the spreadsheet program writes one: a template shape coloured by the theme
// through its style, with a shadow, beside a picture.
Parts WorkbookWithPicture() {
    const std::string drawing =
        R"(<xdr:wsDr xmlns:xdr="http://schemas.openxmlformats.org/drawingml/2006/spreadsheetDrawing" )"
        R"(xmlns:a="http://schemas.openxmlformats.org/drawingml/2006/main">)"
        R"(<xdr:twoCellAnchor editAs="oneCell"><xdr:from><xdr:col>1</xdr:col><xdr:colOff>0</xdr:colOff>)"
        R"(<xdr:row>1</xdr:row><xdr:rowOff>0</xdr:rowOff></xdr:from><xdr:to><xdr:col>2</xdr:col>)"
        R"(<xdr:colOff>0</xdr:colOff><xdr:row>2</xdr:row><xdr:rowOff>0</xdr:rowOff></xdr:to>)"
        R"(<xdr:sp macro="" textlink=""><xdr:nvSpPr><xdr:cNvPr id="2" name="GanntBarByRes1"/><xdr:cNvSpPr/></xdr:nvSpPr>)"
        R"(<xdr:spPr><a:xfrm><a:off x="609600" y="190500"/><a:ext cx="609600" cy="190500"/></a:xfrm>)"
        R"(<a:prstGeom prst="rect"><a:avLst/></a:prstGeom><a:effectLst><a:outerShdw blurRad="40000"/></a:effectLst></xdr:spPr>)"
        R"(<xdr:style><a:lnRef idx="2"><a:schemeClr val="accent1"><a:shade val="50000"/></a:schemeClr></a:lnRef>)"
        R"(<a:fillRef idx="1"><a:schemeClr val="accent1"/></a:fillRef><a:effectRef idx="0"><a:schemeClr val="accent1"/></a:effectRef>)"
        R"(<a:fontRef idx="minor"><a:schemeClr val="lt1"/></a:fontRef></xdr:style></xdr:sp><xdr:clientData/></xdr:twoCellAnchor>)"
        R"(<xdr:oneCellAnchor><xdr:from><xdr:col>4</xdr:col><xdr:colOff>0</xdr:colOff><xdr:row>0</xdr:row><xdr:rowOff>0</xdr:rowOff></xdr:from>)"
        R"(<xdr:ext cx="952500" cy="952500"/><xdr:pic><xdr:nvPicPr><xdr:cNvPr id="3" name="Logo"/><xdr:cNvPicPr/></xdr:nvPicPr>)"
        R"(<xdr:blipFill><a:blip xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships" r:embed="rId1"/></xdr:blipFill>)"
        R"(<xdr:spPr><a:prstGeom prst="rect"><a:avLst/></a:prstGeom></xdr:spPr></xdr:pic><xdr:clientData/></xdr:oneCellAnchor></xdr:wsDr>)";
    const std::string relationships =
        R"(<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)";
    return {
        {"[Content_Types].xml",
         R"(<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">)"
         R"(<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>)"
         R"(<Default Extension="xml" ContentType="application/xml"/><Default Extension="png" ContentType="image/png"/>)"
         R"(<Override PartName="/xl/workbook.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml"/>)"
         R"(<Override PartName="/xl/worksheets/sheet1.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml"/>)"
         R"(<Override PartName="/xl/drawings/drawing1.xml" ContentType="application/vnd.openxmlformats-officedocument.drawing+xml"/>)"
         R"(</Types>)"},
        {"_rels/.rels",
         relationships +
             R"(<Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument" Target="xl/workbook.xml"/></Relationships>)"},
        {"xl/workbook.xml",
         R"(<workbook xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" )"
         R"(xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships">)"
         R"(<sheets><sheet name="Resources" sheetId="1" r:id="rId1"/></sheets></workbook>)"},
        {"xl/_rels/workbook.xml.rels",
         relationships +
             R"(<Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/worksheet" Target="worksheets/sheet1.xml"/></Relationships>)"},
        {"xl/worksheets/sheet1.xml",
         R"(<worksheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" )"
         R"(xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships">)"
         R"(<sheetData/><pageMargins left="0.7" right="0.7" top="0.75" bottom="0.75" header="0.3" footer="0.3"/>)"
         R"(<drawing r:id="rId1"/></worksheet>)"},
        {"xl/worksheets/_rels/sheet1.xml.rels",
         relationships +
             R"(<Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/drawing" Target="../drawings/drawing1.xml"/></Relationships>)"},
        {"xl/drawings/drawing1.xml", drawing},
        {"xl/drawings/_rels/drawing1.xml.rels",
         relationships +
             R"(<Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/image" Target="../media/image1.png"/></Relationships>)"},
        {"xl/media/image1.png", std::string("\x89PNG\r\n\x1a\n", 8)},
    };
}

bool NearColour(std::int32_t actual, std::int32_t expected) {
    for (int shift : {0, 8, 16}) {
        if (std::abs(((actual >> shift) & 0xFF) - ((expected >> shift) & 0xFF)) > 2) return false;
    }
    return true;
}

TEST_F(DrawingTest, ThemeColouredShapesReadAsTheSpreadsheetShowsThem) {
    WriteZip(folder / "made.xlsx", WorkbookWithPicture());
    const auto book = LoadXlsx(folder / "made.xlsx");
    const sheethost::Sheet& sheet = *book->sheets[0];
    ASSERT_EQ(sheet.shapes.size(), 1u);  // the picture stays the file's
    const Shape& bar = *sheet.shapes[0];
    EXPECT_EQ(bar.name, "GanntBarByRes1");
    EXPECT_EQ(bar.placement, mso::kMove);
    EXPECT_DOUBLE_EQ(bar.left, 48);  // column B, after one standard column
    EXPECT_DOUBLE_EQ(bar.top, 15);
    EXPECT_DOUBLE_EQ(bar.height, 15);
    EXPECT_TRUE(bar.fill.visible);
    EXPECT_EQ(bar.fill.foreColor, 0xC47244);  // the theme's first accent
    EXPECT_TRUE(bar.line.visible);
    EXPECT_TRUE(NearColour(bar.line.foreColor, 0x8F522F)) << std::hex << bar.line.foreColor;
}

// The same workbook made with an older theme, whose first accent is 4F81BD, and a cell filled
// with that accent lightened by 40 per cent.
Parts WorkbookWithOwnTheme() {
    Parts parts = WorkbookWithPicture();
    for (auto& [name, bytes] : parts) {
        if (name == "xl/_rels/workbook.xml.rels") {
            bytes.insert(
                bytes.find("</Relationships>"),
                R"(<Relationship Id="rId2" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/theme" Target="theme/theme1.xml"/>)"
                R"(<Relationship Id="rId3" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/styles" Target="styles.xml"/>)");
        } else if (name == "xl/worksheets/sheet1.xml") {
            const std::string cell = R"(<sheetData><row r="1"><c r="A1" s="1"/></row></sheetData>)";
            bytes.replace(bytes.find("<sheetData/>"), 12, cell);
        }
    }
    std::string scheme;
    for (auto [slot, rgb] : {std::pair{"dk1", "000000"},
                             {"lt1", "FFFFFF"},
                             {"dk2", "1F497D"},
                             {"lt2", "EEECE1"},
                             {"accent1", "4F81BD"},
                             {"accent2", "C0504D"},
                             {"accent3", "9BBB59"},
                             {"accent4", "8064A2"},
                             {"accent5", "4BACC6"},
                             {"accent6", "F79646"},
                             {"hlink", "0000FF"},
                             {"folHlink", "800080"}}) {
        scheme += std::string("<a:") + slot + "><a:srgbClr val=\"" + rgb + "\"/></a:" + slot + ">";
    }
    parts.push_back(
        {"xl/theme/theme1.xml",
         R"(<a:theme xmlns:a="http://schemas.openxmlformats.org/drawingml/2006/main" name="Office">)"
         R"(<a:themeElements><a:clrScheme name="Office">)" +
             scheme + "</a:clrScheme></a:themeElements></a:theme>"});
    parts.push_back(
        {"xl/styles.xml",
         R"(<styleSheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main">)"
         R"(<fonts count="1"><font><sz val="11"/><name val="Calibri"/></font></fonts>)"
         R"(<fills count="3"><fill><patternFill patternType="none"/></fill><fill><patternFill patternType="gray125"/></fill>)"
         R"(<fill><patternFill patternType="solid"><fgColor theme="4" tint="0.39997558519241921"/><bgColor indexed="64"/></patternFill></fill></fills>)"
         R"(<borders count="1"><border/></borders><cellStyleXfs count="1"><xf/></cellStyleXfs>)"
         R"(<cellXfs count="2"><xf/><xf fillId="2" applyFill="1"/></cellXfs></styleSheet>)"});
    return parts;
}

TEST_F(DrawingTest, ColoursComeFromTheWorkbooksOwnTheme) {
    WriteZip(folder / "older.xlsx", WorkbookWithOwnTheme());
    const auto book = LoadXlsx(folder / "older.xlsx");
    const sheethost::Sheet& sheet = *book->sheets[0];
    ASSERT_EQ(sheet.shapes.size(), 1u);
    EXPECT_EQ(sheet.shapes[0]->fill.foreColor, 0xBD814F);
    // "Lighter 40%" of the accent as the spreadsheet's colour picker shows it: 95B3D7.
    const std::int32_t fill = sheethost::FindCell(sheet, 1, 1)->style->interior.color;
    EXPECT_TRUE(NearColour(fill, 0xD7B395)) << std::hex << fill;
}

TEST_F(DrawingTest, ChangedShapesKeepWhatTheHostDoesNotModelAndPicturesStay) {
    WriteZip(folder / "made.xlsx", WorkbookWithPicture());
    const auto book = LoadXlsx(folder / "made.xlsx");
    sheethost::Sheet& sheet = *book->sheets[0];
    sheet.shapes[0]->left = 100;
    sheet.shapes[0]->name = "GanntBarByRes2";
    Shape added;
    added.id = 3;  // the host numbers on from its own shapes, so it takes the picture's id
    added.name = "TaskStatus5";
    added.autoShapeType = 9;
    added.width = added.height = 9;
    added.textFrame = sheethost::TextFrame{};
    sheet.shapes.push_back(std::make_shared<Shape>(added));
    Shape link;
    link.id = 4;
    link.name = "TaskDepand5";
    link.autoShapeType = mso::kShapeMixed;
    link.connectorType = mso::kConnectorStraight;
    link.beginConnection = sheethost::ConnectorEnd{2, 4};
    link.endConnection = sheethost::ConnectorEnd{3, 2};
    sheet.shapes.push_back(std::make_shared<Shape>(link));
    SaveXlsx(*book, folder / "made.xlsx", folder / "saved.xlsx");

    const std::string drawing = ReadPart(folder / "saved.xlsx", "xl/drawings/drawing1.xml");
    EXPECT_NE(drawing.find("outerShdw"), std::string::npos);  // the shadow of the moved shape
    EXPECT_NE(drawing.find("r:embed=\"rId1\""), std::string::npos);
    EXPECT_NE(
        ReadPart(folder / "saved.xlsx", "xl/drawings/_rels/drawing1.xml.rels").find("image1.png"),
        std::string::npos);
    EXPECT_EQ(ReadPart(folder / "saved.xlsx", "xl/media/image1.png").size(), 8u);

    const auto reloaded = LoadXlsx(folder / "saved.xlsx");
    const auto& shapes = reloaded->sheets[0]->shapes;
    ASSERT_EQ(shapes.size(), 3u);
    EXPECT_EQ(*shapes[0], *sheet.shapes[0]);
    EXPECT_EQ(shapes[1]->name, "TaskStatus5");
    std::set<int> ids{3};  // the picture's
    for (const auto& shape : shapes) EXPECT_TRUE(ids.insert(shape->id).second) << shape->name;
    // The connector stays glued to the marker under the marker's new id.
    EXPECT_EQ(shapes[2]->beginConnection, (sheethost::ConnectorEnd{shapes[0]->id, 4}));
    EXPECT_EQ(shapes[2]->endConnection, (sheethost::ConnectorEnd{shapes[1]->id, 2}));
}

TEST_F(DrawingTest, IdsAndSitesAtTheIntegerLimitNeitherWrapNorClash) {
    // The template shape and the picture both take the largest id there is, and a connector is
    // glued to the template at the largest site number and the smallest.
    Parts parts = WorkbookWithPicture();
    std::string& drawing = std::find_if(parts.begin(), parts.end(), [](const auto& part) {
                               return part.first == "xl/drawings/drawing1.xml";
                           })->second;
    for (const char* id : {R"(id="2" name="GanntBarByRes1")", R"(id="3" name="Logo")"}) {
        const std::string from(id);
        drawing.replace(drawing.find(from), 6, R"(id="2147483647")");
    }
    drawing.insert(
        drawing.find("</xdr:wsDr>"),
        R"(<xdr:twoCellAnchor><xdr:from><xdr:col>0</xdr:col><xdr:colOff>0</xdr:colOff>)"
        R"(<xdr:row>0</xdr:row><xdr:rowOff>0</xdr:rowOff></xdr:from><xdr:to><xdr:col>1</xdr:col>)"
        R"(<xdr:colOff>0</xdr:colOff><xdr:row>1</xdr:row><xdr:rowOff>0</xdr:rowOff></xdr:to>)"
        R"(<xdr:cxnSp macro=""><xdr:nvCxnSpPr><xdr:cNvPr id="5" name="TaskDepand1"/><xdr:cNvCxnSpPr>)"
        R"(<a:stCxn id="2147483647" idx="2147483647"/><a:endCxn id="2147483647" idx="-2147483648"/>)"
        R"(</xdr:cNvCxnSpPr></xdr:nvCxnSpPr><xdr:spPr><a:xfrm><a:off x="0" y="0"/>)"
        R"(<a:ext cx="609600" cy="190500"/></a:xfrm><a:prstGeom prst="straightConnector1">)"
        R"(<a:avLst/></a:prstGeom></xdr:spPr></xdr:cxnSp><xdr:clientData/></xdr:twoCellAnchor>)");
    WriteZip(folder / "made.xlsx", parts);
    const auto book = LoadXlsx(folder / "made.xlsx");
    sheethost::Sheet& sheet = *book->sheets[0];
    ASSERT_EQ(sheet.shapes.size(), 2u);
    const auto& connector = sheet.shapes[1];
    EXPECT_EQ(connector->beginConnection, (sheethost::ConnectorEnd{INT_MAX, INT_MAX}));
    sheet.shapes.Glue(*connector, &Shape::endConnection, sheethost::ConnectorEnd{INT_MAX, INT_MIN});

    // A new shape takes the lowest free id; the save moves the template off the picture's id.
    Shape marker;
    marker.name = "TaskStatus5";
    EXPECT_EQ(sheethost::AddShapeToSheet(sheet, marker)->id, 1);
    SaveXlsx(*book, folder / "made.xlsx", folder / "saved.xlsx");
    const auto reloaded = LoadXlsx(folder / "saved.xlsx");
    const auto& shapes = reloaded->sheets[0]->shapes;
    ASSERT_EQ(shapes.size(), 3u);
    std::set<int> ids{INT_MAX};  // the picture's
    for (const auto& shape : shapes) {
        EXPECT_GT(shape->id, 0) << shape->name;
        EXPECT_TRUE(ids.insert(shape->id).second) << shape->name;
    }
    EXPECT_EQ(shapes[1]->beginConnection, (sheethost::ConnectorEnd{shapes[0]->id, INT_MAX}));
    ASSERT_TRUE(shapes[1]->endConnection);
    EXPECT_EQ(shapes[1]->endConnection->shapeId, shapes[0]->id);
    EXPECT_LE(shapes[1]->endConnection->site, 0);  // still at no site of the shape
}

}  // namespace
}  // namespace xlsx::testing
