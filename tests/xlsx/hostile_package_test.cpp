// Packages made to hurt: deep nesting, numbers at the integer limit, missing and foreign part
// names, texts past the spreadsheet's limits. Each is refused naming the cause, or read and
// written back as a valid package.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <limits>

#include "package_files.h"
#include "sample_workbook.h"
#include "sheethost/model.h"
#include "sheethost/sheethost.h"
#include "xlsx/drawing_anchor.h"
#include "xlsx/drawing_xml.h"
#include "xlsx/xlsx.h"
#include "xlsx/xml.h"

namespace xlsx::testing {
namespace {

// The sample with one part's text changed (`from` must occur in it), or dropped, or added.
Parts Changed(const std::string& part, const std::string& from, const std::string& to) {
    Parts parts = SampleWorkbook();
    for (auto& [name, bytes] : parts) {
        if (name != part) continue;
        const auto at = bytes.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        bytes.replace(at, from.size(), to);
    }
    return parts;
}

std::string WhyRefused(const std::filesystem::path& file) {
    try {
        LoadXlsx(file);
    } catch (const XlsxError& error) {
        return error.what();
    }
    return "loaded";
}

TEST(HostilePackage, DeeplyNestedRichTextIsJoinedWithoutRecursion) {
    TempFolder folder;
    std::string deep;
    for (int k = 0; k < 20000; ++k) deep += "<r>";
    deep += "<t>deep</t>";
    for (int k = 0; k < 20000; ++k) deep += "</r>";
    WriteZip(folder / "deep.xlsx",
             Changed("xl/sharedStrings.xml", "<si><t>Task</t></si>", "<si>" + deep + "</si>"));
    const auto book = LoadXlsx(folder / "deep.xlsx");
    EXPECT_EQ(sheethost::FindCell(*book->sheets[0], 1, 1)->value, sheethost::Value("deep"));
}

TEST(HostilePackage, AnchorsAtTheIntegerLimitStayOnTheSheet) {
    pugi::xml_document document;
    ParseXml(
        document,
        R"(<xdr:twoCellAnchor xmlns:xdr="x"><xdr:from><xdr:col>99999999999999</xdr:col>)"
        R"(<xdr:colOff>0</xdr:colOff><xdr:row>2147483647</xdr:row><xdr:rowOff>0</xdr:rowOff>)"
        R"(</xdr:from><xdr:to><xdr:col>99999999999999</xdr:col><xdr:colOff>0</xdr:colOff>)"
        R"(<xdr:row>2147483647</xdr:row><xdr:rowOff>0</xdr:rowOff></xdr:to></xdr:twoCellAnchor>)",
        "drawing");
    const sheethost::Sheet sheet;
    const SheetGrid grid(sheet);
    const auto anchored = ReadAnchor(document.document_element(), grid);
    ASSERT_TRUE(anchored);
    EXPECT_DOUBLE_EQ(anchored->box.left, grid.Left(sheethost::kMaxColumn));
    EXPECT_DOUBLE_EQ(anchored->box.top, grid.Top(sheethost::kMaxRow));

    // Written back from positions no sheet has, the markers name the last line, never a
    // wrapped negative one, and the sizes stay within what a drawing can hold.
    for (const double far : {1e308, std::numeric_limits<double>::infinity(), 1e12}) {
        pugi::xml_node anchor = document.document_element();
        WriteAnchor(anchor, 1, Box{far, far, far, far}, grid,
                    DrawingPrefixes{"xdr", "a", "r", "c"});
        EXPECT_EQ(Child(Child(anchor, "to"), "col").text().as_llong(), sheethost::kMaxColumn - 1);
        EXPECT_EQ(Child(Child(anchor, "to"), "row").text().as_llong(), sheethost::kMaxRow - 1);
    }
    EXPECT_EQ(PointsToEmu(1e308), static_cast<std::int64_t>(kMaxCoordinateEmu));
    EXPECT_EQ(PointsToEmu(-1e308), -static_cast<std::int64_t>(kMaxCoordinateEmu));
    EXPECT_EQ(PointsToEmu(std::nan("")), 0);
}

TEST(HostilePackage, SheetNumbersAtTheIntegerLimitNeitherWrapNorClash) {
    TempFolder folder;
    // A row numbered with the largest int, then one that follows it without a number; a rule the
    // host does not model at the largest priority.
    Parts parts = Changed("xl/worksheets/sheet1.xml", R"(<row r="7" s="3" customFormat="1"/>)",
                          R"(<row r="2147483647"/><row><c><v>99</v></c></row>)");
    for (auto& [name, bytes] : parts) {
        if (name != "xl/worksheets/sheet1.xml") continue;
        bytes.insert(bytes.find("</sheetData>") + 12,
                     R"(<conditionalFormatting sqref="A1"><cfRule type="dataBar" priority=")"
                     R"(2147483647"><dataBar><cfvo type="min"/><cfvo type="max"/>)"
                     R"(<color rgb="FF638EC6"/></dataBar></cfRule></conditionalFormatting>)");
    }
    WriteZip(folder / "plan.xlsm", parts);
    const auto book = LoadXlsx(folder / "plan.xlsm");
    for (const auto& [at, cell] : book->sheets[0]->cells) EXPECT_LT(at.row, 7);

