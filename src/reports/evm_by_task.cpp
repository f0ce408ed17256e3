#include <algorithm>
#include <cmath>
#include <string>

#include "core/clock.h"
#include "core/engine_state.h"
#include "reports/periods.h"
#include "reports/report_sheet.h"
#include "reports/reports.h"
#include "settings/settings.h"
#include "values/values.h"
#include "wbs/task_status.h"
#include "wbs/task_table.h"

namespace {

constexpr int kFirstDataRow = 3;
constexpr const char* kCaptionKeys[] = {"BAC", "PV",  "EV",  "AC",  "SV",         "CV",
                                        "SPI", "CPI", "EAC", "ETC", "ENDDATEORG", "ENDDATECHGTO"};
constexpr int kFirstCaptionColumn = 3;
// A forecast more than this many times the planned duration is shown as "?".
constexpr double kMostPlausibleRatio = 19;
// Beyond any calendar: such a forecast is shown as "?" too rather than walked day by day.
constexpr float kMostForecastDays = 1.0e6F;

// The end date the task's progress rate forecasts, "?" when it is implausible, empty when the
// rate changes nothing.
std::string ForecastEnd(const TaskRecord& task) {
    const bool bySpi = EngineSettings().forecastBySpi == 1;
    const auto index = static_cast<float>(bySpi ? task.spi : task.cpi);
    const std::int64_t days = values::TextToInteger(task.durationText);
    if (days == 0) return {};
    auto forecast = static_cast<float>(days);
    if (index != 0) {
        forecast = static_cast<float>(static_cast<double>(days) / index);
        forecast = std::ceil(forecast);
    }
    if (forecast == static_cast<float>(days)) return {};
    const bool plausible =
        std::trunc(forecast / static_cast<double>(days)) <= kMostPlausibleRatio && forecast > 0 &&
        forecast <= kMostForecastDays;
    if (plausible) {
        const double end = NthWorkday(task.actualStart, static_cast<std::int64_t>(forecast));
        return values::FormatDate(end, "yyyy/mm/dd");
    }
    return "?";
}

void WriteTaskRow(const XlObject& sheet, const TaskRecord& task, int row) {
    std::string label(static_cast<std::size_t>(4 * std::max<std::int64_t>(task.level - 1, 0)), ' ');
    label += task.wbsNo + BstrText(task.nameCell);
    sheet.Cell(row, 2).SetWide("value", Widen(label));
    int column = 3;
    for (const double figure : {task.bac, task.pv, task.ev, task.ac}) {
        sheet.Cell(row, column++).SetText(values::NumberText(figure));
    }
    sheet.Cell(row, 7).SetFormula(RowFormula("=E#-D#", row));
    sheet.Cell(row, 8).SetFormula(RowFormula("=E#-F#", row));
    sheet.Cell(row, 9).SetFormula("=" + IfErrorFormula(RowFormula("E#/D#", row), kEmptyText));
    sheet.Cell(row, 10).SetFormula("=" + IfErrorFormula(RowFormula("E#/F#", row), kEmptyText));
    sheet.Cell(row, 11).SetFormula("=" +
                                   IfErrorFormula(RowFormula("F#+(C#-E#)/J#", row), kEmptyText));
    sheet.Cell(row, 12).SetFormula("=" + IfErrorFormula(RowFormula("K#-F#", row), kEmptyText));
    sheet.Cell(row, 13).SetText(values::FormatDate(task.plannedEnd, "yyyy/mm/dd"));
    sheet.Cell(row, 14).SetText(ForecastEnd(task));
}

}  // namespace

std::int64_t EvmByTaskReport(std::int64_t reportNumber) {
    const double now = NowSerial();
    const std::string today = values::FormatDate(values::Fix(now), "yyyymmdd");
    const XlObject sheet = OpenReportSheet("EVM" + std::to_string(reportNumber) + "_" + today);
    const ReportDictionary dictionary;
    int column = kFirstCaptionColumn;
    for (const char* key : kCaptionKeys) dictionary.Write(sheet, 2, column++, key);

    ReadReportTasks();
    int row = kFirstDataRow;
    for (TaskRecord* task = Tasks_First(); task != nullptr; task = Tasks_Next(*task)) {
        ComputeTaskEvm(*task);
        // Tasks not begun have neither; a figure that is no number still earns its row.
        if (task->pv != 0 || task->ev != 0) WriteTaskRow(sheet, *task, row++);
    }
    const std::string last = std::to_string(row - 1);

    for (const char* box : {"B2:N", "C2:F", "I2:J", "M2:N"}) {
        DrawBox(sheet.RangeOf(box + last));
    }
    const XlObject header = sheet.RangeOf("B2:N2");
    SetEdgeBorder(header, kXlEdgeBottom, kXlMedium);
    CentreHeader(header);
    FinishReportSheet(sheet, EvmReportTitle(dictionary, now));
    sheet.RangeOf("C3:L" + last).SetString("NumberFormatLocal", "0.00_ ");
    ZoomReport();

    AddLessThanRed(sheet.RangeOf("G3:G" + last), "0.0");
    AddLessThanRed(sheet.RangeOf("H3:H" + last), "0.0");
    AddLessThanRed(sheet.RangeOf("I3:I" + last), "1.0");
    AddLessThanRed(sheet.RangeOf("J3:J" + last), "1.0");
    return 0;
}
