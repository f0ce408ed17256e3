// A hand-written macro workbook that exercises what the loader reads and what the saver must keep.
#pragma once

#include <string>

#include "package_files.h"

namespace xlsx::testing {

inline const std::string kMacroBytes = std::string("\xD0\xCF\x11\xE0macro\0code\x01\xFF", 15);

inline Parts SampleWorkbook() {
    const std::string main =
        R"(xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" )"
        R"(xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships")";
    return {
        {"[Content_Types].xml",
         R"(<?xml version="1.0"?><Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">)"
         R"(<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>)"
         R"(<Default Extension="xml" ContentType="application/xml"/>)"
         R"(<Default Extension="bin" ContentType="application/vnd.ms-office.vbaProject"/>)"
         R"(<Override PartName="/xl/workbook.xml" ContentType="application/vnd.ms-excel.sheet.macroEnabled.main+xml"/>)"
         R"(<Override PartName="/xl/worksheets/sheet1.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml"/>)"
         R"(<Override PartName="/xl/worksheets/sheet2.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml"/>)"
         R"(<Override PartName="/xl/calcChain.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.calcChain+xml"/>)"
         R"(</Types>)"},
        {"_rels/.rels",
         R"(<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)"
         R"(<Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument" Target="xl/workbook.xml"/>)"
         R"(<Relationship Id="rId2" Type="http://schemas.microsoft.com/office/2007/relationships/ui/extensibility" Target="customUI/customUI14.xml"/>)"
         R"(</Relationships>)"},
        {"customUI/customUI14.xml",
         R"(<customUI xmlns="http://schemas.microsoft.com/office/2009/07/customui"><ribbon/></customUI>)"},
        {"xl/_rels/workbook.xml.rels",
         R"(<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)"
         R"(<Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/worksheet" Target="worksheets/sheet1.xml"/>)"
         R"(<Relationship Id="rId2" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/worksheet" Target="/xl/worksheets/sheet2.xml"/>)"
         R"(<Relationship Id="rId3" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/styles" Target="styles.xml"/>)"
         R"(<Relationship Id="rId4" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/sharedStrings" Target="sharedStrings.xml"/>)"
         R"(<Relationship Id="rId5" Type="http://schemas.microsoft.com/office/2006/relationships/vbaProject" Target="vbaProject.bin"/>)"
         R"(<Relationship Id="rId6" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/calcChain" Target="calcChain.xml"/>)"
         R"(</Relationships>)"},
        {"xl/workbook.xml",
         "<workbook " + main +
             R"(><workbookPr codeName="ThisWorkbook"/>)"
             R"(<bookViews><workbookView activeTab="1"/></bookViews>)"
             R"(<sheets><sheet name="WBS" sheetId="1" r:id="rId1"/><sheet name="Settings" sheetId="4" r:id="rId2"/></sheets>)"
             R"(<definedNames><definedName name="Start" comment="kept">Settings!$B$1</definedName>)"
             R"(<definedName name="_xlnm.Print_Area" localSheetId="0" hidden="1">WBS!$A$1:$D$9</definedName></definedNames>)"
             R"(<calcPr calcId="191029"/></workbook>)"},
        {"xl/sharedStrings.xml",
         R"(<sst xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" count="2" uniqueCount="2">)"
         R"(<si><t>Task</t></si><si><r><rPr><b/></rPr><t>Rich </t></r><r><t xml:space="preserve">text</t></r></si></sst>)"},
        {"xl/styles.xml",
         R"(<styleSheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main">)"
         R"(<numFmts count="1"><numFmt numFmtId="164" formatCode="yyyy/mm/dd"/></numFmts>)"
         R"(<fonts count="2"><font><sz val="11"/><color theme="1"/><name val="Calibri"/></font>)"
         R"(<font><b/><i val="0"/><sz val="14"/><color rgb="FFFF0000"/><name val="Arial"/></font></fonts>)"
         R"(<fills count="3"><fill><patternFill patternType="none"/></fill><fill><patternFill patternType="gray125"/></fill>)"
         R"(<fill><patternFill patternType="solid"><fgColor rgb="FFFFFF00"/><bgColor indexed="64"/></patternFill></fill></fills>)"
         R"(<borders count="2"><border><left/><right/><top/><bottom/><diagonal/></border>)"
         R"(<border><left style="thin"><color indexed="64"/></left><right/><top/><bottom style="medium"><color rgb="FF0000FF"/></bottom><diagonal/></border></borders>)"
         R"(<cellStyleXfs count="1"><xf numFmtId="0" fontId="0" fillId="0" borderId="0"/></cellStyleXfs>)"
         R"(<cellXfs count="5"><xf numFmtId="0" fontId="0" fillId="0" borderId="0" xfId="0"/>)"
         R"(<xf numFmtId="14" fontId="0" fillId="0" borderId="0" xfId="0" applyNumberFormat="1"/>)"
         R"(<xf numFmtId="164" fontId="1" fillId="2" borderId="1" xfId="0"><alignment horizontal="center" vertical="top" wrapText="1"/></xf>)"
         R"(<xf numFmtId="0" fontId="0" fillId="2" borderId="0" xfId="0"/>)"
         R"(<xf numFmtId="49" fontId="0" fillId="0" borderId="0" xfId="0" quotePrefix="1"/></cellXfs>)"
         R"(<cellStyles count="1"><cellStyle name="Normal" xfId="0" builtinId="0"/></cellStyles><dxfs count="0"/></styleSheet>)"},
        {"xl/worksheets/sheet1.xml",
         "<worksheet " + main +
             R"(><sheetPr codeName="wsWBS"><tabColor rgb="FF00FF00"/></sheetPr>)"
             R"(<dimension ref="A1:D9"/><sheetViews><sheetView tabSelected="1" zoomScale="85" workbookViewId="0"/></sheetViews>)"
             R"(<sheetFormatPr defaultRowHeight="15"/>)"
             R"(<cols><col min="2" max="3" width="20.7109375" customWidth="1"/><col min="5" max="5" width="9.140625" hidden="1"/><col min="6" max="6" width="9.140625" style="3"/></cols>)"
             R"(<sheetData>)"
             R"(<row r="1" ht="30" customHeight="1"><c r="A1" t="s"><v>0</v></c><c r="B1" t="s"><v>1</v></c><c r="C1" t="inlineStr"><is><t>inline</t></is></c><c r="D1" s="4" t="s"><v>0</v></c></row>)"
             R"(<row r="2" hidden="1"><c r="A2"><v>1.5</v></c><c r="B2" t="b"><v>1</v></c><c r="C2" t="e"><v>#N/A</v></c><c r="D2" s="1"><v>45352</v></c></row>)"
             R"(<row r="3"><c r="A3"><f t="shared" ref="A3:A5" si="0">A2*2+$A$2</f><v>4.5</v></c><c r="B3" s="2"><v>45352.5</v></c><c r="C3" t="str"><f>"x"&amp;B1</f><v>xRich text</v></c></row>)"
             R"(<row r="4"><c r="A4"><f t="shared" si="0"/><v>10.5</v></c></row>)"
             R"(<row r="5"><c r="A5"><f t="shared" si="0"/><v>22.5</v></c><c r="F5" s="3"/><c r="G5" s="3"/></row>)"
             R"(<row r="7" s="3" customFormat="1"/>)"
             R"(</sheetData><dataValidations count="1"><dataValidation type="list" sqref="D5"><formula1>"a,b"</formula1></dataValidation></dataValidations>)"
             R"(<pageMargins left="0.7" right="0.7" top="0.75" bottom="0.75" header="0.3" footer="0.3"/></worksheet>)"},
        {"xl/worksheets/sheet2.xml",
         "<worksheet " + main +
             R"(><sheetPr codeName="wsSettings"/><sheetData><row r="1"><c r="B1"><v>7</v></c></row></sheetData></worksheet>)"},
        {"xl/calcChain.xml",
         R"(<calcChain xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"><c r="A3" i="1"/></calcChain>)"},
        {"xl/vbaProject.bin", kMacroBytes},
        {"xl/printerSettings/printerSettings1.bin", std::string("\x00\x01\x02printer", 10)},
    };
}

}  // namespace xlsx::testing
