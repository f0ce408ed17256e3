#include "gantt/templates.h"

#include <array>
#include <string>
#include <utility>

#include "core/engine_state.h"
#include "gantt/gantt.h"

namespace {

constexpr double Rgb(int red, int green, int blue) {
    return red + green * 256.0 + blue * 65536.0;
}

// The host's shape types and line values of the built-in looks.
constexpr double kRectangle = 1;
constexpr double kOval = 9;
constexpr double kSolidDash = 1;
constexpr double kSingleLine = 1;

constexpr double kWhite = Rgb(255, 255, 255);
// The width a bar template is given; drawn bars take their width from the task's dates.
constexpr double kBarLength = 40;

// A flat shape of one colour, outline included.
TemplateLook Flat(double autoShapeType, double size, double colour) {
    TemplateLook look;
    look.autoShapeType = autoShapeType;
    look.width = size;
    look.height = size;
    look.style.lineWeight = 0.75;
    look.style.lineDashStyle = kSolidDash;
    look.style.lineStyle = kSingleLine;
    look.style.lineForeColor = colour;
    look.style.lineBackColor = kWhite;
    look.style.fillForeColor = colour;
    return look;
}

// A bar of the chart: filled in `colour`, outlined in `outline`, `height` points high in its row.
TemplateLook Bar(double colour, double outline, double height) {
    TemplateLook look = Flat(kRectangle, height, colour);
    look.width = kBarLength;
    look.style.lineForeColor = outline;
    return look;
}

// A line: its colour and weight are all that drawn lines take from it.
TemplateLook Line(double colour, double weight) {
    TemplateLook look = Flat(kRectangle, 0, colour);
    look.style.lineWeight = weight;
    return look;
}

// Built-in looks, for workbooks whose settings sheet lacks the template:
// - dependency frame: a red (255, 0, 0) rectangle outline, 2.25 points, so it reads as an error;
// - status markers, 10-point circles in traffic-light colours: late red (255, 0, 0), last half
//   amber (255, 192, 0), first half green (0, 176, 80);
// - summary rows, light tints, so that the row's text stays readable: level 1 blue
//   (155, 194, 230), 2 green (169, 208, 142), 3 gold (255, 217, 102), 4 orange (244, 176, 132),
//   5 lavender (201, 182, 224); deeper levels repeat the list from level 6 on; their bars are
//   outlined in dark grey (89, 89, 89) so that they stand out from the tinted row;
// - bars, 10 points high in a usual 15-point row: planned bars light blue (91, 155, 213) outlined
//   in blue (46, 117, 182); complete bars and the progress overlay, 6 points high so that the
//   planned bar shows around the progress, navy (47, 85, 151); actual bars that left the plan
//   orange (237, 125, 49), also 6 points high;
// - connectors dark grey (64, 64, 64), 1 point; progress lines red (255, 0, 0), 1.5 points.
TemplateLook DependencyFrameLook() {
    TemplateLook look = Flat(kRectangle, 0, Rgb(255, 0, 0));
    look.style.lineWeight = 2.25;
    return look;
}

constexpr double kMarkerSize = 10;

TemplateLook StatusMarkerLook(StatusMarker marker) {
    switch (marker) {
        case StatusMarker::kDelay:
            return Flat(kOval, kMarkerSize, Rgb(255, 0, 0));
        case StatusMarker::kEnd:
            return Flat(kOval, kMarkerSize, Rgb(255, 192, 0));
        case StatusMarker::kStart:
            return Flat(kOval, kMarkerSize, Rgb(0, 176, 80));
    }
    return {};
}

constexpr std::array<double, 5> kSummaryTints = {Rgb(155, 194, 230), Rgb(169, 208, 142),
                                                 Rgb(255, 217, 102), Rgb(244, 176, 132),
                                                 Rgb(201, 182, 224)};

constexpr double kBarHeight = 10;
constexpr double kInnerBarHeight = 6;

TemplateLook SummaryLevelLook(std::int64_t level) {
    const std::size_t index = static_cast<std::size_t>(level < 1 ? 0 : level - 1);
    return Bar(kSummaryTints[index % kSummaryTints.size()], Rgb(89, 89, 89), kBarHeight);
}

TemplateLook PlainBarLook() {
    return Bar(Rgb(91, 155, 213), Rgb(46, 117, 182), kBarHeight);
}

ShapeTemplate Find(std::string_view name, const TemplateLook& builtIn) {
    return ShapeTemplate(EngineSettingsSheet().ShapeByName(name), builtIn);
}

const char* StatusMarkerName(StatusMarker marker) {
    switch (marker) {
        case StatusMarker::kDelay:
            return kStatusDelayTemplate;
        case StatusMarker::kEnd:
            return kStatusEndTemplate;
        case StatusMarker::kStart:
            return kStatusStartTemplate;
    }
    return "";
}

}  // namespace

