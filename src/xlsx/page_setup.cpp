#include "xlsx/page_setup.h"

#include <array>
#include <string_view>

#include "xlsx/sheet_write.h"
#include "xlsx/xml.h"

namespace xlsx {
namespace {

constexpr std::array<std::string_view, 3> kSheetPrOrder{"tabColor", "outlinePr", "pageSetUpPr"};

void SetAttribute(pugi::xml_node node, const char* name, int value) {
    node.remove_attribute(name);
    node.append_attribute(name).set_value(value);
}

}  // namespace

void ReadPageSetup(pugi::xml_node worksheet, sheethost::Sheet& sheet) {
    const pugi::xml_node page = Child(worksheet, "pageSetup");
    sheet.pageSetup.landscape =
        std::string_view(page.attribute("orientation").value()) == "landscape";
    // The fit counts take effect only when the sheet's properties switch fitting on; each
    // defaults to one page.
    if (Child(Child(worksheet, "sheetPr"), "pageSetUpPr").attribute("fitToPage").as_bool()) {
        sheet.pageSetup.fitToPagesWide = page.attribute("fitToWidth").as_int(1);
        sheet.pageSetup.fitToPagesTall = page.attribute("fitToHeight").as_int(1);
    }
}

void WritePageSetup(pugi::xml_node worksheet, const sheethost::Sheet& sheet) {
    const sheethost::PageSetup& setup = sheet.pageSetup;
    const bool fit = setup.fitToPagesWide > 0 || setup.fitToPagesTall > 0;
    pugi::xml_node page = Child(worksheet, "pageSetup");
    if (!page && setup == sheethost::PageSetup{}) return;
    if (!page) page = EnsureChild(worksheet, "pageSetup", kWorksheetOrder);
    page.remove_attribute("orientation");
    if (setup.landscape) page.append_attribute("orientation").set_value("landscape");
    page.remove_attribute("fitToWidth");
    page.remove_attribute("fitToHeight");
    pugi::xml_node properties = Child(Child(worksheet, "sheetPr"), "pageSetUpPr");
    if (fit) {
        SetAttribute(page, "fitToWidth", setup.fitToPagesWide);
        SetAttribute(page, "fitToHeight", setup.fitToPagesTall);
        if (!properties) {
            properties = InsertInOrder(EnsureChild(worksheet, "sheetPr", kWorksheetOrder),
                                       "pageSetUpPr", kSheetPrOrder);
        }
        SetAttribute(properties, "fitToPage", 1);
    } else if (properties) {
        properties.remove_attribute("fitToPage");
    }
}

}  // namespace xlsx
