#include "sheethost/shape_sheet.h"

#include <algorithm>
#include <limits>

#include "sheethost/model.h"

namespace sheethost {
namespace {

const char* AutoShapeBaseName(int autoShapeType) {
    switch (autoShapeType) {
        case 1:
            return "Rectangle";
        case 2:
            return "Parallelogram";
        case 3:
            return "Trapezoid";
        case 4:
            return "Diamond";
        case 5:
            return "Rounded Rectangle";
        case 6:
            return "Octagon";
        case 7:
            return "Isosceles Triangle";
        case 8:
            return "Right Triangle";
        case 9:
            return "Oval";
        case 10:
            return "Hexagon";
        case 33:
            return "Right Arrow";
        case 34:
            return "Left Arrow";
        case 35:
            return "Up Arrow";
        case 36:
            return "Down Arrow";
        case 51:
            return "Pentagon";
        case 52:
            return "Chevron";
        default:
            return "AutoShape";
    }
}

// One more than the largest id on the sheet; once a file has used the largest id there is, the
// lowest free one.
int NewShapeId(const ShapeList& shapes) {
    const int last = shapes.LastId();
    if (last < std::numeric_limits<int>::max()) return last + 1;
    int id = 1;
    while (shapes.WithId(id) != nullptr) ++id;
    return id;
}

}  // namespace

std::shared_ptr<Shape> FindShape(const Sheet& sheet, std::string_view name) {
    return sheet.shapes.Named(name);
}

std::shared_ptr<Shape> FindShapeById(const Sheet& sheet, int id) {
    return sheet.shapes.WithId(id);
}

std::shared_ptr<Chart> FindChartOfShape(const Sheet& sheet, int shapeId) {
    for (const auto& chart : sheet.charts) {
        if (chart->shapeId == shapeId) return chart;
    }
    return nullptr;
}

std::string DefaultBaseName(const Shape& shape) {
    if (shape.connectorType) {
        switch (*shape.connectorType) {
            case mso::kConnectorElbow:
                return "Elbow Connector";
            case mso::kConnectorCurve:
                return "Curved Connector";
            default:
                return "Straight Connector";
        }
    }
    switch (shape.type) {
        case mso::kTextBox:
            return "TextBox";
        case mso::kFreeform:
            return "Freeform";
        case mso::kChart:
            return "Chart";
        default:
            return AutoShapeBaseName(shape.autoShapeType);
    }
}

std::shared_ptr<Shape> AddShapeToSheet(Sheet& sheet, Shape shape) {
    shape.id = NewShapeId(sheet.shapes);
    if (shape.name.empty()) shape.name = DefaultBaseName(shape) + " " + std::to_string(shape.id);
    return sheet.shapes.push_back(std::make_shared<Shape>(std::move(shape)));
}

void DeleteShapeFromSheet(Sheet& sheet, const Shape& shape) {
    const int id = shape.id;
    sheet.shapes.erase(shape);
    if (FindShapeById(sheet, id)) return;
    std::erase_if(sheet.charts, [&](const auto& chart) { return chart->shapeId == id; });
    for (const auto& connector : sheet.shapes.GluedTo(id)) {
        for (const auto end : {&Shape::beginConnection, &Shape::endConnection}) {
            if ((*connector).*end && ((*connector).*end)->shapeId == id) {
                sheet.shapes.Glue(*connector, end, std::nullopt);
            }
        }
    }
}

bool ZOrderShape(Sheet& sheet, const Shape& shape, int command) {
    const std::ptrdiff_t index = sheet.shapes.IndexOf(shape);
    if (index < 0 || command < 0 || command > 3) return false;
    const auto from = static_cast<std::size_t>(index);
    const std::size_t last = sheet.shapes.size() - 1;
    switch (command) {
        case 0:
            sheet.shapes.move(from, last);
            break;
        case 1:
            sheet.shapes.move(from, 0);
            break;
        case 2:
            sheet.shapes.move(from, std::min(from + 1, last));
            break;
        default:
            sheet.shapes.move(from, from == 0 ? 0 : from - 1);
            break;
    }
    return true;
}

int ZOrderPosition(const Sheet& sheet, const Shape& shape) {
    return static_cast<int>(sheet.shapes.IndexOf(shape) + 1);
}

}  // namespace sheethost
