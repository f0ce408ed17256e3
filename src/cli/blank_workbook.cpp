#include "cli/blank_workbook.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

#include "cli/workbook_layout.h"
#include "gantt/gantt.h"
#include "sheethost/formula.h"
#include "sheethost/sheethost.h"
#include "wbs/filter.h"

using nlohmann::json;

namespace {

// The task table's rows, header and the first chart column, as the settings of a new workbook
// name them.
constexpr int kHeaderRow = 4;
constexpr int kFirstTaskRow = 5;
constexpr int kLastTableRow = 44;
constexpr int kCalendarFirstColumn = 23;  // W, right of the predecessors column V
constexpr double kWorkStart = 8.0 / 24;
constexpr double kWorkEnd = 17.0 / 24;
constexpr int kUnitMinutes = 60;
constexpr int kSummaryLevels = 9;  // summary tasks stand at levels 1 to 9 of the ten name columns

json Border() {
    return {{"lineStyle", 1}, {"weight", 2}, {"colorIndex", -4105}};
}

json Styles() {
    const json thin = Border();
    json medium = Border();
    medium["weight"] = -4138;
    return {
        {"title", {{"font", {{"bold", true}, {"size", 14}}}}},
        {"header",
         {{"horizontalAlignment", -4108},
          {"verticalAlignment", -4108},
          {"wrapText", true},
          {"font", {{"bold", true}}},
          {"interior", {{"colorIndex", 35}, {"pattern", 1}}},
          {"borders", {{"left", thin}, {"top", thin}, {"right", thin}, {"bottom", medium}}}}},
        {"time", {{"numberFormat", "hh:mm"}, {"horizontalAlignment", -4108}}},
    };
}

json Header(const char* text) {
    return {{"value", text}, {"style", "header"}};
}

// A template shape: its look is what the drawings copy.
json Template(int id, const std::string& name, double left, double top, double width, double height,
              int fill, json line) {
    return {{"id", id},
            {"name", name},
            {"left", left},
            {"top", top},
            {"width", width},
            {"height", height},
            {"fill", {{"foreColor", fill}}},
            {"line", std::move(line)}};
}

json Outline(double weight, int colour) {
    return {{"weight", weight}, {"foreColor", colour}};
}

// The working days from `first` on, Monday to Friday. In the host's serials day 0 is a Saturday.
std::vector<double> WorkingDays(double first, int count) {
    std::vector<double> days;
    for (double day = std::floor(first); static_cast<int>(days.size()) < count; day += 1) {
        if (static_cast<long long>(day) % 7 >= 2) days.push_back(day);
    }
    return days;
}

json TaskSheet(const std::vector<double>& days, const std::string& lastChartColumn) {
    const std::string last = std::to_string(kLastTableRow);
    json cells = {
        {"B1", {{"value", "New project"}, {"style", "title"}}},
        {"M1", "From"},
        {"N1", days.front() + kWorkStart},
        {"U1", "to"},
        {"V1", days.back() + kWorkEnd},
    };
    const char* headers[][2] = {{"B", "WBS"},        {"C", "Task"},     {"M", "Type"},
                                {"N", "Resource"},   {"O", "PV (min)"}, {"P", "Plan start"},
                                {"Q", "Plan end"},   {"R", "AC (min)"}, {"S", "Actual start"},
                                {"T", "Actual end"}, {"U", "%"},        {"V", "Predecessors"}};
    for (const auto& [column, text] : headers) {
        cells[std::string(column) + std::to_string(kHeaderRow)] = text;
    }
    const json thin = Border();
    return {
        {"name", "WBS"},
        {"codeName", "wsWBS"},
        {"zoom", 85},
        {"selection", "C" + std::to_string(kFirstTaskRow)},
        // The headings and the task columns stay in view while the chart scrolls; it prints
        // across as many landscape pages as it needs, one page tall.
        {"freezePanes",
         sheethost::ColumnLetters(kCalendarFirstColumn) + std::to_string(kFirstTaskRow)},
        {"pageSetup", {{"orientation", "landscape"}, {"fitToPagesWide", 0}, {"fitToPagesTall", 1}}},
        {"columns",
         {{"A", {{"width", 1.5}}},
          {"B", {{"width", 7}, {"style", {{"numberFormat", "@"}}}}},
          {"C:K", {{"width", 2.5}}},
          {"L", {{"width", 30}}},
          {"M", {{"width", 5}, {"style", {{"horizontalAlignment", -4108}}}}},
          {"N", {{"width", 10}}},
          {"O", {{"width", 8}}},
          {"P:Q", {{"width", 8}, {"style", "time"}}},
          {"R", {{"width", 8}}},
          {"S:T", {{"width", 8}, {"style", "time"}}},
          {"U", {{"width", 5}}},
          {"V", {{"width", 12}}},
          {"W:" + lastChartColumn, {{"width", 2.7}}}}},
        {"rows",
         {{"1", {{"height", 21}}},
          {std::to_string(kHeaderRow), {{"height", 30}}},
          {std::to_string(kFirstTaskRow) + ":" + last, {{"height", 18}}}}},
        {"cells", cells},
        {"formats",
         {{{"range", "N1"}, {"numberFormat", "yyyy/mm/dd"}},
          {{"range", "V1"}, {"numberFormat", "yyyy/mm/dd"}},
          {{"range", "B" + std::to_string(kHeaderRow) + ":V" + std::to_string(kHeaderRow)},
           {"style", "header"}},
          // The name heading runs on over the narrow outline columns instead of wrapping there.
          {{"range", "C" + std::to_string(kHeaderRow)},
           {"horizontalAlignment", -4131},
           {"wrapText", false}},
          {{"range", "C" + std::to_string(kHeaderRow) + ":K" + std::to_string(kHeaderRow)},
           {"borders", {{"right", {{"lineStyle", -4142}}}}}},
          {{"range", "D" + std::to_string(kHeaderRow) + ":L" + std::to_string(kHeaderRow)},
           {"borders", {{"left", {{"lineStyle", -4142}}}}}},
          {{"range", "B" + std::to_string(kFirstTaskRow) + ":V" + last},
           {"borders", {{"left", thin}, {"top", thin}, {"bottom", thin}, {"right", thin}}}}}},
    };
}

json SettingsSheet(json& names, const std::string& bodyRange) {
    json cells = {
        {"B1", {{"value", "Settings"}, {"style", "title"}}},
        {"B2", Header("Key")},
        {"C2", Header("Value")},
        {"D2", Header("Meaning")},
    };
    int row = 3;
    for (const SettingCell& setting : SettingCells()) {
        const std::string at = std::to_string(row);
        const std::string key(setting.key);
        const std::string value =
            setting.key == "CSBodyRange" ? bodyRange : std::string(setting.blankValue);
        cells["B" + at] = key;
        // Numbers go in as numbers, so the sheet shows them as a planner typed them.
        const auto number = sheethost::TextToNumber(value);
        const bool numeric = number && setting.kind != SettingKind::kSeparator &&
                             setting.kind != SettingKind::kColumn;
        cells["C" + at] = numeric ? json(*number) : json(value);
        cells["D" + at] = std::string(setting.meaning);
        names[key] = "=Settings!$C$" + at;
        ++row;
    }
    // Task types: the text a task's type cell holds, and the text shown once the task started.
    cells["F2"] = Header("Task type");
    cells["G2"] = Header("Shown once started");
    const char* types[][2] = {{"\u25c7", "\u25c6"}, {"\u2610", "\u2611"}, {"\u25b3", "\u25b2"}};
    int typeRow = 3;
    for (const auto& [type, shown] : types) {
        cells["F" + std::to_string(typeRow)] = type;
        cells["G" + std::to_string(typeRow)] = shown;
        ++typeRow;
    }
    names[std::string(kTaskTypeTable)] = "=Settings!$F$3:$G$" + std::to_string(typeRow - 1);

    // The templates, each named in column I beside where it stands.
    cells["I2"] = Header("Templates");
    json shapes = json::array();
    constexpr double kLeft = 560;
    int id = 0;
    auto add = [&](json shape) {
        shape["id"] = ++id;
        const double top = 40 + 24 * (id - 1);
        shape["left"] = kLeft;
        shape["top"] = top;
        cells["I" + std::to_string(id + 2)] = shape["name"];
        shapes.push_back(std::move(shape));
    };
    add(Template(0, "GanntBar", 0, 0, 60, 9, 13998939, Outline(0.5, 10252609)));
    add(Template(0, "GanntBar%", 0, 0, 60, 9, 4697456, Outline(0.5, 3506772)));
    add(Template(0, "GanntBar100%", 0, 0, 60, 9, 10855845, Outline(0.5, 7763574)));
    const int levelColours[] = {2500134, 9917743, 14395790};
    for (int level = 1; level <= kSummaryLevels; ++level) {
        add(Template(0, "GanntBar" + std::to_string(level), 0, 0, 60, 6,
                     levelColours[std::min(level, 3) - 1], {{"visible", false}}));
    }
    json connector = Template(0, "TaskConnector", 0, 0, 60, 12, 0,
                              {{"weight", 1}, {"foreColor", 4210752}, {"endArrowheadStyle", 2}});
    connector["autoShapeType"] = -2;
    connector["fill"] = {{"visible", false}};
    connector["connectorType"] = 2;
    connector["textFrame"] = nullptr;
    add(connector);
    json progress = Template(0, "ProgressLines", 0, 0, 0, 40, 0, Outline(1.5, 255));
    progress["fill"] = {{"visible", false}};
    progress["type"] = 9;
    progress["connectorType"] = 1;
    progress["textFrame"] = nullptr;
    add(progress);
    json frame = Template(0, "WSDependsCheckError", 0, 0, 60, 16, 0, Outline(1.5, 255));
    frame["fill"] = {{"visible", false}};
    add(frame);
    const std::pair<const char*, int> markers[] = {{"WSTaskColorStyleDelay", 255},
                                                   {"WSTaskColorStyleEnd", 49407},
                                                   {"WSTaskColorStyleStart", 5287936}};
    for (const auto& [name, colour] : markers) {
        json marker = Template(0, name, 0, 0, 8, 8, colour, {{"visible", false}});
        marker["autoShapeType"] = 9;
        add(marker);
    }

    cells[std::string(kFilterCell)] = "0,";
    cells["B500"] = "The filter: mode,argument as the filter dialog writes it; 0, shows every task";
    return {{"name", "Settings"},
            {"codeName", "wsSettings"},
            {"columns",
             {{"A", {{"width", 1.5}}},
              {"B", {{"width", 28}}},
              {"C", {{"width", 14}}},
              {"D", {{"width", 60}}},
              {"F", {{"width", 10}}},
              {"G", {{"width", 18}}},
              {"I", {{"width", 22}}}}},
            {"cells", cells},
            {"shapes", shapes}};
}

json CalendarSheet(const std::vector<double>& days) {
    json cells = {{"B1", {{"value", "Working calendar"}, {"style", "title"}}}};
    const char* headers[] = {"Date",    "Start",   "End",         "First day",     "Last day",
                             "Holiday", "Workday", "Month start", "Holiday worked"};
    char column = 'B';
    for (const char* text : headers) cells[std::string(1, column++) + "2"] = Header(text);
    for (std::size_t i = 0; i < days.size(); ++i) {
        const std::string row = std::to_string(i + 3);
        cells["B" + row] = days[i];
        cells["C" + row] = kWorkStart;
        cells["D" + row] = kWorkEnd;
        cells["H" + row] = 1;
    }
    cells["E3"] = 1;
    cells["F" + std::to_string(days.size() + 2)] = 1;
    return {{"name", "Calendar"},
            {"codeName", "wsCalendar"},
            {"columns",
             {{"A", {{"width", 1.5}}},
              {"B", {{"width", 12}, {"style", {{"numberFormat", "yyyy/mm/dd"}}}}},
              {"C:D", {{"width", 8}, {"style", "time"}}},
              {"E:J", {{"width", 10}}}}},
            {"cells", cells}};
}

json ResourceSheet() {
    return {{"name", "Resources"},
            {"codeName", "wsResource"},
            {"columns",
             {{"A", {{"width", 1.5}}},
              {"B", {{"width", 22}}},
              {"C", {{"width", 10}}},
              {"D", {{"width", 14}}},
              {"E", {{"width", 8}}}}},
            {"cells",
             {{"B1", {{"value", "Resources"}, {"style", "title"}}},
              {"B3", Header("Name")},
              {"C3", Header("Key")},
              {"D3", Header("Bar")},
              {"E3", Header("Rate")},
              {"B4", "Team"},
              {"C4", "TEAM"},
              {"E4", 1}}},
            // A resource's bars copy the shape named GanntBarByRes and the resource's name.
            {"shapes",
             {Template(1, "GanntBarByResTeam", 260, 48, 60, 9, 13998939, Outline(0.5, 5855577))}}};
}

json DictionarySheet() {
    const char* texts[][2] = {
        {"BAC", "BAC (budget)"},
        {"PV", "PV (planned value)"},
        {"EV", "EV (earned value)"},
        {"AC", "AC (actual cost)"},
        {"SV", "SV (schedule variance)"},
        {"CV", "CV (cost variance)"},
        {"SPI", "SPI"},
        {"CPI", "CPI"},
        {"EAC", "EAC (estimate at completion)"},
        {"ETC", "ETC (estimate to complete)"},
        {"ENDDATEORG", "Planned end"},
        {"ENDDATECHGTO", "Forecast end"},
        {"EVM", "Earned value"},
        {"EVMRPT", "Earned value report as of \\*"},
        {"WLRPT", "Workload by resource"},
    };
    json cells = {{"B1", {{"value", "Captions"}, {"style", "title"}}},
                  {"B2", Header("Key")},
                  {"C2", Header("Text")}};
    int row = 3;
    for (const auto& [key, text] : texts) {
        cells["B" + std::to_string(row)] = key;
        cells["C" + std::to_string(row)] = text;
        ++row;
    }
    return {{"name", "Dictionary"},
            {"codeName", "wsDictionary"},
            {"columns", {{"A", {{"width", 1.5}}}, {"B", {{"width", 16}}}, {"C", {{"width", 34}}}}},
            {"cells", cells}};
}

}  // namespace

std::shared_ptr<sheethost::Workbook> NewBlankWorkbook(const BlankProject& project) {
    const std::vector<double> days =
        WorkingDays(project.firstDay, std::max(1, project.workingDays));
    const double minutes = std::round((days.back() + kWorkEnd - days.front() - kWorkStart) * 1440);
    const std::string lastChartColumn =
        sheethost::ColumnLetters(kCalendarFirstColumn + static_cast<int>(minutes) / kUnitMinutes);
    json names = json::object();
    const std::string bodyRange =
        "W" + std::to_string(kFirstTaskRow) + ":" + lastChartColumn + std::to_string(kLastTableRow);
    const json settings = SettingsSheet(names, bodyRange);
    const json book = {
        {"name", "Project.xlsx"},
        {"activeSheet", "WBS"},
        {"styles", Styles()},
        {"names", names},
        {"sheets",
         {TaskSheet(days, lastChartColumn), settings, CalendarSheet(days), ResourceSheet(),
          DictionarySheet()}},
    };
    std::string error;
    auto workbook = sheethost::LoadWorkbookJson(book.dump(), &error);
    if (!workbook) throw std::logic_error("the blank workbook is not a valid workbook: " + error);
    return workbook;
}
