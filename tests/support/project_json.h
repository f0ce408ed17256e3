// A small project workbook written as JSON in the test and bound to the engine, for tests that run
// whole commands and then read the sheets back. Its task sheet is deliberately laid out unlike the
// sample: the ten name columns stand on the right (Y..AH) and the fields are spread over A..X, so
// nothing can depend on a usual column order.
//
//     testsupport::ProjectJson project;
//     project.Task(12, 1, "Build");
//     project.Task(13, 2, "Design", {{"C", "AL"}, {"P", 0.375}, {"D", 0.5}});
//     project.Bind();
//     kpUpdateWBS();
//     EXPECT_EQ(project.Text("A13"), "1.1");
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "com/text.h"
#include "core/clock.h"
#include "engine/exports.h"
#include "sheethost/cell_values.h"
#include "sheethost/sheethost.h"
#include "support/engine_workbook.h"
#include "values/values.h"

namespace testsupport {

// A message as the user would see it: its text and its box's icon.
struct ShownMessage {
    std::string text;
    UINT icon = 0;

    bool operator==(const ShownMessage&) const = default;
};

class ProjectJson {
  public:
    // Columns of the task sheet.
    static constexpr const char* kWbsNo = "A";
    static constexpr const char* kType = "B";
    static constexpr const char* kResource = "C";
    static constexpr const char* kPlannedEnd = "D";
    static constexpr const char* kActualStart = "E";
    static constexpr const char* kPv = "F";
    static constexpr const char* kAc = "G";
    static constexpr const char* kPredecessors = "H";
    static constexpr const char* kPercent = "J";
    static constexpr const char* kPlannedStart = "P";
    static constexpr const char* kActualEnd = "X";
    static constexpr int kFirstNameColumn = 25;  // Y
    static constexpr int kFirstTaskRow = 12;
    // The one calendar day of every group: 1 April 2024 and 2 April 2024, 08:00 to 17:00.
    static constexpr double kDay1 = 45383;
    static constexpr double kDay2 = 45384;

    ProjectJson() : ProjectJson(nlohmann::json::parse(kBaseProject)) {
        PinNow(kDay1 + 0.5);  // 1 April 2024, noon
    }
    // Another workbook, such as the sample, with the same helpers.
    explicit ProjectJson(nlohmann::json workbook) : json_(std::move(workbook)) {
        Messages().clear();
    }
    ~ProjectJson() { PinNow(0); }
    ProjectJson(const ProjectJson&) = delete;
    ProjectJson& operator=(const ProjectJson&) = delete;

    // A task name in the name column of outline `level` and its field cells, by column letters.
    void Task(int row, int level, std::string_view name,
              std::initializer_list<std::pair<std::string_view, nlohmann::json>> fields = {}) {
        Cells("WBS")[ColumnLetters(kFirstNameColumn + level - 1) + std::to_string(row)] = name;
        for (const auto& [column, value] : fields) {
            Cells("WBS")[std::string(column) + std::to_string(row)] = value;
        }
    }

    nlohmann::json& Cells(std::string_view sheet) { return Sheet(sheet)["cells"]; }
    nlohmann::json& Shapes(std::string_view sheet) { return Sheet(sheet)["shapes"]; }
    nlohmann::json& Sheet(std::string_view name) {
        for (nlohmann::json& sheet : json_["sheets"]) {
            if (sheet["name"] == name) return sheet;
        }
        throw std::invalid_argument("no sheet " + std::string(name));
    }

    // Changes a named settings cell.
    void Setting(std::string_view name, nlohmann::json value) {
        std::string address = json_["names"][std::string(name)];
        address.erase(0, address.find('!') + 1);
        std::erase(address, '$');
        Cells("Settings")[address] = std::move(value);
    }

    // A new named settings cell at `address` ("C40") of the settings sheet, holding `value`.
    void AddSetting(std::string_view name, std::string_view address, nlohmann::json value) {
        std::string reference = "=Settings!$";
        const std::size_t digits = address.find_first_of("0123456789");
        reference.append(address.substr(0, digits)).append("$").append(address.substr(digits));
        json_["names"][std::string(name)] = reference;
        Cells("Settings")[std::string(address)] = std::move(value);
    }

    // A worksheet added after the others.
    void AddSheet(std::string_view name, std::string_view codeName, nlohmann::json cells) {
        json_["sheets"].push_back({{"name", name}, {"codeName", codeName}, {"cells", cells}});
    }

