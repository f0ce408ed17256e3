#include "wbs/task_table.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "calendar/task_tests.h"
#include "core/engine_state.h"
#include "settings/settings.h"
#include "values/case_fold.h"
#include "values/values.h"
#include "workbook/workbook.h"

namespace {

constexpr std::int64_t kInitialPoolSize = 200;

std::string_view TrimTrailingBlanks(std::string_view text) {
    const auto end = text.find_last_not_of(' ');
    return end == std::string_view::npos ? std::string_view() : text.substr(0, end + 1);
}

// Task rows are read this many at a time while the table loads.
constexpr std::int64_t kNameBlockRows = 512;

// The ten name cells of sheet rows first..last, in one call.
CellValues ReadNameCells(std::int64_t firstRow, std::int64_t lastRow) {
    const std::int64_t nameColumn = EngineSettings().taskNameColNo;
    return ReadCellBlock(EngineWbsSheet(), firstRow, nameColumn, lastRow,
                         nameColumn + kNameColumns - 1);
}

// Row `r` of a block of name cells holds a name: text other than blanks in any of them.
bool HasName(const CellValues& names, std::int64_t r) {
    for (int offset = 0; offset < kNameColumns; ++offset) {
        if (!TrimTrailingBlanks(names.Text(r, offset)).empty()) {
            return true;
        }
    }
    return false;
}

// The name cells of the task rows and of the row below the last, taken from the sheet a block of
// rows at a time as the load reaches them.
class NameCells {
  public:
    explicit NameCells(std::int64_t firstRow) : firstRow_(firstRow) {}

    // Row i counts from the first task row.
    const CellValues& BlockOf(std::int64_t i) {
        const std::int64_t block = i / kNameBlockRows;
        while (static_cast<std::int64_t>(blocks_.size()) <= block) {
            const std::int64_t top =
                firstRow_ + static_cast<std::int64_t>(blocks_.size()) * kNameBlockRows;
            blocks_.push_back(ReadNameCells(top, top + kNameBlockRows - 1));
        }
        return blocks_[static_cast<std::size_t>(block)];
    }
    bool Named(std::int64_t i) { return HasName(BlockOf(i), i % kNameBlockRows); }
    std::string Text(std::int64_t i, int offset) {
        return BlockOf(i).Text(i % kNameBlockRows, offset);
    }

  private:
    std::int64_t firstRow_;
    std::vector<CellValues> blocks_;
};

bool InTable(const TaskRecord& record) {
    return Tasks_ByRow(record.row) == &record;
}

// The key a task is found by its code under.
std::u32string CodeKey(const TaskRecord& record) {
    return values::FoldedText(TaskNameHead(record));
}

// Tasks without a code (a name not yet read, or one that starts with a separator) are not
// indexed: they would all share one list, and each task read afterwards would leave it with a scan
// of the tasks behind it. The rare look-up of the empty code walks the tasks instead.
void IndexCode(TaskTable& table, TaskRecord& record, const std::u32string& code) {
    if (code.empty()) {
        return;
    }
    auto& tasks = table.byCode[code];
    const auto at = std::ranges::upper_bound(tasks, record.row, {}, &TaskRecord::row);
    tasks.insert(at, &record);
}

void UnindexCode(TaskTable& table, TaskRecord& record, const std::u32string& code) {
    const auto entry = table.byCode.find(code);
    if (entry == table.byCode.end()) {
        return;
    }
    std::erase(entry->second, &record);
    if (entry->second.empty()) {
        table.byCode.erase(entry);
    }
}

// Places a time of day read from the task sheet on the task's calendar day. A time earlier than the
// day's working start belongs to the next calendar day: the working period runs past midnight.
double OnCalendarDay(double timeOfDay, const CalendarDay& day) {
    if (timeOfDay == 0.0) {
        return 0.0;
    }
    const double placed = timeOfDay + day.date;
    if (values::SerialToDateTime(placed).hour < values::SerialToDateTime(day.start).hour) {
        return placed + 1.0;
    }
    return placed;
}

// The task rows run from the first task row down to the first row without a name.
std::int64_t CountNamedRows(NameCells& names) {
    std::int64_t count = 0;
    while (count < kMaxTaskRows && names.Named(count)) {
        ++count;
    }
    return count;
}

// Rows 1..taskCount are derived from the sheet, including the row just below the last task, whose
// counters feed only the leaf test of the last task. Row 0 is always the first top-level task,
// whatever column its name is in.
void DeriveOutline(TaskTable& table, NameCells& names) {
    auto& outline = table.outline;
    for (std::int64_t i = 0; i <= table.taskCount; ++i) {
        outline[i].fill(0);
    }
    outline[0][0] = 1;
    // The top level counts any text as a name, blanks included; deeper levels trim them.
    for (std::int64_t i = 1; i <= table.taskCount; ++i) {
        const bool named = !names.Text(i, 0).empty();
        outline[i][0] = outline[i - 1][0] + (named ? 1 : 0);
    }
    for (int j = 1; j < kNameColumns; ++j) {
        for (std::int64_t i = 1; i <= table.taskCount; ++i) {
            const std::string text = names.Text(i, j);
            if (!TrimTrailingBlanks(text).empty()) {
                outline[i][j] = outline[i - 1][j] + 1;
                continue;
            }
            outline[i][j] = outline[i - 1][j];
            // A new parent began on this row, or the row is not below that level at all.
            if (outline[i][j - 1] > outline[i - 1][j - 1] || outline[i][j - 1] == 0) {
                outline[i][j] = 0;
            }
        }
    }
}

// The pool never shrinks. Growing starts at the current size, so the first new record repeats the
// key of the last existing one; records are taken by index, which keeps them all distinct.
void GrowPool(TaskTable& table) {
    if (table.poolSize >= table.taskCount) {
        return;
    }
    for (std::int64_t n = table.poolSize; n <= table.taskCount; ++n) {
        table.pool.Add(std::to_string(n), new TaskRecord());
    }
    table.poolSize = table.taskCount;
}

std::int64_t GroupIndex(std::string_view wbsNo, const SettingsRecord& settings) {
    std::string_view first = wbsNo;
    if (!settings.wbsNoFormat.empty()) {
        first = wbsNo.substr(0, wbsNo.find(settings.wbsNoFormat));
    }
    return values::TextToInteger(first) + 1 - settings.wbsNoBegin;
}

}  // namespace

