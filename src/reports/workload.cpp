#include <cmath>
#include <string>
#include <vector>

#include "calendar/calendar.h"
#include "calendar/task_tests.h"
#include "core/engine_state.h"
#include "core/strdict.h"
#include "reports/periods.h"
#include "reports/report_sheet.h"
#include "reports/reports.h"
#include "settings/settings.h"
#include "values/values.h"
#include "wbs/task_table.h"

namespace {

struct DayLoad {
    double load = 0.0;
};

struct ResourceLoad {
    WideString text;  // the resource cell as the task row names it
    // Day as "yyyy/mm/dd" -> the load of that day.
    StrDict<DayLoad> days{Ownership::kOwnsRecords};
};

// Resource text -> its loads, in order of first appearance. Filled by the first step and freed by
// the second.
StrDict<ResourceLoad>& Loads() {
    // Never destroyed: unloading the library must not free what a report left half done.
    static auto* const loads = new StrDict<ResourceLoad>(Ownership::kOwnsRecords);
    return *loads;
}

ResourceLoad& LoadOf(const WideString& resource) {
    const std::string key = Narrow(resource);
    if (ResourceLoad* found = Loads().Find(key)) return *found;
    auto* made = new ResourceLoad;
    made->text = resource;
    Loads().Add(key, made);
    return *made;
}

// The load spread evenly over the task's working days from `start`. Days past `lastDay` are in
// no period of the report, so the walk stops there.
void Spread(const WideString& resource, double load, std::int64_t days, double start,
            double lastDay) {
    if (days <= 0) return;
    ResourceLoad& record = LoadOf(resource);
    const double perDay = load / static_cast<double>(days);
    std::int64_t counted = 0;
    std::int64_t adjust = 0;
    for (double day = start; counted < days && std::floor(day) <= lastDay; day += 1.0) {
        if (CountWorkdays(day, day, nullptr, adjust) == 0) continue;
        ++counted;
        const std::string key = values::FormatDate(day, "yyyy/mm/dd");
        DayLoad* dayLoad = record.days.Find(key);
        if (dayLoad == nullptr) {
            dayLoad = new DayLoad;
            record.days.Add(key, dayLoad);
        }
        dayLoad->load += perDay;
    }
}

std::string Trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// The resource slots and loads of one task row. Without load columns the task's first resource
// carries its planned work.
void CollectRow(const TaskRecord& task, double lastDay) {
    const SettingsRecord& settings = EngineSettings();
    const XlObject sheet = EngineWbsSheet();
    const bool hasLoads = settings.loadColNo > 0;
    const std::int64_t slots = hasLoads ? settings.resourceToPvCols : 1;
    for (std::int64_t j = 0; j < slots; ++j) {
        const WideString resource =
            sheet.Cell(task.row, settings.resourceColNo + j).GetWide("Value");
        if (resource.empty()) continue;
        const std::string loadText =
            hasLoads ? sheet.Cell(task.row, settings.loadColNo + j).GetText() : task.pvText;
        if (Trimmed(loadText).empty()) continue;
        Spread(resource, values::Val(loadText), values::TextToInteger(task.durationText),
               task.plannedStart, lastDay);
    }
}

// "##################.0000": four decimals, no zero before the point.
std::string LoadText(double sum) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.4f", sum);
    std::string text(buffer);
    if (text.starts_with("0.")) text.erase(0, 1);
    if (text.starts_with("-0.")) text.erase(1, 1);
    return text;
}

double SumOver(const ResourceLoad& record, const PeriodSpan& span) {
    double sum = 0.0;
    for (double day = span.start; day < span.limit; day += 1.0) {
        if (const DayLoad* load = record.days.Find(values::FormatDate(day, "yyyy/mm/dd"))) {
            sum += load->load;
        }
    }
    return sum;
}

}  // namespace

void CollectWorkload() {
    Loads().Clear(true);
    ReadReportTasks();
    const SettingsRecord& settings = EngineSettings();
    const double lastDay = std::floor(LatestTaskDate(settings.projectStart, false));
    // Every task row, whether or not the table's border reaches it.
    for (TaskRecord* task = Tasks_First(); task != nullptr; task = Tasks_Next(*task)) {
        if (ParseTaskCycle(*task) || values::Val(task->pvText) <= 0 || task->isLeaf == 0 ||
            task->plannedStart == 0 || task->plannedEnd == 0) {
            continue;
        }
        CollectRow(*task, lastDay);
    }
}

void WriteWorkloadReport(std::int32_t kind, std::int32_t step) {
    const XlObject sheet = OpenReportSheet("Workload" + std::to_string(kind));
    const double projectStart = EngineSettings().projectStart;
    const double end = LatestTaskDate(projectStart, false);
    const std::vector<std::string> labels = PeriodLabels(kind, step, projectStart, end);
    for (std::size_t i = 0; i < labels.size(); ++i) {
        sheet.Cell(2, static_cast<std::int64_t>(i) + 3).SetText(labels[i]);
    }
    const std::string lastLetters = ColumnLetters(static_cast<std::int64_t>(labels.size()) + 2);

    StrDict<ResourceLoad>& loads = Loads();
    const std::int64_t count = loads.Count();
    for (std::int64_t n = 1; n <= count; ++n) {
        ResourceLoad& record = *loads.ItemAt(n);
        sheet.Cell(n + 2, 2).SetWide("Value", record.text);
        for (std::size_t i = 0; i < labels.size(); ++i) {
            const double sum = SumOver(record, PeriodAt(labels, i, projectStart, end));
            sheet.Cell(n + 2, static_cast<std::int64_t>(i) + 3).SetText(LoadText(sum));
        }
        record.days.Clear(true);
    }
    const std::int64_t totals = count + 3;
    for (std::int64_t column = 3; column <= static_cast<std::int64_t>(labels.size()) + 2;
         ++column) {
        const std::string letters = ColumnLetters(column);
        sheet.Cell(totals, column)
            .SetFormula("=SUM(" + letters + "3:" + letters + std::to_string(totals - 1) + ")");
    }

    const std::string r = std::to_string(totals);
    DrawBox(sheet.RangeOf("B2:" + lastLetters + r));
    DrawBox(sheet.RangeOf("B3:" + lastLetters + std::to_string(totals - 1)));
    FillHeader(sheet.RangeOf("B2:" + lastLetters + "2"));
    FillHeader(sheet.RangeOf("B" + r + ":" + lastLetters + r));
    const WideString title = ReportDictionary().Text("WLRPT");
    FinishReportSheet(sheet, title);
    ZoomReport();

    const XlObject chart =
        AddReportChart(sheet, title, "B2:" + lastLetters + std::to_string(count + 2), 1);
    chart.SetTop(sheet.Cell(count + 5, 2).GetTop());
    loads.Clear(true);
}