    // A workbook name, such as a table of the settings sheet: "=Settings!$E$2:$F$3".
    void Name(std::string_view name, std::string_view reference) {
        json_["names"][std::string(name)] = reference;
    }

    void HideRow(int row) { Sheet("WBS")["rows"][std::to_string(row)] = {{"hidden", true}}; }

    // A template shape, on the settings sheet unless another is named.
    void AddTemplate(std::string_view name, int autoShapeType, double width, double height,
                     std::int32_t fillColour, std::int32_t lineColour = 0,
                     std::string_view sheet = "Settings") {
        Shapes(sheet).push_back({{"name", name},
                                 {"autoShapeType", autoShapeType},
                                 {"width", width},
                                 {"height", height},
                                 {"line", {{"foreColor", lineColour}, {"weight", 1.5}}},
                                 {"fill", {{"foreColor", fillColour}}}});
    }

    // The templates every status colour needs: levels 1 and 2, the frame and the three markers.
    void AddStatusTemplates() {
        AddTemplate("GanntBar", 1, 40, 8, 0x808080);
        AddTemplate("GanntBar1", 1, 40, 8, 0x00C0FF);
        AddTemplate("GanntBar2", 1, 40, 8, 0xFFCC99);
        AddTemplate("WSDependsCheckError", 5, 30, 10, 0xFFFFFF, 0x0000FF);
        AddTemplate("WSTaskColorStyleDelay", 9, 8, 6, 0x0000C0);
        AddTemplate("WSTaskColorStyleEnd", 12, 6, 8, 0x00A5FF);
        AddTemplate("WSTaskColorStyleStart", 9, 7, 7, 0x00B050);
    }

    // Loads the JSON into the host and binds it to the engine (kpInit, kpSetWorkBook).
    void Bind() {
        std::string error;
        workbook_.book = sheethost::LoadWorkbookJson(json_.dump(), &error);
        ASSERT_NE(workbook_.book, nullptr) << error;
        workbook_.Bind();
        kpSetMessageReceiver(&Collect);
    }

    const sheethost::Workbook& Book() const { return *workbook_.book; }
    // The canonical dump without shape ids, which a redrawn shape changes.
    std::string DumpWithoutShapeIds() const {
        nlohmann::json dump = nlohmann::json::parse(sheethost::DumpWorkbookJson(Book()));
        for (nlohmann::json& sheet : dump["sheets"]) {
            for (nlohmann::json& shape : sheet["shapes"]) shape.erase("id");
        }
        return dump.dump();
    }

    sheethost::Sheet& Host(std::string_view sheet) const {
        return *sheethost::FindSheet(*workbook_.book, sheet);
    }
    const sheethost::Cell* HostCell(std::string_view address) const {
        const auto [row, column] = Address(address);
        return sheethost::FindCell(Host("WBS"), row, column);
    }
    // The task sheet's formula at `address`, empty when the cell holds none.
    std::string Formula(std::string_view address) const {
        const sheethost::Cell* cell = HostCell(address);
        return cell != nullptr ? cell->formula.Text() : std::string();
    }
    // The value the task sheet shows at `address` (formulas evaluated).
    sheethost::Value Shown(std::string_view address) const {
        const auto [row, column] = Address(address);
        return sheethost::CellDisplayValue(*workbook_.book, Host("WBS"), row, column);
    }
    std::string Text(std::string_view address) const {
        const sheethost::Value value = Shown(address);
        if (const auto* text = std::get_if<std::string>(&value)) return *text;
        if (const auto* number = std::get_if<double>(&value)) return values::NumberText(*number);
        return {};
    }
    double Number(std::string_view address) const {
        const sheethost::Value value = Shown(address);
        const auto* number = std::get_if<double>(&value);
        return number != nullptr ? *number : -1.0e300;
    }
    const sheethost::Style& StyleAt(std::string_view address) const {
        const auto [row, column] = Address(address);
        return sheethost::EffectiveStyle(Host("WBS"), row, column);
    }
    bool RowHidden(int row) const {
        const auto& rows = Host("WBS").rows;
        const auto found = rows.find(row);
        return found != rows.end() && found->second.hidden;
    }

    // Shapes of a sheet whose name begins with `prefix`.
    std::vector<const sheethost::Shape*> ShapesNamed(std::string_view prefix,
                                                     std::string_view sheet = "WBS") const {
        std::vector<const sheethost::Shape*> found;
        for (const auto& shape : Host(sheet).shapes) {
            if (shape->name.starts_with(prefix)) found.push_back(shape.get());
        }
        return found;
    }
    const sheethost::Shape* ShapeNamed(std::string_view name) const {
        for (const sheethost::Shape* shape : ShapesNamed(name)) {
            if (shape->name == name) return shape;
        }
        return nullptr;
    }

