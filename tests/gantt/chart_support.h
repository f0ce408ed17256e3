// Shared by the chart tests: a small project drawn through kpDrawGanntChart and the shapes it left
// on the task sheet, read back from the in-memory host.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "support/project_json.h"

namespace charttest {

using testsupport::ProjectJson;

// A time of day as the task cells hold it; whole days added put it on a later day.
constexpr double At(int hour, int minute = 0) {
    return (hour * 60 + minute) / 1440.0;
}

// The chart's first column is AI; each column covers 60 minutes from 1 April 08:00.
inline std::string ChartColumn(int hoursFromStart) {
    return ColumnLetters(35 + hoursFromStart);
}

inline std::string TextOf(const sheethost::Shape& shape) {
    std::string text;
    if (shape.textFrame) {
        for (const auto& run : shape.textFrame->runs) text += run.text;
    }
    return text;
}

// What a redraw must reproduce: every shape's name and box, in sheet order.
using ShapeBox = std::tuple<std::string, double, double, double, double>;
inline std::vector<ShapeBox> Boxes(const ProjectJson& project) {
    std::vector<ShapeBox> boxes;
    for (const sheethost::Shape* shape : project.ShapesNamed("")) {
        boxes.emplace_back(shape->name, shape->left, shape->top, shape->width, shape->height);
    }
    return boxes;
}

class ChartTest : public ::testing::Test {
  protected:
    void Draw(int style = 0) {
        project.Bind();
        kpDrawGanntChart(style);
    }

    // The shape of that name; the test stops when there is none.
    const sheethost::Shape& Shape(std::string_view name) const {
        const sheethost::Shape* shape = project.ShapeNamed(name);
        if (shape == nullptr) {
            ADD_FAILURE() << "no shape " << name;
            static const sheethost::Shape none;
            return none;
        }
        return *shape;
    }

    std::vector<std::string> RowShapes(int row) const {
        std::vector<std::string> names;
        for (const sheethost::Shape* shape :
             project.ShapesNamed("GanntBar" + std::to_string(row))) {
            names.push_back(shape->name);
        }
        return names;
    }

    ProjectJson project;
};

}  // namespace charttest