ShapeTemplate::ShapeTemplate(XlObject shape, const TemplateLook& builtIn)
    : shape_(std::move(shape)), builtIn_(builtIn) {}

double ShapeTemplate::AutoShapeType() const {
    return IsBuiltIn() ? builtIn_.autoShapeType : shape_.GetNumber("AutoShapeType");
}

double ShapeTemplate::Width() const {
    return IsBuiltIn() ? builtIn_.width : shape_.GetWidth();
}

double ShapeTemplate::Height() const {
    return IsBuiltIn() ? builtIn_.height : shape_.GetHeight();
}

double ShapeTemplate::FillColor() const {
    return IsBuiltIn() ? builtIn_.style.fillForeColor : shape_.GetNumber("Fill.ForeColor.RGB");
}

double ShapeTemplate::LineColor() const {
    return IsBuiltIn() ? builtIn_.style.lineForeColor : shape_.GetNumber("Line.ForeColor.RGB");
}

double ShapeTemplate::LineWeight() const {
    return IsBuiltIn() ? builtIn_.style.lineWeight : shape_.GetNumber("Line.Weight");
}

void ShapeTemplate::StyleShape(const XlObject& target) const {
    if (IsBuiltIn()) {
        ApplyShapeStyle(builtIn_.style, target);
    } else {
        CopyShapeStyle(shape_, target);
    }
}

ShapeTemplate DependencyFrameTemplate() {
    return Find(kDependsCheckErrorTemplate, DependencyFrameLook());
}

ShapeTemplate StatusMarkerTemplate(StatusMarker marker) {
    return Find(StatusMarkerName(marker), StatusMarkerLook(marker));
}

ShapeTemplate SummaryLevelTemplate(std::int64_t level) {
    return Find(BarTemplateName() + std::to_string(level), SummaryLevelLook(level));
}

ShapeTemplate PlainBarTemplate() {
    return Find(BarTemplateName(), PlainBarLook());
}

ShapeTemplate CompleteBarTemplate() {
    return Find(kCompleteBarTemplate, Bar(Rgb(47, 85, 151), Rgb(47, 85, 151), kInnerBarHeight));
}

ShapeTemplate ProgressBarTemplate() {
    return Find(kProgressBarTemplate, Bar(Rgb(237, 125, 49), Rgb(197, 90, 17), kInnerBarHeight));
}

ShapeTemplate ResourceBarTemplate(std::string_view resourceName) {
    XlObject shape = EngineResourceSheet().ShapeByName(std::string(kResourceBarTemplate) +
                                                       std::string(resourceName));
    return shape.IsNothing() ? PlainBarTemplate() : ShapeTemplate(std::move(shape), PlainBarLook());
}

ShapeTemplate ConnectorTemplate() {
    return Find(ConnectorTemplateName(), Line(Rgb(64, 64, 64), 1));
}

ShapeTemplate ProgressLineTemplate() {
    return Find(kProgressLineTemplate, Line(Rgb(255, 0, 0), 1.5));
}
