// The settings and task-row readers, fed from a fuzzed workbook: the sample workbook whose
// settings cells and task-sheet cells the input rewrites. Lines 1 to 40 are the values of the
// settings cells C3 to C42 (a line that is wholly a number is stored as a number); the lines after
// them are rows of the task sheet from row 1, their cells separated by tabs.
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/calendar.h"
#include "com/com.h"
#include "core/engine_state.h"
#include "engine/exports.h"
#include "engine/refresh.h"
#include "sheethost/sheethost.h"
#include "wbs/task_table.h"

namespace {

constexpr int kSettingsRows = 40;
constexpr int kFirstSettingsRow = 3;
constexpr int kSettingsColumn = 3;
constexpr int kMaxRows = 200;
constexpr int kMaxColumns = 40;
// The rows of WSLastCol and WSFirstTaskRow. The border search runs from the first task row to
// the sheet's last row unless the last column is a column; so that each input takes milliseconds,
// these two take only short values.
constexpr int kLastColRow = 5;
constexpr int kFirstTaskRowRow = 10;

std::vector<std::string_view> Split(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    for (std::size_t start = 0; start <= text.size();) {
        const auto end = std::min(text.find(separator, start), text.size());
        pieces.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return pieces;
}

sheethost::Value CellValue(std::string_view text) {
    const std::string copy(text);
    char* end = nullptr;
    const double number = std::strtod(copy.c_str(), &end);
    if (!copy.empty() && end == copy.c_str() + copy.size()) return number;
    return copy;
}

const sheethost::Workbook& Sample() {
    static const auto book = [] {
        std::ifstream in(VANTORA_FUZZ_SAMPLE_WORKBOOK);
        const std::string text{std::istreambuf_iterator<char>(in), {}};
        return sheethost::LoadWorkbookJson(text);
    }();
    return *book;
}

std::shared_ptr<sheethost::Workbook> FuzzedWorkbook(std::string_view input) {
    auto book = std::make_shared<sheethost::Workbook>(Sample());
    for (auto& sheet : book->sheets) sheet = std::make_shared<sheethost::Sheet>(*sheet);
    sheethost::Sheet& settings = *sheethost::FindSheet(*book, "Settings");
    sheethost::Sheet& wbs = *book->sheets[0];
    const std::vector<std::string_view> lines = Split(input, '\n');
    for (std::size_t k = 0; k < lines.size(); ++k) {
        const int row = static_cast<int>(k) + kFirstSettingsRow;
        if (k < kSettingsRows) {
            const std::string line(lines[k]);
            if (row == kLastColRow && !std::regex_match(line, std::regex("[A-Za-z]{1,3}")))
                continue;
            if (row == kFirstTaskRowRow && !std::regex_match(line, std::regex("[0-9]{1,3}"))) {
                continue;
            }
            sheethost::CellAt(settings, row, kSettingsColumn).value = CellValue(lines[k]);
            continue;
        }
        const int wbsRow = static_cast<int>(k) - kSettingsRows + 1;
        if (wbsRow > kMaxRows) break;
        const auto cells = Split(lines[k], '\t');
        for (std::size_t column = 0; column < cells.size() && column < kMaxColumns; ++column) {
            sheethost::CellAt(wbs, wbsRow, static_cast<int>(column) + 1).value =
                CellValue(cells[column]);
        }
    }
    return book;
}

void Ignore(const OLECHAR*, UINT) {}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto book = FuzzedWorkbook(std::string_view(reinterpret_cast<const char*>(data), size));
    IDispatch* workbook = sheethost::NewWorkbookObject(book);
    kpInit();
    kpSetMessageReceiver(Ignore);
    kpSetWorkBook(&workbook);
    if (RefreshSettings()) {
        TaskTable_Load();
        for (TaskRecord* task = Tasks_First(); task != nullptr; task = Tasks_Next(*task)) {
            TaskRecord_ReadRow(*task);
            for (const std::string_view reference : Split(task->predecessors, ',')) {
                Tasks_Find(reference);
            }
            Tasks_AncestorRows(task->row);
        }
    }
    kpQuit();
    kpSetMessageReceiver(nullptr);
    workbook->Release();
    return 0;
}
