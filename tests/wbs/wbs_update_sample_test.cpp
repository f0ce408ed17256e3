// The WBS update on the sample project, as its users run it in the middle of move day: numbers
// and roll-ups come out as the workbook already shows them, the one violated link is framed, the
// late tasks are marked, completed rows are grey, and a second run leaves the sheet as it was.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include "core/clock.h"
#include "engine/exports.h"
#include "support/project_json.h"
#include "values/values.h"

namespace {

using testsupport::ProjectJson;

nlohmann::json Sample() {
    const auto path = std::filesystem::path(__FILE__).parent_path().parent_path().parent_path() /
                      "examples" / "sample.json";
    std::ifstream file(path, std::ios::binary);
    return nlohmann::json::parse(file);
}

class SampleUpdate : public ::testing::Test {
  protected:
    SampleUpdate() : sample(Sample()), project(sample) {
        // 6 April 2024 (move day), 12:00.
        PinNow(values::DateSerial(2024, 4, 6) + 0.5);
        project.Bind();
    }
    ~SampleUpdate() override { PinNow(0); }

    std::set<int> RowsWithShape(std::string_view prefix) const {
        std::set<int> rows;
        for (const sheethost::Shape* shape : project.ShapesNamed(prefix)) {
            rows.insert(std::stoi(shape->name.substr(prefix.size())));
        }
        return rows;
    }

    std::int32_t TemplateFill(std::string_view name) const {
        for (const nlohmann::json& sheet : sample["sheets"]) {
            if (sheet["name"] != "Settings") continue;
            for (const nlohmann::json& shape : sheet["shapes"]) {
                if (shape["name"] == name) return shape["fill"]["foreColor"];
            }
        }
        return -1;
    }

    nlohmann::json sample;
    ProjectJson project;
};

TEST_F(SampleUpdate, FormulasAndNumbersComeOutAsTheWorkbookHasThem) {
    kpUpdateWBS();

    const nlohmann::json& cells = sample["sheets"][0]["cells"];
    int formulas = 0;
    for (const auto& [address, cell] : cells.items()) {
        if (cell.is_object() && cell.contains("formula")) {
            EXPECT_EQ(project.Formula(address), cell["formula"]) << address;
            ++formulas;
        }
    }
    EXPECT_EQ(formulas, 11 * 7);
    EXPECT_EQ(project.Text("B5"), "1");
    EXPECT_EQ(project.Text("B17"), "1.3.3");
    EXPECT_EQ(project.Text("B40"), "3.2.4");
    EXPECT_EQ(project.Number("R8"), 105);
    EXPECT_EQ(project.Number("O5"), 900);
    EXPECT_EQ(project.Number("O18"), 1080);
    EXPECT_EQ(project.Number("U5"), 100);
    // Move day's percent: its groups' percentages weighted by their planned values.
    EXPECT_DOUBLE_EQ(
        project.Number("U18"),
        (project.Number("U19") * 480 + project.Number("U23") * 150 + project.Number("U27") * 450) /
            1080);
    EXPECT_TRUE(ProjectJson::Messages().empty());
}

TEST_F(SampleUpdate, MarksTheViolatedLinkTheLateTasksAndTheFinishedRows) {
    kpUpdateWBS();

    // H1 starts at 09:00 on the last day, before G1 ends at 11:00.
    EXPECT_EQ(RowsWithShape("TaskDepandS"), (std::set<int>{37}));
    // In the middle of move day: the drive ran over, unloading and the rack are behind.
    EXPECT_EQ(RowsWithShape("TaskStatus"), (std::set<int>{21, 22, 28}));
    EXPECT_EQ(project.StyleAt("B7").interior.colorIndex, 15);
    EXPECT_EQ(project.StyleAt("B5").interior.colorIndex, 15);
    EXPECT_EQ(project.StyleAt("B18").interior.color, TemplateFill("GanntBar1"));
    EXPECT_EQ(project.StyleAt("B19").interior.color, TemplateFill("GanntBar2"));
    EXPECT_EQ(project.StyleAt("B22").interior.colorIndex, -4142);
}

TEST_F(SampleUpdate, ASecondRunLeavesTheSheetAsTheFirstDid) {
    kpUpdateWBS();
    const std::string first = project.DumpWithoutShapeIds();
    kpUpdateWBS();

    EXPECT_EQ(project.DumpWithoutShapeIds(), first);
    EXPECT_EQ(project.ShapesNamed("").size(), 4u);
}

}  // namespace
