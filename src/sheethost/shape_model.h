// The drawing layer of a worksheet as plain data: shapes (auto shapes, text boxes, lines,
// connectors, freeforms, embedded charts) and the charts behind the chart shapes. Geometry is in
// points from the top-left corner of cell A1, as the spreadsheet reports it. Colours are the
// spreadsheet's RGB longs (red + green * 256 + blue * 65536).
//
// The automation objects (shape_*.cpp, chart_*.cpp) read and write these records; the workbook's
// JSON loader and dumper call the *ToJson / *FromJson functions below for each sheet, and the row
// operations call MoveShapesWithRows.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

namespace sheethost {

struct Sheet;

// The spreadsheet's own enumeration values for the members the drawing layer answers.
namespace mso {
// Shape.Type
inline constexpr int kAutoShape = 1;
inline constexpr int kChart = 3;
inline constexpr int kFreeform = 5;
inline constexpr int kLine = 9;
inline constexpr int kTextBox = 17;
// Shape.AutoShapeType
inline constexpr int kShapeMixed = -2;
inline constexpr int kShapeRectangle = 1;
inline constexpr int kShapeNotPrimitive = 138;
// Shapes.AddConnector type
inline constexpr int kConnectorStraight = 1;
inline constexpr int kConnectorElbow = 2;
inline constexpr int kConnectorCurve = 3;
// Shape.Placement
inline constexpr int kMoveAndSize = 1;
inline constexpr int kMove = 2;
inline constexpr int kFreeFloating = 3;
// LineFormat.DashStyle, LineFormat.Style, arrowheads
inline constexpr int kLineSolid = 1;
inline constexpr int kLineSingle = 1;
inline constexpr int kArrowheadNone = 1;
// FillFormat.Type: solid or patterned; FillFormat.Pattern of a solid fill
inline constexpr int kFillSolid = 1;
inline constexpr int kFillPatterned = 2;
inline constexpr int kPatternMixed = -2;
// TextFrame alignments and orientation
inline constexpr int kHAlignLeft = -4131;
inline constexpr int kVAlignTop = -4160;
inline constexpr int kTextOrientationHorizontal = 1;
// Chart.ChartType of a new chart: clustered columns; Axis.CategoryType: automatic
inline constexpr int kColumnClustered = 51;
inline constexpr int kAutomaticScale = -4105;
// Chart.SetSourceData plotBy
inline constexpr int kPlotByRows = 1;
inline constexpr int kPlotByColumns = 2;
}  // namespace mso

struct Font {
    std::string name = "Calibri";
    double size = 11;
    bool bold = false;
    bool italic = false;
    std::int32_t color = 0;

    bool operator==(const Font&) const = default;
};

// A stretch of text in one font. A text frame's text is its runs joined; formatting a part of the
// text (Characters(start, length).Font) splits runs.
struct TextRun {
    std::string text;  // UTF-8
    Font font;

    bool operator==(const TextRun&) const = default;
};

struct TextFrame {
    std::vector<TextRun> runs;
    // The font a new text takes when the frame is empty.
    Font defaultFont;
    bool autoSize = false;
    bool autoMargins = true;
    int horizontalAlignment = mso::kHAlignLeft;
    int verticalAlignment = mso::kVAlignTop;
    int orientation = mso::kTextOrientationHorizontal;
    double marginLeft = 7.2;
    double marginRight = 7.2;
    double marginTop = 3.6;
    double marginBottom = 3.6;

    bool operator==(const TextFrame&) const = default;
};

struct LineFormat {
    bool visible = true;
    double weight = 0.75;
    int dashStyle = mso::kLineSolid;
    int style = mso::kLineSingle;
    std::int32_t foreColor = 0x8F522F;  // the default theme's dark blue outline
    std::int32_t backColor = 0xFFFFFF;
    int beginArrowheadStyle = mso::kArrowheadNone;
    int endArrowheadStyle = mso::kArrowheadNone;
    double transparency = 0;

    bool operator==(const LineFormat&) const = default;
};

struct FillFormat {
    bool visible = true;
    double transparency = 0;
    std::int32_t foreColor = 0xC47244;  // the default theme's blue
    std::int32_t backColor = 0xFFFFFF;
    int type = mso::kFillSolid;
    int pattern = mso::kPatternMixed;  // a pattern number (1..62) once the fill is patterned

    bool operator==(const FillFormat&) const = default;
};

// One end of a connector glued to a connection site of another shape of the same sheet.
struct ConnectorEnd {
    int shapeId = 0;
    int site = 0;

