#include <gtest/gtest.h>

#include <random>

#include "package_files.h"
#include "sample_workbook.h"
#include "sheethost/model.h"
#include "xlsx/package.h"
#include "xlsx/xlsx.h"

namespace xlsx::testing {
namespace {

// Loading refuses the file with a message naming the problem, and saving from it writes nothing.
void ExpectRefused(const TempFolder& folder, const std::filesystem::path& file,
                   const std::string& reason) {
    try {
        LoadXlsx(file);
        ADD_FAILURE() << "loaded " << file;
    } catch (const XlsxError& error) {
        EXPECT_NE(std::string(error.what()).find(reason), std::string::npos) << error.what();
    }
    const std::size_t before = folder.FileCount();
    sheethost::Workbook book;
    book.sheets.push_back(std::make_shared<sheethost::Sheet>());
    book.sheets[0]->name = "Sheet1";
    EXPECT_THROW(SaveXlsx(book, file, folder / "out.xlsx"), XlsxError);
    EXPECT_EQ(folder.FileCount(), before) << "output or temporary file left behind";
}

TEST(BadFiles, AreRefusedWithoutOutput) {
    TempFolder folder;
    std::mt19937 random(7);
    std::string noise(4096, '\0');
    for (char& byte : noise) byte = static_cast<char>(random());
    noise[0] = 'x';
    WriteFile(folder / "noise.xlsx", noise);
    ExpectRefused(folder, folder / "noise.xlsx", "not a workbook package");

    WriteFile(folder / "locked.xlsx", std::string("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8) + noise);
    ExpectRefused(folder, folder / "locked.xlsx", "encrypted");

    WriteZip(folder / "whole.xlsm", SampleWorkbook());
    const std::string whole = ReadFile(folder / "whole.xlsm");
    WriteFile(folder / "truncated.xlsm", whole.substr(0, whole.size() / 2));
    ExpectRefused(folder, folder / "truncated.xlsm", "corrupt");

    WriteZip(folder / "other.zip", {{"readme.txt", "hello"}});
    ExpectRefused(folder, folder / "other.zip", "no workbook part");

    Parts broken = SampleWorkbook();
    for (auto& [name, bytes] : broken) {
        if (name == "xl/worksheets/sheet1.xml") bytes = "<worksheet><sheetData>";
    }
    WriteZip(folder / "broken.xlsx", broken);
    ExpectRefused(folder, folder / "broken.xlsx", "sheet1.xml");
}

TEST(BadFiles, ZipBombIsRefused) {
    TempFolder folder;
    Parts bomb = SampleWorkbook();
    bomb.emplace_back("xl/media/padding.bin", std::string(std::size_t{64} << 20, '\0'));
    WriteZip(folder / "bomb.xlsx", bomb);
    bomb.clear();
    ExpectRefused(folder, folder / "bomb.xlsx", "zip bomb");

    // The total counts too, whatever each part's ratio.
    WriteZip(folder / "big.xlsx", SampleWorkbook());
    UnpackLimits small;
    small.maxTotalBytes = 1000;
    EXPECT_THROW(ReadPackage(folder / "big.xlsx", small), XlsxError);
}

TEST(Saving, RefusesToOverwriteTheSourceUnlessAsked) {
    TempFolder folder;
    WriteZip(folder / "plan.xlsm", SampleWorkbook());
    const std::string original = ReadFile(folder / "plan.xlsm");
    auto book = LoadXlsx(folder / "plan.xlsm");
    sheethost::CellAt(*book->sheets[0], 9, 9).value = 99.0;
    EXPECT_THROW(SaveXlsx(*book, folder / "plan.xlsm", folder / "plan.xlsm"), XlsxError);
    EXPECT_EQ(ReadFile(folder / "plan.xlsm"), original);

    SaveXlsx(*book, folder / "plan.xlsm", folder / "plan.xlsm", {.overwriteSource = true});
    EXPECT_EQ(folder.FileCount(), 1u);
    const auto again = LoadXlsx(folder / "plan.xlsm");
    EXPECT_EQ(sheethost::FindCell(*again->sheets[0], 9, 9)->value, sheethost::Value(99.0));
    EXPECT_EQ(ReadPart(folder / "plan.xlsm", "xl/vbaProject.bin"), kMacroBytes);
}

TEST(Saving, IntoAMissingFolderFailsCleanly) {
    TempFolder folder;
    WriteZip(folder / "plan.xlsm", SampleWorkbook());
    auto book = LoadXlsx(folder / "plan.xlsm");
    EXPECT_THROW(SaveXlsx(*book, folder / "plan.xlsm", folder / "missing" / "out.xlsm"), XlsxError);
    EXPECT_EQ(folder.FileCount(), 1u);
}

}  // namespace
}  // namespace xlsx::testing
