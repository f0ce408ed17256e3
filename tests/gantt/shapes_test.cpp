// The shape helpers of the Gantt drawing state: templates and label font loaded from the
// workbook, styles copied from templates, names with the first free letter, and deletion by
// prefix over the live shape collection.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/engine_state.h"
#include "engine/refresh.h"
#include "gantt/gantt.h"
#include "support/project_json.h"
#include "wbs/task_table.h"

namespace {

using testsupport::ProjectJson;

nlohmann::json Named(std::string_view name) {
    return {{"name", name}, {"left", 10}, {"top", 10}, {"width", 20}, {"height", 5}};
}

std::vector<std::string> Names(const std::vector<const sheethost::Shape*>& shapes) {
    std::vector<std::string> names;
    for (const sheethost::Shape* shape : shapes) names.push_back(shape->name);
    return names;
}

class GanttShapes : public ::testing::Test {
  protected:
    GanttShapes() { project.Task(12, 1, "Build"); }

    void Bind() {
        project.Bind();
        ASSERT_TRUE(RefreshSettings());
        TaskTable_Load();
    }

    XlObject AddedShape() const {
        return EngineWbsSheet().GetObjectPath(".Shapes.AddShape(%e,%e,%e,%e,%e)", 1.0, 5.0, 5.0,
                                              10.0, 10.0);
    }

    ProjectJson project;
};

TEST_F(GanttShapes, DeletingByPrefixRemovesEveryMatchAndNothingElse) {
    project.AddTemplate("GanntBar", 1, 40, 8, 0x808080);
    for (const char* name : {"GanntBar12A", "GanntBar12B", "Other", "GanntBar13A", "GanntBar12C",
                             "ganntbar14A", "GanntBa", "TaskConnector5A", "GanntBar15A"}) {
        project.Shapes("WBS").push_back(Named(name));
    }
    Bind();

    DeleteTaskBars();

    EXPECT_EQ(Names(project.ShapesNamed("")),
              (std::vector<std::string>{"Other", "ganntbar14A", "GanntBa", "TaskConnector5A"}));
    // The templates on the settings sheet share the prefix and stay.
    EXPECT_EQ(project.ShapesNamed("GanntBar", "Settings").size(), 1u);
}

TEST_F(GanttShapes, WithoutTemplatesKindsKeepTheirUsualPrefixes) {
    for (const char* name : {"GanntBar12A", "TaskConnector12A", "TaskStatus12", "Other"}) {
        project.Shapes("WBS").push_back(Named(name));
    }
    Bind();

    DeleteTaskConnectors();
    DeleteTaskBars();

    EXPECT_EQ(Names(project.ShapesNamed("")), (std::vector<std::string>{"TaskStatus12", "Other"}));
}

TEST_F(GanttShapes, NewShapesTakeTheFirstFreeLetterOfTheirRow) {
    project.AddTemplate("GanntBar", 1, 40, 8, 0x808080);
    project.Shapes("WBS").push_back(Named("GanntBar12A"));
    project.Shapes("WBS").push_back(Named("GanntBar12C"));
    Bind();
    const TaskRecord& task = *Tasks_ByRow(12);

    NameNewShape(AddedShape(), task, "");
    NameNewShape(AddedShape(), task, "");
    NameNewShape(AddedShape(), task, "TaskConnector");

    EXPECT_EQ(Names(project.ShapesNamed("")),
              (std::vector<std::string>{"GanntBar12A", "GanntBar12C", "GanntBar12B", "GanntBar12D",
                                        "TaskConnector12A"}));
}

TEST_F(GanttShapes, CopiedStyleTakesLineAndFillAndShowsBoth) {
    project.Shapes("Settings")
        .push_back({{"name", "Patterned"},
                    {"line",
                     {{"visible", false},
                      {"weight", 2.25},
                      {"dashStyle", 4},
                      {"style", 3},
                      {"foreColor", 0x112233},
                      {"backColor", 0x445566}}},
                    {"fill",
                     {{"visible", false},
                      {"transparency", 0.25},
                      {"foreColor", 0x778899},
                      {"type", 2},
                      {"pattern", 5}}}});
    project.AddTemplate("Solid", 1, 10, 10, 0x00FF00, 0x0000FF);
    Bind();
    const XlObject settings = EngineSettingsSheet();
    const XlObject patterned = AddedShape();
    const XlObject solid = AddedShape();

    CopyShapeStyle(settings.ShapeByName("Patterned"), patterned);
    CopyShapeStyle(settings.ShapeByName("Solid"), solid);

    const std::vector<const sheethost::Shape*> drawn = project.ShapesNamed("");
    ASSERT_EQ(drawn.size(), 2u);
    const sheethost::Shape& copy = *drawn[0];
    EXPECT_TRUE(copy.line.visible);
    EXPECT_DOUBLE_EQ(copy.line.weight, 2.25);
    EXPECT_EQ(copy.line.dashStyle, 4);
    EXPECT_EQ(copy.line.style, 3);
    EXPECT_EQ(copy.line.foreColor, 0x112233);
    EXPECT_EQ(copy.line.backColor, 0x445566);
    EXPECT_TRUE(copy.fill.visible);
    EXPECT_DOUBLE_EQ(copy.fill.transparency, 0.25);
    EXPECT_EQ(copy.fill.foreColor, 0x778899);
    EXPECT_EQ(copy.fill.type, 2);
    EXPECT_EQ(copy.fill.pattern, 5);
    // A solid template has no pattern to apply: the copy stays solid.
    EXPECT_EQ(drawn[1]->fill.type, 1);
    EXPECT_EQ(drawn[1]->fill.foreColor, 0x00FF00);
    EXPECT_EQ(drawn[1]->line.foreColor, 0x0000FF);
}

TEST_F(GanttShapes, StylesAreLoadedFromTheWorkbook) {
    project.AddTemplate("GanntBar", 1, 40, 8, 0x808080);
    project.AddTemplate("GanntBar%", 1, 40, 8, 0x808080);
    project.AddTemplate("TaskConnector", 1, 40, 8, 0x808080);
    project.Setting("GanntBarStyle", "3");
    project.Cells("WBS")["Y12"] = {{"value", "Build"},
                                   {"font", {{"name", "Arial"}, {"size", 9.5}}}};
    Bind();

    const GanttStyles& styles = EngineGanttStyles();
    EXPECT_EQ(styles.barStyle, 3);
    EXPECT_EQ(Narrow(styles.labelFontName), "Arial");
    EXPECT_FLOAT_EQ(styles.labelFontSize, 9.5f);
    EXPECT_EQ(styles.barTemplate.GetName(), "GanntBar");
    EXPECT_EQ(styles.progressBarTemplate.GetName(), "GanntBar%");
    EXPECT_TRUE(styles.completeBarTemplate.IsNothing());
    EXPECT_EQ(ConnectorTemplateName(), "TaskConnector");
}

}  // namespace
