// Partial redraws for commands that change a few rows (task moves, sheet edits): only the rows
// concerned are updated and drawn again, then the connectors, which may join any two rows.
#include <string>

#include "core/engine_state.h"
#include "gantt/chart.h"
#include "gantt/drawing.h"
#include "gantt/gantt.h"
#include "settings/settings.h"
#include "wbs/wbs_update.h"

namespace {

// Updates the row's cells and draws the task's line again from scratch.
void RedrawTask(TaskRecord& task) {
    DeleteTaskShapes(task);
    UpdateTask(task);
    DrawTaskBars(task);
}

}  // namespace

bool DeleteRowShapes(std::int64_t row) {
    const XlObject sheet = EngineWbsSheet();
    WideString name = Widen(BarTemplateName() + std::to_string(row));
    name.push_back(OLESTR('A'));
    bool deleted = false;
    // The letters go on as NameNewShape hands them out, past "Z", and stop where it stops.
    for (; name.back() < kFirstSurrogate; ++name.back()) {
        const XlObject shape = sheet.ShapeByName(Narrow(name));
        if (shape.IsNothing()) {
            break;
        }
        shape.Delete();
        deleted = true;
    }
    return deleted;
}

bool DeleteTaskShapes(const TaskRecord& task) {
    return DeleteRowShapes(task.row);
}

void RedrawTaskBranch(const TaskRecord& task, bool redrawConnectors) {
    const std::string& separator = EngineSettings().wbsNoFormat;
    const std::string_view wbsNo = task.wbsNo;
    // Each ancestor's number is a prefix of the task's that ends before a separator.
    std::size_t end = separator.empty() ? std::string_view::npos : wbsNo.find(separator);
    for (std::int64_t level = 1; level <= task.level; ++level) {
        if (TaskRecord* ancestor = Tasks_ByWbs(wbsNo.substr(0, end))) {
            RedrawTask(*ancestor);
        }
        if (end == std::string_view::npos) {
            break;
        }
        end = wbsNo.find(separator, end + separator.size());
    }
    if (redrawConnectors) {
        DrawAllConnectors();
    }
}

void RedrawTasksFromRow(std::int64_t row) {
    if (const TaskRecord* task = Tasks_ByRow(row)) {
        RedrawTaskBranch(*task, false);
    }
    for (std::int64_t r = row + 1;; ++r) {
        const bool deleted = DeleteRowShapes(r);
        TaskRecord* task = Tasks_ByRow(r);
        if (task != nullptr) {
            UpdateTask(*task);
            DrawTaskBars(*task);
        }
        if (task == nullptr && !deleted) {
            break;
        }
    }
    DrawAllConnectors();
}
