// The task sheet completed as the user types, on the sample project (auto-update on, task rows
// 5..40, bordered rows down to 44, percent U, actual start S, actual end T, predecessors V).
#include "wbs/sheet_events.h"

#include <gtest/gtest.h>

#include <string>

#include "core/clock.h"
#include "core/engine_state.h"
#include "engine/exports.h"
#include "settings/settings.h"
#include "sheethost/address.h"
#include "sheethost/cell_values.h"
#include "support/project_json.h"
#include "support/sample_json.h"
#include "values/values.h"
#include "wbs/visible_rows.h"

namespace {

using testsupport::ProjectJson;

double TimeOf(int hour, int minute) {
    return values::TimeSerial(hour, minute, 0);
}

class SheetEvents : public ::testing::Test {
  protected:
    explicit SheetEvents(nlohmann::json sample = testsupport::SampleJson())
        : project(std::move(sample)) {}

    void SetUp() override {
        PinNow(values::DateSerial(2024, 4, 6) + 0.5);
        project.Bind();
        kpUpdateWBS();
        kpDrawGanntChart(0);
        ProjectJson::Messages().clear();
    }
    void TearDown() override { PinNow(0); }

    // What the user does: the text typed into the cells, then the sheet's change event.
    void Type(const std::string& cells, const std::string& text) {
        const auto area = *sheethost::ParseArea(cells);
        for (int row = area.top; row <= area.bottom; ++row) {
            for (int column = area.left; column <= area.right; ++column) {
                sheethost::TypeIntoCell(project.Host("WBS"), row, column, text);
            }
        }
        Changed(cells);
    }
    void Changed(const std::string& cells) { OnSheetChange(EngineWbsSheet().RangeOf(cells)); }

    double TimeAt(const std::string& cell) const {
        const double value = project.Number(cell);
        return value - values::Fix(value);
    }
    std::int64_t ShapeId(const std::string& name) const {
        const sheethost::Shape* shape = project.ShapeNamed(name);
        return shape != nullptr ? shape->id : -1;
    }
    // A filter in force that shows only rows 5 and 6.
    void FilterToFirstRows() {
        EngineSettings().filterRows = ",5,,6,";
        ApplyVisibleRows(EngineSettings().filterRows);
    }

