#include <algorithm>
#include <string>
#include <vector>

#include "calendar/calendar.h"
#include "calendar/task_tests.h"
#include "core/clock.h"
#include "core/engine_state.h"
#include "core/strdict.h"
#include "reports/periods.h"
#include "reports/report_sheet.h"
#include "reports/reports.h"
#include "settings/settings.h"
#include "values/values.h"
#include "wbs/task_status.h"
#include "wbs/task_table.h"

namespace {

struct PeriodSums {
    double pv = 0.0;
    double ev = 0.0;
    double ac = 0.0;
};

// What the first step leaves for the second.
struct ProjectEvm {
    std::int32_t kind = 0;
    std::vector<std::string> labels;
    // Label text -> the period's sums, made at zero on first use.
    StrDict<PeriodSums> sums{Ownership::kOwnsRecords};
};

ProjectEvm& State() {
    // Never destroyed: unloading the library must not free what a report left half done.
    static auto* const state = new ProjectEvm;
    return *state;
}

PeriodSums& SumsOf(const std::string& label) {
    StrDict<PeriodSums>& sums = State().sums;
    if (PeriodSums* found = sums.Find(label)) return *found;
    auto* made = new PeriodSums;
    sums.Add(label, made);
    return *made;
}

constexpr const char* kCaptionKeys[] = {"PV", "EV", "AC", "SV", "CV", "SPI", "CPI"};
constexpr const char* kPeriodFormulas[] = {"=D#-C#", "=D#-E#"};
constexpr const char* kIndexExpressions[] = {"D#/C#", "D#/E#"};
constexpr int kFirstPeriodRow = 3;

// Spreads one task's budget, earned value and cost over the periods.
void SpreadTask(TaskRecord& task, double projectStart, double end, double today) {
    if (task.actualStart == 0) task.actualStart = task.plannedStart;
    ComputeTaskEvm(task);
    const std::vector<std::string>& labels = State().labels;
    const double duration = values::Val(task.durationText);
    const double budget = values::Val(task.pvText);
    const double until = task.actualEnd != 0 ? task.actualEnd : today;
    const bool started = task.actualStart != 0 && IsTaskStarted(task);
    const std::int64_t total = WorkdaysBetween(task.actualStart, until);
    double rate = 1.0;
    if (EngineSettings().resourceRateSwitch != 0) {
        const ResourceRecord* resource = FindResource(task.resourceCell);
        if (resource != nullptr && resource->rate > 0) rate = resource->rate;
    }
    for (std::size_t i = 0; i < labels.size(); ++i) {
        const PeriodSpan span = PeriodAt(labels, i, projectStart, end);
        const double lastDay = span.limit - 1;
        const std::int64_t plannedDays = WorkdaysBetween(std::max(span.start, task.plannedStart),
                                                         std::min(lastDay, task.plannedEnd));
        double pv = static_cast<double>(plannedDays) / duration * budget;
        double ev = 0.0;
        double ac = 0.0;
        if (started) {
            const std::int64_t inPeriod =
                WorkdaysBetween(std::max(span.start, task.actualStart), std::min(lastDay, until));
            const float share =
                total == 0 ? 0.0F : static_cast<float>(inPeriod) / static_cast<float>(total);
            ev = values::Val(task.percentText) / 100 * budget * share;
            ac = share * values::Val(task.acText);
        }
        PeriodSums& sums = SumsOf(labels[i]);
        sums.pv += pv * rate;
        sums.ev += ev * rate;
        sums.ac += ac * rate;
    }
}

void WritePeriodRow(const XlObject& sheet, const std::string& label, int row) {
    const PeriodSums* sums = State().sums.Find(label);
    if (sums == nullptr) return;
    sheet.Cell(row, 2).SetText("'" + label);
    int column = 3;
    for (const double figure : {sums->pv, sums->ev, sums->ac}) {
        sheet.Cell(row, column++).SetText(values::NumberText(figure));
    }
    for (const char* formula : kPeriodFormulas)
        sheet.Cell(row, column++).SetFormula(RowFormula(formula, row));
    for (const char* expression : kIndexExpressions) {
        sheet.Cell(row, column++)
            .SetFormula("=" + IfErrorFormula(RowFormula(expression, row), kEmptyText));
    }
}

// Below the period table, a copy of it whose values run on from period to period.
void WriteCumulativeTable(const XlObject& sheet, std::int64_t count, std::int64_t top) {
    sheet.RangeOf("B2:I" + std::to_string(count + 2)).Call(".Copy");
    sheet.Call(".Cells(%d,%d).Select", static_cast<std::int32_t>(top), 2);
    sheet.Call(".Paste");
    SetEdgeBorder(sheet.RangeOf(RowFormula("B#:I#", top + count)), kXlEdgeBottom, kXlMedium);
    for (const char* letter : {"C", "D", "E"}) {
        const std::string column(letter);
        for (std::int64_t k = 2; k <= count; ++k) {
            sheet.Cell(top + k, ColumnNumber(column))
                .SetFormula("=" + column + std::to_string(k + 2) + "+" + column +
                            std::to_string(top + k - 1));
        }
    }
}

// Earned value, cost and what derives from them have no figures after today; PV runs on.
void BlankFuturePeriods(const XlObject& sheet, std::int64_t count, std::int64_t top, double today) {
    const std::vector<std::string>& labels = State().labels;
    for (std::int64_t column = 4; column <= 9; ++column) {
        for (std::int64_t k = count; k >= 2; --k) {
            if (DateFromText(labels[static_cast<std::size_t>(k - 1)]) <= today) break;
            for (const std::int64_t row : {top + k, k + 2}) {
                const XlObject cell = sheet.Cell(row, column);
                cell.SetFormula("");
                cell.SetText("");
            }
        }
    }
}

}  // namespace