    bool operator==(const ConnectorEnd&) const = default;
};

struct FreeformNode {
    int segmentType = 0;  // 0 line, 1 curve
    int editingType = 0;  // 0 auto, 1 corner
    double x = 0;         // points, sheet coordinates
    double y = 0;

    bool operator==(const FreeformNode&) const = default;
};

// The shape list a shape is on, set by the list: every call on a shape first asks whether it is
// still on its sheet, and a mark on the shape answers without a look-up in an index of tens of
// thousands of shapes. A copy of a shape is on no list; the mark takes no part in comparisons.
class ShapeListMark {
  public:
    ShapeListMark() = default;
    ShapeListMark(const ShapeListMark&) {}
    ShapeListMark& operator=(const ShapeListMark&) { return *this; }
    ~ShapeListMark() = default;
    bool operator==(const ShapeListMark&) const { return true; }

    // Set through the list's own handles, which may be const.
    mutable const void* list = nullptr;
};

struct Shape {
    // Unique on its sheet (a new shape takes one more than the largest id there); it also numbers
    // the default names, as in "Rectangle 3".
    int id = 0;
    std::string name;
    int type = mso::kAutoShape;
    int autoShapeType = mso::kShapeRectangle;
    double left = 0;
    double top = 0;
    double width = 0;
    double height = 0;
    // A line or connector runs from its begin point to its end point inside its box; the flips
    // tell which corners they are (no flip: top-left to bottom-right).
    bool horizontalFlip = false;
    bool verticalFlip = false;
    bool visible = true;
    int placement = mso::kMoveAndSize;
    LineFormat line;
    FillFormat fill;
    // Present on shapes that hold text (text boxes and auto shapes); absent on lines, connectors
    // and charts.
    std::optional<TextFrame> textFrame;
    std::vector<double> adjustments;
    // Set on connectors (and lines, which are straight connectors).
    std::optional<int> connectorType;
    std::optional<ConnectorEnd> beginConnection;
    std::optional<ConnectorEnd> endConnection;
    // The outline of a freeform, in sheet points.
    std::vector<FreeformNode> nodes;
    ShapeListMark onList;

    bool operator==(const Shape&) const = default;
};

struct ChartAxis {
    bool hasAxis = true;
    int categoryType = mso::kAutomaticScale;

    bool operator==(const ChartAxis&) const = default;
};

// A series as the chart took it from its source data: references, not copies of the values.
struct ChartSeries {
    std::string name;           // as shown, read from its cell when the chart took its data
    std::string nameReference;  // "=Sheet1!$C$2"; empty for a name given as text
    std::string values;         // "=Sheet1!$C$3:$C$9"
    std::string xValues;        // the categories, empty when the data has none

    bool operator==(const ChartSeries&) const = default;
};

// An embedded chart; the shape with `shapeId` on the same sheet is its frame (name, position,
// size, z-order) and deleting that shape deletes the chart.
struct Chart {
    int shapeId = 0;
    int chartType = mso::kColumnClustered;
    bool hasTitle = false;
    std::string title;
    ChartAxis categoryAxis;
    ChartAxis valueAxis;
    std::string sourceData;  // the address given to SetSourceData, with its sheet
    int plotBy = mso::kPlotByColumns;
    std::vector<ChartSeries> series;

    bool operator==(const Chart&) const = default;
};

// Canonical JSON of one shape or chart: every property, stable key order. FromJson fills missing
// properties with the defaults above and answers nullopt for a description that is not an object
// or holds a property of the wrong type.
nlohmann::json ShapeToJson(const Shape& shape);
std::optional<Shape> ShapeFromJson(const nlohmann::json& json);
nlohmann::json ChartToJson(const Chart& chart);
std::optional<Chart> ChartFromJson(const nlohmann::json& json);

// What a row operation (cut and insert, insert, delete) did to the rows of a sheet, as the caller
// knows it. Row numbers are 1-based.
struct RowShift {
    // Where an old row went; 0 when it was deleted.
    std::function<int(int oldRow)> mapRow;
    // The top of a row in points, before and after the operation (a hidden row has the same top
    // as the next one).
    std::function<double(int row)> topBefore;
    std::function<double(int row)> topAfter;
};

// Moves the shapes of the sheet that move with cells (Placement 1 and 2) along with the rows
// their corners lie in; Placement 1 shapes also stretch or shrink with the rows they span. Shapes
// glued to moved shapes by connectors are rerouted. Call after the sheet's rows are rearranged.
void MoveShapesWithRows(Sheet& sheet, const RowShift& shift);

}  // namespace sheethost