    ProjectJson project;
};

TEST_F(SheetEvents, PercentOfHundredOrMoreCompletesTheTaskAsPlanned) {
    // D3 (row 22) has not started: planned 11:00 to 15:00.
    Type("U22", "100");
    EXPECT_DOUBLE_EQ(TimeAt("S22"), TimeOf(11, 0));
    EXPECT_DOUBLE_EQ(TimeAt("T22"), TimeOf(15, 0));
    EXPECT_EQ(project.Text("U22"), "100");
    // Above 100 the same, and the percent is written back as 100.
    Type("U25", "150");
    EXPECT_DOUBLE_EQ(TimeAt("S25"), TimeOf(15, 0));
    EXPECT_DOUBLE_EQ(TimeAt("T25"), TimeOf(16, 0));
    EXPECT_EQ(project.Text("U25"), "100");
    // Actual times already there are kept: D1 (row 20) ended at 10:30, not at its planned 10:00.
    Type("U20", "100");
    EXPECT_DOUBLE_EQ(TimeAt("T20"), TimeOf(10, 30));
}

TEST_F(SheetEvents, PercentBetweenReopensAndZeroOrLessClearsTheActualTimes) {
    // D1 (row 20) is complete, 07:00 to 10:30: half done keeps the start and drops the end.
    Type("U20", "50");
    EXPECT_DOUBLE_EQ(TimeAt("S20"), TimeOf(7, 0));
    EXPECT_EQ(project.Text("T20"), "");
    // D3 (row 22) has no start: half done starts it as planned.
    Type("U22", "50");
    EXPECT_DOUBLE_EQ(TimeAt("S22"), TimeOf(11, 0));
    EXPECT_EQ(project.Text("T22"), "");
    for (const char* typed : {"0", "-5"}) {
        Type("U22", "100");
        Type("U22", typed);
        EXPECT_EQ(project.Text("S22"), "") << typed;
        EXPECT_EQ(project.Text("T22"), "") << typed;
        // The typed value itself stays.
        EXPECT_EQ(project.Text("U22"), typed);
    }
}

TEST_F(SheetEvents, ActualTimesSetThePercent) {
    // Clearing the end of a started task leaves it 20 % done.
    Type("T20", "");
    EXPECT_EQ(project.Text("U20"), "20");
    EXPECT_DOUBLE_EQ(TimeAt("S20"), TimeOf(7, 0));
    // An end typed for a task without a start completes it from its planned start.
    Type("T22", "14:00");
    EXPECT_EQ(project.Text("U22"), "100");
    EXPECT_DOUBLE_EQ(TimeAt("S22"), TimeOf(11, 0));
    // Clearing the start clears the end and the percent.
    Type("S22", "");
    EXPECT_EQ(project.Text("T22"), "");
    EXPECT_EQ(project.Text("U22"), "");
    // A start typed into a task with no percent and no actual work makes it 20 % done (with actual
    // work, as row 22 now has, the end follows and completes it).
    Type("S25", "15:10");
    EXPECT_EQ(project.Text("U25"), "20");
    Type("S22", "11:30");
    EXPECT_EQ(project.Text("U22"), "100");
}

TEST_F(SheetEvents, EndsFollowFromStartAndWork) {
    // Planned work of D3 (row 22) changed to 90 minutes: it now ends at 12:30.
    Type("O22", "90");
    EXPECT_DOUBLE_EQ(TimeAt("Q22"), TimeOf(12, 30));
    // An actual start with actual work gives the actual end and completes the task.
    Type("R22", "30");
    EXPECT_EQ(project.Text("T22"), "");
    Type("S22", "11:10");
    EXPECT_DOUBLE_EQ(TimeAt("T22"), TimeOf(11, 40));
    EXPECT_EQ(project.Text("U22"), "100");
}

TEST_F(SheetEvents, PredecessorEditRedrawsOnlyTheConnectors) {
    const std::int64_t bar = ShapeId("GanntBar30A");
    ASSERT_GT(bar, 0);
    ASSERT_EQ(project.ShapesNamed("TaskConnector30").size(), 1u);
    Type("V30", "N1,D3");
    EXPECT_EQ(ShapeId("GanntBar30A"), bar);
    EXPECT_EQ(project.ShapesNamed("TaskConnector30").size(), 2u);
    // Any other cell redraws the task's branch.
    Type("O30", "120");
    EXPECT_NE(ShapeId("GanntBar30A"), bar);
    EXPECT_NE(ShapeId("GanntBar30A"), -1);
}

TEST_F(SheetEvents, EditsOutsideTheTableChangeNothing) {
    FilterToFirstRows();
    for (const char* cell : {"P45", "W22", "A22"}) {
        const auto area = *sheethost::ParseArea(cell);
        sheethost::TypeIntoCell(project.Host("WBS"), area.top, area.left, "99");
    }
    const std::string before = project.DumpWithoutShapeIds();
    // Below the last bordered row, right of the task columns, left of them.
    for (const char* cell : {"P45", "W22", "A22"}) Changed(cell);
    EXPECT_EQ(project.DumpWithoutShapeIds(), before);
    EXPECT_TRUE(project.RowHidden(22));
}

TEST_F(SheetEvents, AutoUpdateOffIgnoresEveryChange) {
    EngineSettings().autoUpdateMode = 0;
    sheethost::TypeIntoCell(project.Host("WBS"), 22, 21, "100");
    const std::string before = project.DumpWithoutShapeIds();
    Changed("U22");
    EXPECT_EQ(project.DumpWithoutShapeIds(), before);
}

TEST_F(SheetEvents, ADeletionThatPulledATaskUpOnlyLaysTheFilterAgain) {
    FilterToFirstRows();
    ApplyVisibleRows("");
    // The cells of row 25 deleted, the rows below moving up: row 25 holds a task again.
    EngineWbsSheet().RangeOf("25:25").Delete();
    const std::string before = project.DumpWithoutShapeIds();
    Changed("B25:V25");
    EXPECT_TRUE(project.RowHidden(22));
    ApplyVisibleRows("");
    EXPECT_EQ(project.DumpWithoutShapeIds(), before);
}

TEST_F(SheetEvents, ClearedLastTaskTakesItsShapesAndLeavesTheFilterLifted) {
    FilterToFirstRows();
    ASSERT_NE(project.ShapeNamed("GanntBar40A"), nullptr);
    Type("B40:V40", "");
    EXPECT_EQ(project.ShapesNamed("GanntBar40").size(), 0u);
    EXPECT_EQ(project.ShapeNamed("TaskStatus40"), nullptr);
    EXPECT_EQ(project.Text("P40"), "");
    EXPECT_FALSE(project.RowHidden(22));
    // The task above is now the last one and keeps its line.
    EXPECT_NE(project.ShapeNamed("GanntBar39A"), nullptr);
}

TEST_F(SheetEvents, AnEditOnARowWithoutATaskLeavesHiddenRowsVisible) {
    FilterToFirstRows();
    ASSERT_TRUE(project.RowHidden(22));
    // Row 42 is bordered but holds no task; the edit changes no count.
    Type("P42", "9:00");
    EXPECT_FALSE(project.RowHidden(22));
    EXPECT_EQ(project.Text("Q42"), "");
}

TEST_F(SheetEvents, ATaskTypedBelowTheLastOneWithoutAResourceIsToldSo) {
    // The last task (row 40) names the cycle code W4, which is no resource.
    Type("E41", "Hang pictures");
    ASSERT_EQ(ProjectJson::Messages().size(), 1u);
    EXPECT_EQ(ProjectJson::Messages()[0].text, "Please input resource information first!");
    EXPECT_EQ(ProjectJson::Messages()[0].icon, MB_ICONINFORMATION);
    EXPECT_EQ(project.Text("P41"), "");
}

TEST_F(SheetEvents, WholeRowsRenumberTheTasks) {
    // Row 29 (2.3.2) deleted: N3 moves up into it and is numbered again.
    EngineWbsSheet().RangeOf("29:29").Delete();
    EXPECT_EQ(project.Text("B29"), "2.3.3");
    Changed("29:29");
    EXPECT_EQ(project.Text("B29"), "2.3.2");
    EXPECT_NE(project.ShapeNamed("GanntBar29A"), nullptr);
}

nlohmann::json SampleWithLastTaskOf(const char* resource) {
    nlohmann::json sample = testsupport::SampleJson();
    sample["sheets"][0]["cells"]["N40"] = resource;
    return sample;
}

class InsertedRow : public SheetEvents {
  protected:
    InsertedRow() : SheetEvents(SampleWithLastTaskOf("OFFICE")) {}
};

TEST_F(InsertedRow, StartsAtTheLastTaskEndWithOneColumnOfWork) {
    Type("E41", "Hang pictures");
    EXPECT_TRUE(ProjectJson::Messages().empty());
    // The last task ends at 16:30; the chart's unit is 60 minutes.
    EXPECT_NEAR(project.Number("P41"), TimeOf(16, 30), 1e-9);
    EXPECT_NEAR(project.Number("Q41"), TimeOf(17, 30), 1e-9);
    EXPECT_EQ(project.Text("N41"), "OFFICE");
    EXPECT_NE(project.ShapeNamed("GanntBar41A"), nullptr);
}

class SelectionStatus : public SheetEvents {
  protected:
    void Select(const std::string& cells) { OnSelectionChange(EngineWbsSheet().RangeOf(cells)); }
};

TEST_F(SelectionStatus, ChartCellsOfATaskShowTheirTimeSpanAndTheTask) {
    const std::string before = project.DumpWithoutShapeIds();
    // The chart starts in column W at the first calendar day's start, 5 April 08:00, one hour a
    // column: AA to AC stand for 12:00 to 15:00.
    Select("AA21:AC21");
    ASSERT_TRUE(project.Book().statusBar.has_value());
    EXPECT_EQ(*project.Book().statusBar,
              "2.1.2 D2: Drive to Mill Lane | selected 2024/04/05 12:00 - 2024/04/05 15:00 | "
              "planned 2024/04/06 10:00 - 2024/04/06 11:00, 60 min, 80%");
    // Leaving the chart, or a row without a task, gives the status bar back.
    Select("U21");
    EXPECT_FALSE(project.Book().statusBar.has_value());
    Select("AA21");
    Select("AA42");
    EXPECT_FALSE(project.Book().statusBar.has_value());
    EXPECT_EQ(project.DumpWithoutShapeIds(), before);
}

}  // namespace
