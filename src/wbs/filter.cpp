#include "wbs/filter.h"

#include <cctype>
#include <charconv>
#include <string_view>
#include <vector>

#include "calendar/task_tests.h"
#include "core/engine_state.h"
#include "settings/settings.h"
#include "values/values.h"
#include "wbs/task_status.h"
#include "wbs/visible_rows.h"

namespace {

std::vector<std::string_view> SplitAtCommas(std::string_view text) {
    std::vector<std::string_view> pieces;
    for (std::size_t at = 0;;) {
        const std::size_t comma = text.find(',', at);
        pieces.push_back(text.substr(at, comma - at));
        if (comma == std::string_view::npos) {
            return pieces;
        }
        at = comma + 1;
    }
}

// A predecessor text as the filter compares it: upper case, with every F and S removed. That
// strips the link types ("3FS" -> "3"), and every F and S of a task code with them ("FIX" -> "IX").
std::string WithoutLinkLetters(std::string_view text) {
    std::string result;
    for (const char c : text) {
        const auto upper = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        if (upper != 'F' && upper != 'S') {
            result += upper;
        }
    }
    return result;
}

std::string RowText(std::int64_t row) {
    return std::to_string(row) + ",";
}

bool IsNumber(std::string_view text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return !text.empty() && error == std::errc() && end == text.data() + text.size();
}

bool HasListedResource(const TaskRecord& task, const FilterSetting& setting) {
    const SettingsRecord& settings = EngineSettings();
    const XlObject sheet = EngineWbsSheet();
    for (std::int64_t i = 0; i < settings.resourceToPvCols; ++i) {
        const std::string resource = sheet.Cell(task.row, settings.resourceColNo + i).GetValue();
        if (!resource.empty() && setting.text.find("," + resource + ",") != std::string::npos) {
            return true;
        }
    }
    return false;
}

// Overlap of a span with from..to; an open span (no end yet) matches when it starts inside.
bool InRange(const TaskRecord& task, std::string_view argument) {
    const std::vector<std::string_view> parts = SplitAtCommas(argument);
    const std::string_view key = parts[0];
    const double from = parts.size() > 1 ? values::Val(parts[1]) : 0;
    const double to = parts.size() > 2 ? values::Val(parts[2]) : 0;
    if (IsNumber(key)) {
        if (key == "1") {
            return task.plannedStart != 0 && task.plannedEnd != 0 &&
                   !(task.plannedStart > to || from > task.plannedEnd);
        }
        if (key == "2") {
            if (task.actualStart == 0) return false;
            if (task.actualEnd == 0) return from <= task.actualStart && task.actualStart <= to;
            return !(task.actualStart > to || from > task.actualEnd);
        }
        return false;
    }
    // Any other key names a column through the settings cell "WS" + key + "Col".
    const std::string letters =
        EngineSettingsSheet().RangeOf("WS" + std::string(key) + "Col").GetValue();
    const double value = EngineWbsSheet().Cell(task.row, ColumnNumber(letters)).GetValueNum();
    if (value == 0) return false;
    if (from == 0) return value <= to;
    if (to == 0) return value >= from;
    return from <= value && value <= to;
}

}  // namespace

FilterSetting ParseFilterSetting(std::string text) {
    FilterSetting setting;
    const std::size_t comma = text.find(',');
    if (comma != std::string::npos) {
        setting.mode = values::TextToInteger(std::string_view(text).substr(0, comma));
        setting.argument = text.substr(comma + 1);
    }
    setting.text = std::move(text);
    return setting;
}

FilterSetting ReadFilterSetting() {
    return ParseFilterSetting(EngineSettingsSheet().RangeOf(kFilterCell).GetValue());
}

void FilterCommand() {
    const std::string list = BuildFilterList();
    ApplyVisibleRows(list);
    EngineSettings().filterRows = list;
}

std::string BuildFilterList() {
    const FilterSetting setting = ReadFilterSetting();
    if (setting.mode == 0) {
        return {};
    }
    // Codes, predecessors and dates of every task are needed before the first test: a match
    // keeps tasks visible that come later in the sheet.
    for (TaskRecord* task = Tasks_First(); task != nullptr; task = Tasks_Next(*task)) {
        TaskRecord_ReadRow(*task);
    }
    const SettingsRecord& settings = EngineSettings();
    const bool showSummary = settings.filterOptionShowSummary == 1;
    std::string list = ",";
    for (TaskRecord* task = Tasks_First(); task != nullptr; task = Tasks_Next(*task)) {
        if (!MatchesFilter(*task, setting)) {
            continue;
        }
        list += RowText(task->row);
        // The summary skeleton of mode 6 is already what it shows.
        if (setting.mode != 6 && showSummary) {
            list += Tasks_AncestorRows(task->row);
        }
        if (settings.filterOptionShowDependence != 1) {
            continue;
        }
        list += DependentRows(task->row);
        std::string predecessors = task->predecessors;
        predecessors.erase(predecessors.find_last_not_of(' ') + 1);
        if (predecessors.empty()) {
            continue;
        }
        for (const std::string_view piece : SplitAtCommas(predecessors)) {
            if (const TaskRecord* predecessor = Tasks_Find(WithoutLinkLetters(piece))) {
                list += RowText(predecessor->row);
                if (showSummary) {
                    list += Tasks_AncestorRows(predecessor->row);
                }
            }
        }
    }
    return list;
}

bool MatchesFilter(TaskRecord& task, const FilterSetting& setting) {
    if (setting.mode != 6 && task.isLeaf == 0) {
        return false;
    }
    ComputeTaskEvm(task);
    switch (setting.mode) {
        case 1:
            return HasListedResource(task, setting);
        case 2:
            return InRange(task, setting.argument);
        case 3:
            return TaskHasType(task) && !ParseTaskCycle(task);
        case 4:
            return !IsTaskComplete(task) && task.pv != 0;
        case 5:
            return IsTaskComplete(task);
        case 6:
            return task.level == 1 || (setting.argument == "1" && task.isLeaf == 0);
        case 7:
            return !task.predecessors.empty();
        case 8:
            return task.cpi < 1.0 && task.cpi != 0;
        case 9:
            return (task.spi > 1.0 && task.pv != 0) || (task.ev > 0 && task.pv == 0);
        case 10:
            return task.spi < 1.0 && task.pv != 0;
        case 11:
            return IsTaskInFirstHalf(task);
        case 12:
            return IsTaskInLastHalf(task);
        case 13:
            return ParseTaskCycle(task);
        default:
            return false;
    }
}

std::string DependentRows(std::int64_t row) {
    const TaskRecord* task = Tasks_ByRow(row);
    if (task == nullptr) {
        return {};
    }
    // The code is compared as written: one with lower-case letters finds no dependents, since
    // the predecessor texts are compared in upper case.
    const std::string key = "," + TaskNameHead(*task) + ",";
    std::string rows;
    for (const TaskRecord* other = Tasks_First(); other != nullptr; other = Tasks_Next(*other)) {
        if (("," + WithoutLinkLetters(other->predecessors) + ",").find(key) != std::string::npos) {
            rows += RowText(other->row);
        }
    }
    return rows;
}