    // The cell box in points, as the engine reads Left, Top, Width and Height.
    struct Box {
        double left, top, width, height;
    };
    Box CellBox(std::string_view address) const {
        const auto [row, column] = Address(address);
        const sheethost::Sheet& sheet = Host("WBS");
        return {sheethost::ColumnLeft(sheet, column), sheethost::RowTop(sheet, row),
                sheethost::ColumnWidthPoints(sheet, column),
                sheethost::RowHeightPoints(sheet, row)};
    }

    static std::vector<ShownMessage>& Messages() {
        static std::vector<ShownMessage> messages;
        return messages;
    }

  private:
    static void Collect(const OLECHAR* text, UINT icon) {
        Messages().push_back({Narrow(WideStringView(text)), icon});
    }

    static std::pair<int, int> Address(std::string_view address) {
        const std::size_t digits = address.find_first_of("0123456789");
        return {std::stoi(std::string(address.substr(digits))),
                ColumnNumber(address.substr(0, digits))};
    }

    static constexpr const char* kBaseProject = R"json({
      "names": {
        "WSWBSSheetName": "=Settings!$C$3", "WSFirstCol": "=Settings!$C$4",
        "WSLastCol": "=Settings!$C$5", "WSProjectStartDateCell": "=Settings!$C$6",
        "WSProjectEndDateCell": "=Settings!$C$7", "WSCalendarDateRow": "=Settings!$C$8",
        "WSCalendarFirstCol": "=Settings!$C$9", "WSFirstTaskRow": "=Settings!$C$10",
        "WSWBSNoCol": "=Settings!$C$11", "WSTaskNameCol": "=Settings!$C$12",
        "WSTaskTypeCol": "=Settings!$C$13", "WSResourceCol": "=Settings!$C$14",
        "WSPVByTaskCol": "=Settings!$C$15", "WSPlannedStartDateCol": "=Settings!$C$16",
        "WSPlannedEndDateCol": "=Settings!$C$17", "WSACByTaskCol": "=Settings!$C$18",
        "WSActualStartDateCol": "=Settings!$C$19", "WSActualEndDateCol": "=Settings!$C$20",
        "WSPercentCompleteCol": "=Settings!$C$21", "WSPredecessorsCol": "=Settings!$C$22",
        "WSWBSNoBegin": "=Settings!$C$23", "WSWBSNoFormat": "=Settings!$C$24",
        "WSTaskColorCompletedFlg": "=Settings!$C$25", "WSTaskColorUseFlg": "=Settings!$C$26",
        "WSFilterOptionShowDependence": "=Settings!$C$27",
        "WSFilterOptionShowSummary": "=Settings!$C$28", "WSAutoUpdateMode": "=Settings!$C$29",
        "WSTaskLinkerColorFlg": "=Settings!$C$30", "CSCalendarUnit": "=Settings!$C$31",
        "GanntBarStyle": "=Settings!$C$32"
      },
      "sheets": [
        {"name": "WBS", "codeName": "wsWBS", "cells": {}, "shapes": [],
         "columns": {"H": {"width": 12}, "Y": {"width": 20}}, "rows": {"14": {"height": 24}}},
        {"name": "Settings", "codeName": "wsSettings", "shapes": [], "cells": {
          "C3": "WBS", "C4": "A", "C5": "AH", "C6": "B2", "C7": "D2", "C8": 10, "C9": "AI",
          "C10": 12, "C11": "A", "C12": "Y", "C13": "B", "C14": "C", "C15": "F", "C16": "P",
          "C17": "D", "C18": "G", "C19": "E", "C20": "X", "C21": "J", "C22": "H", "C23": 1,
          "C24": ".", "C25": 1, "C26": 1, "C27": 0, "C28": 0, "C29": 0, "C30": 0, "C31": 60,
          "C32": 0}},
        {"name": "Calendar", "codeName": "wsCalendar", "cells": {
          "B3": 45383, "C3": 0.3333333333333333, "D3": 0.7083333333333334,
          "B4": 45384, "C4": 0.3333333333333333, "D4": 0.7083333333333334}},
        {"name": "Resources", "codeName": "wsResource", "cells": {
          "B4": "Alice", "C4": "AL", "B5": "Bob", "C5": "BO"}}
      ]
    })json";

    nlohmann::json json_;
    EngineWorkbook workbook_;
};

}  // namespace testsupport
