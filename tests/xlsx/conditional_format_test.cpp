// Conditional formats through a save and a load, and rules of other kinds left alone.
#include <gtest/gtest.h>

#include "package_files.h"
#include "sample_workbook.h"
#include "sheethost/model.h"
#include "sheethost/sheethost.h"
#include "xlsx/xlsx.h"

namespace xlsx::testing {
namespace {

namespace xl = sheethost::xl;
using sheethost::FormatCondition;

std::vector<FormatCondition> ConditionsAt(const sheethost::Sheet& sheet, int row, int column) {
    return sheethost::EffectiveStyle(sheet, row, column)->conditions;
}

TEST(ConditionalFormats, RedBelowThresholdAndRowRulesSurviveASaveAndALoad) {
    TempFolder folder;
    auto book = sheethost::NewWorkbook();
    sheethost::Sheet& sheet = *book->sheets[0];
    const FormatCondition lessThanRed{xl::kCellValue, xl::kLess, "=0.0", "", 3, std::nullopt};
    const FormatCondition between{xl::kCellValue, xl::kBetween, "=1", "=$B$1", std::nullopt, 6};
    const FormatCondition expression{xl::kExpression, xl::kBetween, "=$A12>0", "", 5, 35};
    for (int row = 3; row <= 9; ++row) {
        for (int column = 3; column <= 12; ++column) {
            sheethost::CellAt(sheet, row, column).style.Edit().conditions = {lessThanRed};
        }
    }
    sheethost::CellAt(sheet, 9, 13).style.Edit().conditions = {lessThanRed, between};
    sheethost::Style withExpression;
    withExpression.conditions = {expression};
    sheet.rows[12].style = withExpression;
    SaveXlsx(*book, {}, folder / "report.xlsx");

    const std::string xml = ReadPart(folder / "report.xlsx", "xl/worksheets/sheet1.xml");
    EXPECT_NE(xml.find(R"(sqref="C3:L9")"), std::string::npos) << xml;
    const auto loaded = LoadXlsx(folder / "report.xlsx");
    const sheethost::Sheet& read = *loaded->sheets[0];
    EXPECT_EQ(ConditionsAt(read, 3, 3), std::vector{lessThanRed});
    EXPECT_EQ(ConditionsAt(read, 9, 12), std::vector{lessThanRed});
    EXPECT_EQ(ConditionsAt(read, 9, 13), (std::vector{lessThanRed, between}));
    EXPECT_EQ(ConditionsAt(read, 12, 200), std::vector{expression});
    EXPECT_TRUE(ConditionsAt(read, 10, 3).empty());
}

TEST(ConditionalFormats, RulesOfOtherKindsStayWhenTheHostsRulesAreDeleted) {
    TempFolder folder;
    Parts parts = SampleWorkbook();
    for (auto& [name, bytes] : parts) {
        if (name != "xl/worksheets/sheet1.xml") continue;
        const std::string rules =
            R"(<conditionalFormatting sqref="A1:A5"><cfRule type="colorScale" priority="2"><colorScale>)"
            R"(<cfvo type="min"/><cfvo type="max"/><color rgb="FFF8696B"/><color rgb="FF63BE7B"/></colorScale>)"
            R"(</cfRule></conditionalFormatting><conditionalFormatting sqref="B2:B3">)"
            R"(<cfRule type="cellIs" priority="1" operator="lessThan"><formula>1.0</formula></cfRule>)"
            R"(</conditionalFormatting>)";
        bytes.insert(bytes.find("</sheetData>") + 12, rules);
    }
    WriteZip(folder / "plan.xlsm", parts);
    const auto book = LoadXlsx(folder / "plan.xlsm");
    sheethost::Sheet& sheet = *book->sheets[0];
    ASSERT_EQ(ConditionsAt(sheet, 2, 2).size(), 1u);
    EXPECT_EQ(ConditionsAt(sheet, 2, 2)[0].formula1, "=1.0");
    EXPECT_EQ(ConditionsAt(sheet, 2, 2)[0].comparison, xl::kLess);
    sheethost::CellAt(sheet, 2, 2).style.Edit().conditions.clear();
    sheethost::CellAt(sheet, 3, 2).style.Edit().conditions.clear();
    SaveXlsx(*book, folder / "plan.xlsm", folder / "saved.xlsm");

    const std::string xml = ReadPart(folder / "saved.xlsm", "xl/worksheets/sheet1.xml");
    EXPECT_NE(xml.find("colorScale"), std::string::npos);
    EXPECT_EQ(xml.find("cellIs"), std::string::npos);
}

}  // namespace
}  // namespace xlsx::testing
