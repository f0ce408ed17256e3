#include <cstdint>

#include "core/clock.h"
#include "values/values.h"
#include "wbs/task_status.h"

void ComputeTaskEvm(TaskRecord& task) {
    task.bac = task.ac = task.pv = task.ev = task.cv = task.sv = 0;
    task.cpi = task.spi = task.eac = task.etc = 0;
    task.bac = values::Val(task.pvText);
    task.ac = values::Val(task.acText);
    const double now = NowSerial();
    if (now < task.plannedStart) {
        return;
    }
    // Elapsed minutes against a budget read from the sheet until the end has passed, then the
    // whole budget: the report's PV column and the late test both count it this way.
    task.pv = task.plannedEnd > now
                  ? static_cast<double>(values::MinutesBetween(task.plannedStart, now))
                  : task.bac;
    const auto percent = static_cast<std::int32_t>(values::TextToInteger(task.percentText));
    task.ev = percent * task.bac / 100;
    task.sv = task.ev - task.pv;
    task.cv = task.ev - task.ac;
    if (task.ac != 0) task.cpi = task.ev / task.ac;
    if (task.pv != 0) task.spi = task.ev / task.pv;
    if (task.cpi != 0) task.eac = task.ac + (task.bac - task.ev) / task.cpi;
    task.etc = task.eac - task.ac;
}
