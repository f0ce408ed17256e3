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
    target.SetNumber("Line.Weight", style.lineWeight);
    target.SetNumber("Line.DashStyle", style.lineDashStyle);
    target.SetNumber("Line.style", style.lineStyle);
    // -1 is the host's true: a template whose line is hidden still gives a visible outline.
    target.SetNumber("Line.Visible", -1);
    target.SetNumber("Line.ForeColor.RGB", style.lineForeColor);
    target.SetNumber("Line.BackColor.RGB", style.lineBackColor);
    target.SetNumber("Fill.Transparency", style.fillTransparency);
    target.SetNumber("Fill.ForeColor.RGB", style.fillForeColor);
    target.SetNumber("Fill.Visible", -1);
    if (style.fillPattern) {
        target.Call(".Fill.Patterned(%e)", *style.fillPattern);
    }
}

void CopyShapeStyle(const XlObject& source, const XlObject& target) {
    ApplyShapeStyle(ReadShapeStyle(source), target);
}
