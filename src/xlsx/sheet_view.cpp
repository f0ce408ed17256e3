#include "xlsx/sheet_view.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "sheethost/address.h"
#include "sheethost/formula.h"
#include "xlsx/sheet_read.h"
#include "xlsx/sheet_write.h"
#include "xlsx/xml.h"

namespace xlsx {
namespace {

constexpr std::array<std::string_view, 4> kSheetViewOrder{"pane", "selection", "pivotSelection",
                                                          "extLst"};

// With split or frozen panes each pane keeps a selection of its own; the active pane's is the
// one the user sees. Without panes the view has one selection, of the top-left pane.
pugi::xml_node ActiveSelection(pugi::xml_node view) {
    pugi::xml_node pane = Child(view, "pane");
    const std::string_view active =
        pane ? pane.attribute("activePane").as_string("topLeft") : "topLeft";
    for (pugi::xml_node selection : Children(view, "selection")) {
        if (selection.attribute("pane").as_string("topLeft") == active) return selection;
    }
    return {};
}

bool IsFrozen(pugi::xml_node pane) {
    const std::string_view state = pane.attribute("state").value();
    return pane && (state == "frozen" || state == "frozenSplit");
}

// The splits count the frozen rows and columns; the pane's top-left cell is only where the
// scrolling pane has been scrolled to. Splits that leave no cell of the sheet below or right of
// them freeze nothing.
std::optional<sheethost::CellRef> FrozenAt(pugi::xml_node pane) {
    const int rows = pane.attribute("ySplit").as_int(0);
    const int columns = pane.attribute("xSplit").as_int(0);
    if (rows < 0 || rows >= sheethost::kMaxRow || columns < 0 || columns >= sheethost::kMaxColumn) {
        return std::nullopt;
    }
    return sheethost::CellRef{rows + 1, columns + 1};
}

// Frozen rows above and columns left of `frozenAt`. The pane below and right of them is the active
// one and holds the selection. A split that is not frozen stays as the file has it.
void WriteFrozenPane(pugi::xml_node view, sheethost::CellRef frozenAt) {
    pugi::xml_node pane = Child(view, "pane");
    const bool frozen = frozenAt != sheethost::CellRef{};
    if (IsFrozen(pane) ? FrozenAt(pane) == frozenAt : !frozen) return;
    // Each pane has a selection of its own; the old ones belong to the old panes.
    for (pugi::xml_node selection : Children(view, "selection")) view.remove_child(selection);
    if (pane) view.remove_child(pane);
    if (!frozen) return;
    pane = InsertInOrder(view, "pane", kSheetViewOrder);
    if (frozenAt.column > 1) pane.append_attribute("xSplit").set_value(frozenAt.column - 1);
    if (frozenAt.row > 1) pane.append_attribute("ySplit").set_value(frozenAt.row - 1);
    pane.append_attribute("topLeftCell")
        .set_value(
            SqrefText({{frozenAt.row, frozenAt.column, frozenAt.row, frozenAt.column}}).c_str());
    const char* active = frozenAt.row == 1      ? "topRight"
                         : frozenAt.column == 1 ? "bottomLeft"
                                                : "bottomRight";
    pane.append_attribute("activePane").set_value(active);
    pane.append_attribute("state").set_value("frozen");
}

}  // namespace

void ReadSheetView(pugi::xml_node worksheet, sheethost::Sheet& sheet) {
    pugi::xml_node view = Child(Child(worksheet, "sheetViews"), "sheetView");
    if (!view) return;
    const int zoom = view.attribute("zoomScale").as_int(100);
    if (zoom >= 10 && zoom <= 400) sheet.zoom = zoom;
    if (const pugi::xml_node pane = Child(view, "pane"); IsFrozen(pane)) {
        sheet.frozenAt = FrozenAt(pane).value_or(sheethost::CellRef{});
    }
    pugi::xml_node selection = ActiveSelection(view);
    if (!selection) return;
    if (const auto active = sheethost::ParseArea(selection.attribute("activeCell").value())) {
        sheet.activeCell = {active->top, active->left};
    }
    const std::vector<sheethost::Area> areas =
        ParseSqref(selection.attribute("sqref").value()).value_or(std::vector<sheethost::Area>{});
    sheet.selection =
        areas.empty()
            ? std::vector<sheethost::Area>{{sheet.activeCell.row, sheet.activeCell.column,
                                            sheet.activeCell.row, sheet.activeCell.column}}
            : areas;
}

void WriteSheetView(pugi::xml_node worksheet, const sheethost::Sheet& sheet, bool active) {
    pugi::xml_node views = EnsureChild(worksheet, "sheetViews", kWorksheetOrder);
    pugi::xml_node view = Child(views, "sheetView");
    if (!view) {
        view = views.append_child(QualifiedName(views, "sheetView").c_str());
        view.append_attribute("workbookViewId").set_value(0);
    }
    for (pugi::xml_node other : Children(views, "sheetView")) other.remove_attribute("tabSelected");
    if (active) view.prepend_attribute("tabSelected").set_value(1);
    view.remove_attribute("zoomScale");
    // The spreadsheet opens no view outside 10% to 400%.
    const int zoom = std::clamp(sheet.zoom, 10, 400);
    if (zoom != 100) view.append_attribute("zoomScale").set_value(zoom);
    WriteFrozenPane(view, sheet.frozenAt);

    pugi::xml_node selection = ActiveSelection(view);
    const bool standard = sheet.activeCell == sheethost::CellRef{} && sheet.selection.size() == 1 &&
                          sheet.selection[0] == sheethost::Area{};
    if (!selection && standard) return;
    if (!selection) {
        selection = InsertInOrder(view, "selection", kSheetViewOrder);
        if (pugi::xml_node pane = Child(view, "pane")) {
            selection.append_attribute("pane").set_value(
                pane.attribute("activePane").as_string("topLeft"));
        }
    }
    selection.remove_attribute("activeCell");
    selection.remove_attribute("activeCellId");
    selection.remove_attribute("sqref");
    selection.append_attribute("activeCell")
        .set_value(SqrefText({{sheet.activeCell.row, sheet.activeCell.column, sheet.activeCell.row,
                               sheet.activeCell.column}})
                       .c_str());
    // The active cell lies in the first block unless it says which.
    for (std::size_t at = 1; at < sheet.selection.size(); ++at) {
        if (sheet.selection[0].Contains(sheet.activeCell.row, sheet.activeCell.column)) break;
        if (sheet.selection[at].Contains(sheet.activeCell.row, sheet.activeCell.column)) {
            selection.append_attribute("activeCellId").set_value(static_cast<unsigned>(at));
            break;
        }
    }
    selection.append_attribute("sqref").set_value(SqrefText(sheet.selection).c_str());
}

}  // namespace xlsx
