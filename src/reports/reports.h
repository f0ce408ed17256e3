// The reports: earned value by task, earned value of the whole project by period with its two
// charts, and the workload of every resource by period with its chart. Each writes a worksheet of
// its own into the bound workbook, made or emptied on every run. They work on the task table as
// the last command loaded it, reading each task's row afresh.
#pragma once

#include <cstdint>

// One row per task that has a planned or an earned value, on the sheet "EVM<n>_<yyyymmdd>" of
// today. Answers 0.
std::int64_t EvmByTaskReport(std::int64_t reportNumber);

// The project's planned value, earned value and actual cost per period: `kind` 1 is a period
// every `step` days, 2 weeks from Monday, 3 calendar months. The first step spreads the tasks
// over the periods, the second writes the sheet "EVM<kind>_<yyyymmdd>" and its charts.
void PrepareProjectEvm(std::int32_t kind, std::int32_t step);
void WriteProjectEvmReport();

// Every resource's load per period, on the sheet "Workload<kind>" (kind and step as above). The
// first step spreads each assignment's load evenly over the task's days, the second writes it.
void CollectWorkload();
void WriteWorkloadReport(std::int32_t kind, std::int32_t step);