    // A rule of the host's is written after the kept one.
    sheethost::CellAt(*book->sheets[0], 2, 2).style.Edit().conditions = {
        {sheethost::xl::kCellValue, sheethost::xl::kLess, "=0", "", 3, std::nullopt}};
    SaveXlsx(*book, folder / "plan.xlsm", folder / "saved.xlsm");
    const std::string xml = ReadPart(folder / "saved.xlsm", "xl/worksheets/sheet1.xml");
    const auto cellIs = xml.find(R"(type="cellIs")");
    ASSERT_NE(cellIs, std::string::npos) << xml;
    EXPECT_EQ(xml.substr(xml.find("priority=", cellIs), 21), R"(priority="2147483647")");
    EXPECT_EQ(LoadXlsx(folder / "saved.xlsm")->sheets[0]->cells.size(),
              book->sheets[0]->cells.size());
}

TEST(HostilePackage, AMissingWorksheetPartIsRefusedAndAnAbsoluteNameIsRead) {
    TempFolder folder;
    Parts parts = SampleWorkbook();
    std::erase_if(parts, [](const auto& part) { return part.first == "xl/worksheets/sheet2.xml"; });
    WriteZip(folder / "missing.xlsx", parts);
    EXPECT_EQ(WhyRefused(folder / "missing.xlsx"),
              "the workbook is corrupt: the part xl/worksheets/sheet2.xml of the sheet "
              "\"Settings\" is missing");

    // The sample names sheet2 by an absolute part name; name sheet1 so too.
    WriteZip(folder / "absolute.xlsx",
             Changed("xl/_rels/workbook.xml.rels", R"(Target="worksheets/sheet1.xml")",
                     R"(Target="/xl/worksheets/sheet1.xml")"));
    const auto book = LoadXlsx(folder / "absolute.xlsx");
    ASSERT_EQ(book->sheets.size(), 2u);
    EXPECT_EQ(book->sheets[1]->name, "Settings");
}

TEST(HostilePackage, PartNamesThatLeadOutOfThePackageAreRefused) {
    TempFolder folder;
    for (const char* name : {"../../x.txt", "C:\\win\\z", "/etc/passwd", "xl/./a.xml", "xl//a"}) {
        Parts parts = SampleWorkbook();
        parts.emplace_back(name, "evil");
        WriteZip(folder / "evil.xlsx", parts);
        EXPECT_NE(WhyRefused(folder / "evil.xlsx").find("is not the name of a part"),
                  std::string::npos)
            << name;
        // Nothing is written from it either.
        auto book = sheethost::NewWorkbook();
        EXPECT_THROW(SaveXlsx(*book, folder / "evil.xlsx", folder / "out.xlsx"), XlsxError);
        EXPECT_FALSE(std::filesystem::exists(folder / "out.xlsx"));
    }
}

TEST(HostilePackage, ABrokenContentTypesPartIsAFaultOfTheInput) {
    TempFolder folder;
    WriteZip(folder / "types.xlsx", Changed("[Content_Types].xml", "</Types>", "<Types"));
    EXPECT_NE(WhyRefused(folder / "types.xlsx").find("[Content_Types].xml is not well-formed"),
              std::string::npos);
}

