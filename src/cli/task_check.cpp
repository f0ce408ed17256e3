// The task-row half of the workbook check: it reads the rows through the engine's own task table,
// so a reference or a resource counts as found exactly when the commands would find it.
#include "calendar/resources.h"
#include "calendar/task_tests.h"
#include "cli/workbook_check.h"
#include "com/text.h"
#include "core/engine_state.h"
#include "settings/settings.h"
#include "wbs/task_table.h"
#include "wbs/wbs_update.h"
#include "workbook/workbook.h"

namespace {

std::string TaskCell(const TaskRecord& task, std::int64_t column) {
    return EngineSettings().wbsSheetName + "!" + ColumnLetters(column) + std::to_string(task.row);
}

std::string TaskName(const TaskRecord& task) {
    return "task " + task.wbsNo + " '" + BstrText(task.nameCell) + "'";
}

void CheckPredecessorNames(const TaskRecord& task, std::vector<Finding>& findings) {
    const std::string& list = task.predecessors;
    if (list.empty()) return;
    for (std::size_t start = 0;;) {
        const std::size_t end = list.find(',', start);
        const std::string piece = list.substr(start, end == std::string::npos ? end : end - start);
        const LinkReference link = ParseLink(piece);
        if (Tasks_Find(link.reference) == nullptr) {
            findings.push_back(Finding{
                false, TaskCell(task, EngineSettings().predecessorsColNo),
                "the predecessor '" + piece + "' of " + TaskName(task) +
                    " names no task (give a task code or WBS number, then FS, FF, SS or SF; "
                    "no blanks)"});
        }
        if (end == std::string::npos) return;
        start = end + 1;
    }
}

void CheckOrder(const TaskRecord& task, double start, double end, std::int64_t endColumn,
                std::string_view which, std::vector<Finding>& findings) {
    if (start != 0 && end != 0 && end < start) {
        findings.push_back(Finding{
            false, TaskCell(task, endColumn),
            "the " + std::string(which) + " end of " + TaskName(task) + " is before its start"});
    }
}

}  // namespace

std::vector<Finding> CheckTaskRows() {
    std::vector<Finding> findings;
    const SettingsRecord& settings = EngineSettings();
    for (TaskRecord* task = Tasks_First(); task != nullptr; task = Tasks_Next(*task)) {
        TaskRecord_ReadRow(*task);
        CheckPredecessorNames(*task, findings);
        if (task->isLeaf == 0) continue;
        CheckOrder(*task, task->plannedStart, task->plannedEnd, settings.plannedEndDateColNo,
                   "planned", findings);
        CheckOrder(*task, task->actualStart, task->actualEnd, settings.actualEndDateColNo, "actual",
                   findings);
        const std::string resource = BstrText(task->resourceCell);
        if (!resource.empty() && FindResource(task->resourceCell) == nullptr &&
            !ParseTaskCycle(*task)) {
            findings.push_back(Finding{
                false, TaskCell(*task, settings.resourceColNo),
                "the resource '" + resource + "' of " + TaskName(*task) +
                    " is not on the resource sheet (column C from row 4) and is no cycle code "
                    "(W or M)"});
        }
    }
    return findings;
}
