// The workbook's content type follows the file it is saved as, and macros are never dropped by
// saving a macro workbook under a name that cannot hold them.
#include <gtest/gtest.h>

#include "package_files.h"
#include "sample_workbook.h"
#include "sheethost/sheethost.h"
#include "xlsx/xlsx.h"

namespace xlsx::testing {
namespace {

constexpr const char* kMacroType = "application/vnd.ms-excel.sheet.macroEnabled.main+xml";
constexpr const char* kPlainType =
    "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml";

// The content type [Content_Types].xml gives the workbook part.
std::string WorkbookType(const std::filesystem::path& file) {
    const std::string types = ReadPart(file, "[Content_Types].xml");
    const auto at = types.find("PartName=\"/xl/workbook.xml\"");
    if (at == std::string::npos) return {};
    const auto begin = types.find("ContentType=\"", at) + 13;
    return types.substr(begin, types.find('"', begin) - begin);
}

TEST(WorkbookContentType, FollowsTheFileNameWhetherNewOrConverted) {
    TempFolder folder;
    const auto book = sheethost::NewWorkbook();
    SaveXlsx(*book, {}, folder / "new.xlsm");
    SaveXlsx(*book, {}, folder / "new.xlsx");
    SaveXlsx(*book, {}, folder / "upper.XLSM");
    EXPECT_EQ(WorkbookType(folder / "new.xlsm"), kMacroType);
    EXPECT_EQ(WorkbookType(folder / "new.xlsx"), kPlainType);
    EXPECT_EQ(WorkbookType(folder / "upper.XLSM"), kMacroType);

    // A workbook without macros may move between the two kinds both ways.
    SaveXlsx(*LoadXlsx(folder / "new.xlsm"), folder / "new.xlsm", folder / "back.xlsx");
    EXPECT_EQ(WorkbookType(folder / "back.xlsx"), kPlainType);
    SaveXlsx(*LoadXlsx(folder / "back.xlsx"), folder / "back.xlsx", folder / "again.xlsm");
    EXPECT_EQ(WorkbookType(folder / "again.xlsm"), kMacroType);
}

TEST(WorkbookContentType, AMacroWorkbookIsNotSavedWhereItsMacrosWouldBeLost) {
    TempFolder folder;
    WriteZip(folder / "plan.xlsm", SampleWorkbook());
    const auto book = LoadXlsx(folder / "plan.xlsm");
    try {
        SaveXlsx(*book, folder / "plan.xlsm", folder / "plan.xlsx");
        ADD_FAILURE() << "saved without its macros";
    } catch (const XlsxError& error) {
        EXPECT_NE(std::string(error.what()).find("macros, which would be lost"), std::string::npos)
            << error.what();
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "plan.xlsx"));

    SaveXlsx(*book, folder / "plan.xlsm", folder / "copy.xlsm");
    EXPECT_EQ(WorkbookType(folder / "copy.xlsm"), kMacroType);
    EXPECT_EQ(ReadPart(folder / "copy.xlsm", "xl/vbaProject.bin"),
              ReadPart(folder / "plan.xlsm", "xl/vbaProject.bin"));
}

}  // namespace
}  // namespace xlsx::testing
