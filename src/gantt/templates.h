// The template shapes that colour and mark task rows, with a built-in look for each, so that a
// workbook without templates on its settings sheet still gets colours and markers.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "workbook/workbook.h"

inline constexpr char kDependsCheckErrorTemplate[] = "WSDependsCheckError";
inline constexpr char kStatusDelayTemplate[] = "WSTaskColorStyleDelay";
inline constexpr char kStatusEndTemplate[] = "WSTaskColorStyleEnd";
inline constexpr char kStatusStartTemplate[] = "WSTaskColorStyleStart";

// The line and fill a drawn shape takes over from its template. Colours are the host's RGB longs
// (red + green * 256 + blue * 65536); every value is kept as the host reports it.
struct ShapeStyle {
    double lineWeight = 0;
    double lineDashStyle = 0;
    double lineStyle = 0;
    double lineForeColor = 0;
    double lineBackColor = 0;
    double fillTransparency = 0;
    double fillForeColor = 0;
    // Applied with Fill.Patterned; none leaves a new shape's solid fill as it is.
    std::optional<double> fillPattern;
};

ShapeStyle ReadShapeStyle(const XlObject& source);
void ApplyShapeStyle(const ShapeStyle& style, const XlObject& target);

// What a template contributes to a drawn shape.
struct TemplateLook {
    double autoShapeType = 0;
    double width = 0;
    double height = 0;
    ShapeStyle style;
};

// A template shape of the settings sheet, or its built-in look when the workbook has no shape of
// that name.
class ShapeTemplate {
  public:
    ShapeTemplate(XlObject shape, const TemplateLook& builtIn);

    bool IsBuiltIn() const { return shape_.IsNothing(); }
    double AutoShapeType() const;
    double Width() const;
    double Height() const;
    double FillColor() const;
    double LineColor() const;
    double LineWeight() const;
    // Gives `target` the template's line and fill.
    void StyleShape(const XlObject& target) const;

  private:
    XlObject shape_;
    TemplateLook builtIn_;
};

// The frame drawn around the predecessors cell of a task with a violated link.
ShapeTemplate DependencyFrameTemplate();

enum class StatusMarker { kDelay, kEnd, kStart };
ShapeTemplate StatusMarkerTemplate(StatusMarker marker);

// The template whose fill colours summary rows of `level` (1 = top level) and draws their bars:
// the bar template's name followed by the level, such as "GanntBar1".
ShapeTemplate SummaryLevelTemplate(std::int64_t level);

// The bars of the chart: the plain bar ("GanntBar"), the bar of a complete task and the progress
// overlay ("GanntBar100%"), the actual bar of a task that ran off plan ("GanntBar%").
ShapeTemplate PlainBarTemplate();
ShapeTemplate CompleteBarTemplate();
ShapeTemplate ProgressBarTemplate();
// The bar of an ordinary task done by the resource named `resourceName`: the shape
// "GanntBarByRes" + name on the resource sheet, else the plain bar.
ShapeTemplate ResourceBarTemplate(std::string_view resourceName);
// The line of task connectors ("TaskConnector") and of progress lines ("ProgressLines").
ShapeTemplate ConnectorTemplate();
ShapeTemplate ProgressLineTemplate();