void PrepareProjectEvm(std::int32_t kind, std::int32_t step) {
    ProjectEvm& state = State();
    state.kind = kind;
    state.sums.Clear(true);
    ReadReportTasks();
    const double projectStart = EngineSettings().projectStart;
    const double end = LatestTaskDate(projectStart, true);
    state.labels = PeriodLabels(kind, step, projectStart, end);
    const double today = values::Fix(NowSerial());
    for (TaskRecord* task = Tasks_First(); task != nullptr; task = Tasks_Next(*task)) {
        // Recurring tasks and summaries carry no work of their own; undated tasks have no days.
        if (ParseTaskCycle(*task) || task->isLeaf == 0 || task->plannedStart == 0 ||
            task->plannedEnd == 0) {
            continue;
        }
        SpreadTask(*task, projectStart, end, today);
    }
}

void WriteProjectEvmReport() {
    ProjectEvm& state = State();
    const double now = NowSerial();
    const double today = values::Fix(now);
    const XlObject sheet = OpenReportSheet("EVM" + std::to_string(state.kind) + "_" +
                                           values::FormatDate(today, "yyyymmdd"));
    const ReportDictionary dictionary;
    int column = 3;
    for (const char* key : kCaptionKeys) dictionary.Write(sheet, 2, column++, key);

    const auto count = static_cast<std::int64_t>(state.labels.size());
    for (std::int64_t k = 1; k <= count; ++k) {
        WritePeriodRow(sheet, state.labels[static_cast<std::size_t>(k - 1)],
                       static_cast<int>(k + kFirstPeriodRow - 1));
    }
    const std::int64_t totals = count + 3;
    for (const char* letter : {"C", "D", "E", "F", "G", "H", "I"}) {
        const std::string column(letter);
        sheet.RangeOf(column + std::to_string(totals))
            .SetFormula("=SUM(" + column + "3:" + column + std::to_string(totals - 1) + ")");
    }

    const std::string r = std::to_string(totals);
    for (const char* box : {"B2:I", "C2:E", "H2:I"}) DrawBox(sheet.RangeOf(box + r));
    SetEdgeBorder(sheet.RangeOf("B2:I2"), kXlEdgeBottom, kXlMedium);
    const XlObject totalsRow = sheet.RangeOf("B" + r + ":I" + r);
    SetEdgeBorder(totalsRow, kXlEdgeTop, kXlMedium);
    CentreHeader(sheet.RangeOf("B2:I2"));
    FillHeader(totalsRow);
    const WideString title = EvmReportTitle(dictionary, now);
    FinishReportSheet(sheet, title);
    sheet.RangeOf("C3:I" + r).SetString("NumberFormatLocal", "0.00_ ");
    ZoomReport();
    const std::string beforeTotals = std::to_string(totals - 1);
    AddLessThanRed(sheet.RangeOf("F3:F" + beforeTotals), "0.0");
    AddLessThanRed(sheet.RangeOf("G3:G" + beforeTotals), "0.0");
    AddLessThanRed(sheet.RangeOf("H3:H" + beforeTotals), "1.0");
    AddLessThanRed(sheet.RangeOf("I3:I" + beforeTotals), "1.0");

    const std::int64_t top = totals + 2;
    WriteCumulativeTable(sheet, count, top);
    BlankFuturePeriods(sheet, count, top, today);
    const XlObject values =
        AddReportChart(sheet, title, RowFormula("B#:E", top) + std::to_string(top + count), 2);
    const XlObject indexes =
        AddReportChart(sheet, title,
                       RowFormula("B#:B", top) + std::to_string(top + count) +
                           RowFormula(",H#:I", top) + std::to_string(top + count),
                       2);
    // Side by side two rows below the cumulative table, so that neither hides the other or the
    // figures they draw.
    const double chartTop = sheet.Cell(top + count + 2, 2).GetTop();
    values.SetTop(chartTop);
    indexes.SetTop(chartTop);
    indexes.SetLeft(values.GetLeft() + values.GetWidth());
    state.sums.Clear(true);
}