void TaskTable_Init() {
    auto table = std::make_unique<TaskTable>();
    for (std::int64_t n = 1; n <= kInitialPoolSize; ++n) {
        table->pool.Add(std::to_string(n), new TaskRecord());
    }
    table->poolSize = kInitialPoolSize;
    TaskTable_Free();
    Engine().tasks = table.release();
}

void TaskTable_Free() {
    delete Engine().tasks;
    Engine().tasks = nullptr;
}

void TaskTable_Load() {
    TaskTable& table = EngineTasks();
    const SettingsRecord& settings = EngineSettings();
    NameCells names(settings.firstTaskRow);
    table.taskCount = CountNamedRows(names);
    DeriveOutline(table, names);
    GrowPool(table);
    table.byWbs.Clear(false);
    table.byCode.clear();
    for (std::int64_t k = 0; k < table.taskCount; ++k) {
        TaskRecord& record = *table.pool.ItemAt(k + 1);
        record.row = settings.firstTaskRow + k;
        record.wbsNo = Outline_WbsText(k);
        record.level = WbsLevel(record.wbsNo);
        record.isLeaf = Outline_IsLeaf(record);
        record.groupIndex = GroupIndex(record.wbsNo, settings);
        table.byWbs.Add(record.wbsNo, &record);
        IndexCode(table, record, CodeKey(record));
    }
}

void TaskRecord_ReadRow(TaskRecord& record) {
    const SettingsRecord& settings = EngineSettings();
    const std::int64_t nameColumn = settings.taskNameColNo + record.level - 1;
    // The whole row from the leftmost to the rightmost column read, in one call.
    const std::int64_t columns[] = {nameColumn,
                                    settings.taskTypeColNo,
                                    settings.resourceColNo,
                                    settings.pvByTaskColNo,
                                    settings.acByTaskColNo,
                                    settings.plannedStartDateColNo,
                                    settings.plannedEndDateColNo,
                                    settings.actualStartDateColNo,
                                    settings.actualEndDateColNo,
                                    settings.percentCompleteColNo,
                                    settings.predecessorsColNo};
    // Named bounds rather than a structured binding: older compilers cannot capture bindings.
    const auto bounds = std::ranges::minmax(columns);
    const std::int64_t left = bounds.min;
    const CellValues row =
        ReadCellBlock(EngineWbsSheet(), record.row, left, record.row, bounds.max);
    const auto text = [&](std::int64_t column) { return row.Text(0, column - left); };
    const auto wide = [&](std::int64_t column) { return row.Wide(0, column - left); };
    const auto number = [&](std::int64_t column) { return row.Number(0, column - left); };

    // The name decides the task's code: the index moves the record to its new code.
    // A code that stays keeps its place: taking a task out of the list of the tasks that share
    // its code and putting it back on every reading scanned the list each time.
    const bool indexed = InTable(record);
    const std::u32string oldCode = indexed ? CodeKey(record) : std::u32string();
    BstrSet(record.nameCell, wide(nameColumn));
    if (indexed) {
        if (std::u32string code = CodeKey(record); code != oldCode) {
            UnindexCode(EngineTasks(), record, oldCode);
            IndexCode(EngineTasks(), record, code);
        }
    }
    BstrSet(record.typeCell, wide(settings.taskTypeColNo));
    BstrSet(record.resourceCell, wide(settings.resourceColNo));
    record.pvText = text(settings.pvByTaskColNo);
    record.acText = text(settings.acByTaskColNo);
    record.plannedStart = number(settings.plannedStartDateColNo);
    record.plannedEnd = number(settings.plannedEndDateColNo);
    record.actualStart = number(settings.actualStartDateColNo);
    record.actualEnd = number(settings.actualEndDateColNo);
    record.percentText = text(settings.percentCompleteColNo);
    record.predecessors = text(settings.predecessorsColNo);

    const CalendarDay* day = CalendarDayAt(record.groupIndex);
    if (day == nullptr) {
        // Without a calendar there is no day to place the times on; the starts count as unset.
        record.plannedStart = 0.0;
        record.actualStart = 0.0;
        return;
    }
    record.plannedStart = OnCalendarDay(record.plannedStart, *day);
    record.plannedEnd = OnCalendarDay(record.plannedEnd, *day);
    record.actualStart = OnCalendarDay(record.actualStart, *day);
    record.actualEnd = OnCalendarDay(record.actualEnd, *day);
}

