#include "wbs/visible_rows.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>

#include "core/engine_state.h"
#include "settings/settings.h"
#include "wbs/task_table.h"

namespace {

std::string RowKey(std::int64_t row) {
    char key[24];
    std::snprintf(key, sizeof key, ",%lld,", static_cast<long long>(row));
    return key;
}

}  // namespace

void ApplyVisibleRows(std::string_view list) {
    const TaskRecord* last = Tasks_Last();
    if (last == nullptr) {
        return;
    }
    const XlObject sheet = EngineWbsSheet();
    for (std::int64_t row = EngineSettings().firstTaskRow; row <= last->row; ++row) {
        // The key carries both commas, so ",5," never matches row 57.
        const bool visible = list.empty() || list.find(RowKey(row)) != std::string_view::npos;
        sheet.Put(".Rows(%d).EntireRow.Hidden=%b", static_cast<std::int32_t>(row),
                  visible ? FALSE : TRUE);
    }
}

std::string VisibleRowsText() {
    const TaskRecord* last = Tasks_Last();
    if (last == nullptr) {
        return {};
    }
    const XlObject sheet = EngineWbsSheet();
    const std::int64_t first = EngineSettings().firstTaskRow;
    // Asked of all task rows at once first: mostly none is hidden.
    if (first >= 1 && last->row <= kSheetRows &&
        sheet.RangeOf(std::to_string(first) + ":" + std::to_string(last->row))
                .GetTriState("Hidden") == XlObject::TriState::kFalse) {
        return {};
    }
    std::string list;
    bool anyHidden = false;
    for (std::int64_t row = first; row <= last->row; ++row) {
        if (sheet.GetNumberPath(".Rows(%d).EntireRow.Hidden", static_cast<std::int32_t>(row)) !=
            0.0) {
            anyHidden = true;
        } else {
            list += RowKey(row);
        }
    }
    return anyHidden ? list : std::string();
}

AllTaskRowsShown::AllTaskRowsShown(std::string filter) : filter_(std::move(filter)) {
    if (!filter_.empty()) {
        ApplyVisibleRows("");
    }
}

AllTaskRowsShown::~AllTaskRowsShown() {
    if (!filter_.empty()) {
        ApplyVisibleRows(filter_);
    }
}
