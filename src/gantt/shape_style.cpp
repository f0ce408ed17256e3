#include "gantt/gantt.h"
#include "gantt/templates.h"

ShapeStyle ReadShapeStyle(const XlObject& source) {
    ShapeStyle style;
    style.lineWeight = source.GetNumber("Line.Weight");
    style.lineDashStyle = source.GetNumber("Line.DashStyle");
    style.lineStyle = source.GetNumber("Line.style");
    style.lineForeColor = source.GetNumber("Line.ForeColor.RGB");
    style.lineBackColor = source.GetNumber("Line.BackColor.RGB");
    style.fillTransparency = source.GetNumber("Fill.Transparency");
    style.fillForeColor = source.GetNumber("Fill.ForeColor.RGB");
    style.fillPattern = source.GetNumber("Fill.Pattern");
    return style;
}

void ApplyShapeStyle(const ShapeStyle& style, const XlObject& target) {
    // The line and the fill are fetched once each: every property set through the shape's own
    // path would fetch them again, a call each in the spreadsheet program.
    const XlObject line = target.GetObjectPath(".Line");
    line.SetNumber("Weight", style.lineWeight);
    line.SetNumber("DashStyle", style.lineDashStyle);
    line.SetNumber("style", style.lineStyle);
    // -1 is the host's true: a template whose line is hidden still gives a visible outline.
    line.SetNumber("Visible", -1);
    line.SetNumber("ForeColor.RGB", style.lineForeColor);
    line.SetNumber("BackColor.RGB", style.lineBackColor);
    const XlObject fill = target.GetObjectPath(".Fill");
    fill.SetNumber("Transparency", style.fillTransparency);
    fill.SetNumber("ForeColor.RGB", style.fillForeColor);
    fill.SetNumber("Visible", -1);
    if (style.fillPattern) {
        fill.Call(".Patterned(%e)", *style.fillPattern);
    }
}

void CopyShapeStyle(const XlObject& source, const XlObject& target) {
    ApplyShapeStyle(ReadShapeStyle(source), target);
}
