#include "render/render.h"

#include "render/drawing.h"
#include "render/svg.h"

namespace render {

const sheethost::Sheet* SheetToRender(const sheethost::Workbook& book) {
    for (const auto& sheet : book.sheets) {
        if (sheet->codeName == "wsWBS") return sheet.get();
    }
    if (book.activeSheet < book.sheets.size()) return book.sheets[book.activeSheet].get();
    return book.sheets.empty() ? nullptr : book.sheets.front().get();
}

std::string RenderSheetSvg(const sheethost::Workbook& book, const sheethost::Sheet& sheet) {
    const SheetGeometry geometry = MeasureSheet(sheet);
    const std::string width = Number(geometry.Width());
    const std::string height = Number(geometry.Height());
    // The document's size in points, so a browser shows the sheet at the spreadsheet's 100 %.
    std::string svg =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" +
        width + "pt\" height=\"" + height + "pt\" viewBox=\"0 0 " + width + " " + height +
        "\">\n<title>" + Escaped(sheet.name) + "</title>\n" +
        "<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n";
    svg += "<g id=\"cells\">\n";
    WriteCells(svg, book, sheet, geometry);
    svg += "</g>\n<g id=\"shapes\">\n";
    WriteShapes(svg, sheet);
    svg += "</g>\n</svg>\n";
    return svg;
}

}  // namespace render