TEST(HostilePackage, TextsPastTheLimitsAreRefusedNamingTheCell) {
    TempFolder folder;
    WriteZip(folder / "long.xlsx", Changed("xl/worksheets/sheet1.xml", "<t>inline</t>",
                                           "<t>" + std::string(32768, 'x') + "</t>"));
    EXPECT_EQ(WhyRefused(folder / "long.xlsx"),
              "the workbook is corrupt: cell C1 of the sheet \"WBS\" holds more than 32,767 "
              "characters");
    WriteZip(folder / "name.xlsx",
             Changed("xl/workbook.xml", R"(name="WBS")", "name=\"" + std::string(32, 'W') + "\""));
    EXPECT_NE(WhyRefused(folder / "name.xlsx").find("is not a sheet name"), std::string::npos);
}

TEST(HostilePackage, WhatIsWrittenIsWellFormedWhateverTheTextsAndNumbers) {
    TempFolder folder;
    WriteZip(folder / "plan.xlsm", SampleWorkbook());
    auto book = LoadXlsx(folder / "plan.xlsm");
    // Bytes that are no UTF-8, a control XML forbids, and a zoom no window shows.
    sheethost::CellAt(*book->sheets[0], 9, 1).value = std::string("Fr\xFF\xFEom\x01!");
    book->sheets[0]->zoom = 100000;
    SaveXlsx(*book, folder / "plan.xlsm", folder / "out.xlsm");
    const std::string sheet = ReadPart(folder / "out.xlsm", "xl/worksheets/sheet1.xml");
    EXPECT_NE(sheet.find("Fr\xEF\xBF\xBD\xEF\xBF\xBDom!"), std::string::npos);
    EXPECT_EQ(sheet.find("&#1;"), std::string::npos);
    EXPECT_NE(sheet.find(R"(zoomScale="400")"), std::string::npos);
    EXPECT_EQ(
        WellFormedText("a\xC0\xAF\xED\xA0\x80\xEF\xBF\xBE\tb"),
        "a\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"
        "\xEF\xBF\xBD\tb");
}

TEST(HostilePackage, RowsAreWrittenInTheirPlaceWhateverThePartAndTheCellsHold) {
    TempFolder folder;
    // An instruction in the part is not kept; the writer marks the rows' place with one.
    WriteZip(folder / "plan.xlsm",
             Changed("xl/worksheets/sheet1.xml", "<pageMargins", "<?rows?><pageMargins"));
    auto book = LoadXlsx(folder / "plan.xlsm");
    sheethost::Sheet& sheet = *book->sheets[0];
    sheethost::CellAt(sheet, 9, 1).value = std::string("<?rows?> & </sheetData>");
    sheethost::CellAt(sheet, 9, 2).formula = R"(=IF(A2<3,"<&>",""))";
    SaveXlsx(*book, folder / "plan.xlsm", folder / "out.xlsm");
    const std::string part = ReadPart(folder / "out.xlsm", "xl/worksheets/sheet1.xml");
    EXPECT_EQ(part.find("<?rows"), std::string::npos);

    const auto again = LoadXlsx(folder / "out.xlsm");
    const sheethost::Sheet& read = *again->sheets[0];
    EXPECT_EQ(read.cells.at({9, 1}).value,
              sheethost::Value(std::string("<?rows?> & </sheetData>")));
    EXPECT_EQ(read.cells.at({9, 2}).formula, R"(=IF(A2<3,"<&>",""))");
    EXPECT_EQ(read.cells.at({3, 1}).formula, "=A2*2+$A$2");
    EXPECT_TRUE(read.rows.at(2).hidden);
    EXPECT_EQ(read.rows.at(1).height, 30);
}

TEST(HostilePackage, OnlyRegularFilesAreOpenedAndWritesNeverFollowAPlantedLink) {
    TempFolder folder;
    ASSERT_EQ(mkfifo((folder / "pipe.xlsx").c_str(), 0600), 0);
    EXPECT_NE(WhyRefused(folder / "pipe.xlsx").find("is not a regular file"), std::string::npos);

    WriteFile(folder / "victim.txt", "keep me");
    std::filesystem::create_symlink(folder / "victim.txt", folder / "out.json");
    WriteFileAtomically("{}", folder / "out.json");
    EXPECT_EQ(ReadFile(folder / "victim.txt"), "keep me");
    EXPECT_EQ(ReadFile(folder / "out.json"), "{}");
    EXPECT_EQ(folder.FileCount(), 3u);
}

}  // namespace
}  // namespace xlsx::testing