TaskRecord* Tasks_First() {
    return EngineTasks().byWbs.ItemAt(1);
}

TaskRecord* Tasks_Last() {
    const auto& byWbs = EngineTasks().byWbs;
    return byWbs.ItemAt(byWbs.Count());
}

TaskRecord* Tasks_Next(const TaskRecord& record) {
    return Tasks_ByRow(record.row + 1);
}

TaskRecord* Tasks_ByRow(std::int64_t row) {
    return EngineTasks().byWbs.ItemAt(row - EngineSettings().firstTaskRow + 1);
}

TaskRecord* Tasks_ByWbs(std::string_view wbsText) {
    return EngineTasks().byWbs.Find(wbsText);
}

TaskRecord* Tasks_ByCode(std::string_view code) {
    if (code.empty()) {
        for (TaskRecord* task = Tasks_First(); task != nullptr; task = Tasks_Next(*task)) {
            if (TaskNameHead(*task).empty()) {
                return task;
            }
        }
        return nullptr;
    }
    const auto& byCode = EngineTasks().byCode;
    const auto entry = byCode.find(values::FoldedText(code));
    return entry == byCode.end() ? nullptr : entry->second.front();
}

TaskRecord* Tasks_Find(std::string_view reference) {
    TaskRecord* task = Tasks_ByCode(reference);
    return task != nullptr ? task : Tasks_ByWbs(reference);
}

std::string Tasks_AncestorRows(std::int64_t row) {
    const TaskRecord* task = Tasks_ByRow(row);
    if (task == nullptr) {
        return {};
    }
    // Walking up the sheet, each task less deep than the last one found is the next ancestor.
    std::string rows;
    std::int64_t level = task->level;
    for (std::int64_t above = row - 1; level > 1; --above) {
        const TaskRecord* candidate = Tasks_ByRow(above);
        if (candidate == nullptr) {
            break;
        }
        if (candidate->level < level) {
            rows += std::to_string(candidate->row) + ",";
            level = candidate->level;
        }
    }
    return rows;
}

std::int64_t TaskRowCount() {
    NameCells names(EngineSettings().firstTaskRow);
    return CountNamedRows(names);
}

bool IsTaskRow(std::int64_t row) {
    return HasName(ReadNameCells(row, row), 0);
}

std::int64_t WbsLevel(std::string_view wbsText) {
    // One more than the commas once every separator has become a comma (left to right, without
    // overlaps), so a comma written into a WBS text separates components too.
    const std::string_view separator = EngineSettings().wbsNoFormat;
    std::int64_t commas = 0;
    for (std::size_t at = 0; at < wbsText.size();) {
        if (!separator.empty() && wbsText.substr(at).starts_with(separator)) {
            ++commas;
            at += separator.size();
        } else {
            commas += wbsText[at] == ',' ? 1 : 0;
            ++at;
        }
    }
    return commas + 1;
}

std::string Outline_WbsText(std::int64_t i) {
    const SettingsRecord& settings = EngineSettings();
    const auto& counters = EngineTasks().outline[i];
    std::string text = std::to_string(settings.wbsNoBegin + counters[0] - 1);
    for (int j = 1; j <= kNameColumns && counters[j] >= 1; ++j) {
        text += settings.wbsNoFormat + std::to_string(counters[j]);
    }
    return text;
}

std::int64_t Outline_IsLeaf(const TaskRecord& record) {
    const std::int64_t next = record.row - EngineSettings().firstTaskRow + 1;
    if (next < 0 || next > kMaxTaskRows || record.level < 0 || record.level > kNameColumns) {
        return 1;
    }
    return EngineTasks().outline[next][record.level] == 0 ? 1 : 0;
}

bool IsDescendant(const TaskRecord& parent, const TaskRecord& other) {
    return other.wbsNo.starts_with(parent.wbsNo);
}

bool IsChild(const TaskRecord& parent, const TaskRecord& other) {
    return other.level == parent.level + 1;
}
