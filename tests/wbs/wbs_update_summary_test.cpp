// The update pass on a purpose-built project: WBS numbers, work in minutes, frozen rows, the
// resource messages and the summary roll-ups, checked as formula texts and as the values the
// sheet then shows.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/engine_state.h"
#include "engine/exports.h"
#include "settings/settings.h"
#include "sheethost/dispatch_object.h"
#include "support/project_json.h"
#include "support/times_of_day.h"
#include "wbs/task_table.h"
#include "wbs/wbs_update.h"

namespace {

using testsupport::k0800;
using testsupport::k0900;
using testsupport::k1100;
using testsupport::k1200;
using testsupport::k1400;
using testsupport::k1500;

using testsupport::ProjectJson;
using testsupport::ShownMessage;

// Build (12) > Design (13) > Sketch (14); Build > Code (15); Test (16) > Review (17), Sync (18).
class SummaryProject : public ::testing::Test {
  protected:
    SummaryProject() {
        project.Task(12, 1, "Build");
        project.Task(13, 2, "Design");
        // Its planned minutes as an earlier update left them: the status colouring reads the row
        // before the pass writes them, so a first run would otherwise see no planned value.
        project.Task(14, 3, "Sketch",
                     {{"C", "AL"}, {"P", k0900}, {"D", k1100}, {"F", 120}, {"J", 50}});
        // An empty resource cell, and an actual span: AC and 100 percent are written.
        project.Task(15, 2, "Code", {{"P", k1200}, {"D", k1500}, {"E", k1200}, {"X", k1400}});
        project.Task(16, 1, "Test");
        // A leaf that used to be a summary: its formula is turned into the value it showed.
        project.Task(17, 2, "Review",
                     {{"C", "Carol"}, {"F", nlohmann::json{{"formula", "=10*6"}}}});
        // A recurring task names its cycle in the resource cell and gets no resource message.
        project.Task(18, 2, "Sync", {{"C", "W2"}, {"P", k0800}, {"D", k0900}});
        project.Bind();
    }

