#include "sheethost/shape_sheet.h"

#include <algorithm>

#include "sheethost/model.h"

namespace sheethost {
namespace {

std::ptrdiff_t IndexOf(const Sheet& sheet, const Shape& shape) {
    const auto found =
        std::find_if(sheet.shapes.begin(), sheet.shapes.end(),
                     [&](const auto& candidate) { return candidate.get() == &shape; });
    return found == sheet.shapes.end() ? -1 : found - sheet.shapes.begin();
}

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

}  // namespace

std::shared_ptr<Shape> FindShape(const Sheet& sheet, std::string_view name) {
    for (const auto& shape : sheet.shapes) {
        if (SameName(shape->name, name)) return shape;
    }
    return nullptr;
}

std::shared_ptr<Shape> FindShapeById(const Sheet& sheet, int id) {
    for (const auto& shape : sheet.shapes) {
        if (shape->id == id) return shape;
    }
    return nullptr;
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
    int lastId = 0;
    for (const auto& existing : sheet.shapes) lastId = std::max(lastId, existing->id);
    shape.id = lastId + 1;
    if (shape.name.empty()) shape.name = DefaultBaseName(shape) + " " + std::to_string(shape.id);
    return sheet.shapes.emplace_back(std::make_shared<Shape>(std::move(shape)));
}

void DeleteShapeFromSheet(Sheet& sheet, const Shape& shape) {
    const int id = shape.id;
    std::erase_if(sheet.shapes, [&](const auto& candidate) { return candidate.get() == &shape; });
    if (FindShapeById(sheet, id)) return;
    std::erase_if(sheet.charts, [&](const auto& chart) { return chart->shapeId == id; });
    for (const auto& other : sheet.shapes) {
        if (other->beginConnection && other->beginConnection->shapeId == id) {
            other->beginConnection.reset();
        }
        if (other->endConnection && other->endConnection->shapeId == id) {
            other->endConnection.reset();
        }
    }
}

bool ZOrderShape(Sheet& sheet, const Shape& shape, int command) {
    const std::ptrdiff_t index = IndexOf(sheet, shape);
    if (index < 0 || command < 0 || command > 3) return false;
    auto& shapes = sheet.shapes;
    const auto position = shapes.begin() + index;
    switch (command) {
        case 0:
            std::rotate(position, position + 1, shapes.end());
            break;
        case 1:
            std::rotate(shapes.begin(), position, position + 1);
            break;
        case 2:
            if (position + 1 != shapes.end()) std::iter_swap(position, position + 1);
            break;
        default:
            if (position != shapes.begin()) std::iter_swap(position, position - 1);
            break;
    }
    return true;
}

int ZOrderPosition(const Sheet& sheet, const Shape& shape) {
    return static_cast<int>(IndexOf(sheet, shape) + 1);
}

}  // namespace sheethost