    ProjectJson project;
};

TEST_F(SummaryProject, WritesNumbersMinutesAndFreezesFormerSummaries) {
    kpUpdateWBS();

    EXPECT_EQ(project.Text("A12"), "1");
    EXPECT_EQ(project.Text("A13"), "1.1");
    EXPECT_EQ(project.Text("A14"), "1.1.1");
    EXPECT_EQ(project.Text("A15"), "1.2");
    EXPECT_EQ(project.Text("A16"), "2");
    EXPECT_EQ(project.Text("A18"), "2.2");
    // Plain clock minutes from start to end.
    EXPECT_EQ(project.Number("F14"), 120);
    EXPECT_EQ(project.Number("F15"), 180);
    EXPECT_EQ(project.Number("G15"), 120);
    EXPECT_EQ(project.Number("J15"), 100);
    // No actual span on row 14: its AC and percent are left alone.
    EXPECT_EQ(project.Text("G14"), "");
    EXPECT_EQ(project.Number("J14"), 50);
    // The second group's tasks are read on the second calendar day: still 60 minutes.
    EXPECT_EQ(project.Number("F18"), 60);

    EXPECT_EQ(project.Formula("F17"), "");
    EXPECT_EQ(project.Number("F17"), 60);
}

TEST_F(SummaryProject, ResourceMessagesComeOneAFindingInSheetOrder) {
    kpUpdateWBS();

    const std::vector<ShownMessage> expected = {
        {"Please specify resource for task '1.2Code'", MB_ICONINFORMATION},
        {"Can not get Carol's information from 'Resources' sheet.", MB_ICONWARNING},
    };
    EXPECT_EQ(ProjectJson::Messages(), expected);
}

TEST_F(SummaryProject, SummaryFormulasAreWrittenExactly) {
    kpUpdateWBS();

    EXPECT_EQ(project.Formula("P12"), "=IF(MIN(P13,P15)=0,\"\",MIN(P13,P15))");
    EXPECT_EQ(project.Formula("D12"), "=IF(MAX(D13,D15)=0,\"\",MAX(D13,D15))");
    EXPECT_EQ(project.Formula("E12"), "=IF(MIN(E13,E15)=0,\"\",MIN(E13,E15))");
    EXPECT_EQ(project.Formula("X12"), "=IF(OR(X13=\"\",X15=\"\"),\"\",MAX(X13,X15))");
    EXPECT_EQ(project.Formula("F12"), "=IF(SUM(F13,F15)=0,\"\",SUM(F13,F15))");
    EXPECT_EQ(project.Formula("G12"), "=IF(SUM(G13,G15)=0,\"\",SUM(G13,G15))");
    EXPECT_EQ(project.Formula("J12"), "=IF(N(F12)=0,\"\",SUM(N(J13)*N(F13),N(J15)*N(F15))/F12)");
    // The deeper summary is rolled up from its own children.
    EXPECT_EQ(project.Formula("P13"), "=IF(MIN(P14)=0,\"\",MIN(P14))");
    EXPECT_EQ(project.Formula("J13"), "=IF(N(F13)=0,\"\",SUM(N(J14)*N(F14))/F13)");
    EXPECT_EQ(project.Formula("J16"), "=IF(N(F16)=0,\"\",SUM(N(J17)*N(F17),N(J18)*N(F18))/F16)");
    // Ordinary tasks get no formulas.
    EXPECT_EQ(project.Formula("P14"), "");
}

TEST_F(SummaryProject, SummaryValuesRollTheChildrenUp) {
    kpUpdateWBS();

    // Earliest start and latest end of the children, through the nested summary.
    EXPECT_DOUBLE_EQ(project.Number("P12"), k0900);
    EXPECT_DOUBLE_EQ(project.Number("D12"), k1500);
    EXPECT_DOUBLE_EQ(project.Number("E12"), k1200);
    EXPECT_EQ(project.Number("F12"), 300);
    EXPECT_EQ(project.Number("G12"), 120);
    // Percent weighted by planned value: (50 * 120 + 100 * 180) / 300.
    EXPECT_DOUBLE_EQ(project.Number("J12"), 80);
    EXPECT_DOUBLE_EQ(project.Number("J13"), 50);
    // Sketch has no actual end yet, so neither Design nor Build has one.
    EXPECT_EQ(project.Text("X13"), "");
    EXPECT_EQ(project.Text("X12"), "");
}

TEST_F(SummaryProject, ASummaryWithoutChildrenGetsFormulasOverNoCells) {
    kpUpdateWBS();
    std::vector<std::string> log;
    sheethost::SetMemberLog(&log);
    WriteSummaryFormulas(*Tasks_ByRow(16), "");
    sheethost::SetMemberLog(nullptr);

    // The spreadsheet refuses functions without arguments, so what counts is what was sent.
    std::vector<std::string> sent;
    const std::string put = "Range.Formula=\"";
    for (const std::string& entry : log) {
        if (entry.starts_with(put)) {
            sent.push_back(entry.substr(put.size(), entry.rfind('"') - put.size()));
        }
    }
    const std::vector<std::string> expected = {
        "=IF(MIN()=0,\"\",MIN())",     "=IF(MAX()=0,\"\",MAX())", "=IF(MIN()=0,\"\",MIN())",
        "=IF(OR(),\"\",MAX())",        "=IF(SUM()=0,\"\",SUM())", "=IF(SUM()=0,\"\",SUM())",
        "=IF(N(F16)=0,\"\",SUM()/F16)"};
    EXPECT_EQ(sent, expected);
}

TEST_F(SummaryProject, ASecondRunChangesNothing) {
    kpUpdateWBS();
    const std::string first = project.DumpWithoutShapeIds();
    ProjectJson::Messages().clear();
    kpUpdateWBS();

    EXPECT_EQ(project.DumpWithoutShapeIds(), first);
    EXPECT_EQ(ProjectJson::Messages().size(), 2u);
}

TEST(FormulaWrappers, WrapAnExpression) {
    EXPECT_EQ(IfZeroEmpty("SUM(A1,A2)"), "IF(SUM(A1,A2)=0,\"\",SUM(A1,A2))");
    EXPECT_EQ(IfErrorThen("E3/D3", "\"\""), "IF(ISERROR(E3/D3),\"\",E3/D3)");
}

TEST(UpdateWbsHiddenRows, HiddenRowsAreTakenOverAndHiddenAgain) {
    ProjectJson project;
    project.Task(12, 1, "Build");
    project.Task(13, 2, "Design", {{"C", "AL"}});
    project.Task(14, 2, "Code", {{"C", "AL"}});
    project.Task(15, 2, "Test", {{"C", "AL"}});
    project.HideRow(14);
    project.Bind();

    kpUpdateWBS();

    EXPECT_EQ(EngineSettings().filterRows, ",12,,13,,15,");
    EXPECT_FALSE(project.RowHidden(13));
    EXPECT_TRUE(project.RowHidden(14));
    EXPECT_FALSE(project.RowHidden(15));
    // The hidden row was written like the others.
    EXPECT_EQ(project.Text("A14"), "1.2");
}

TEST(UpdateWbsHiddenRows, NoHiddenRowLeavesNoFilter) {
    ProjectJson project;
    project.Task(12, 1, "Build", {{"C", "AL"}});
    project.Bind();
    EngineSettings().filterRows = ",12,";

    kpUpdateWBS();

    EXPECT_EQ(EngineSettings().filterRows, "");
    EXPECT_FALSE(project.RowHidden(12));
}

}  // namespace
