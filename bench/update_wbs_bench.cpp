// Measures the WBS update and the workbook files on projects of growing size: the sample's task
// block repeated until the project holds the wanted number of tasks. For each size it prints the
// wall time of kpUpdateWBS, the automation calls the host answered, the time to save and load the
// updated workbook as .xlsx, and the process's peak resident memory so far.
//
// usage: update_wbs_bench SAMPLE.json [TASKS ...]   (default sizes 36 360 1800 3600)
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "engine/exports.h"
#include "sheethost/sheethost.h"
#include "values/values.h"
#include "xlsx/xlsx.h"

namespace {

// The sample's task rows: the first task row and the last row that holds a task.
constexpr int kFirstTaskRow = 5;
constexpr int kLastSampleTaskRow = 40;
constexpr int kBlockRows = kLastSampleTaskRow - kFirstTaskRow + 1;

sheethost::Sheet& TaskSheet(sheethost::Workbook& book) {
    for (const auto& sheet : book.sheets) {
        if (sheet->codeName == "wsWBS") return *sheet;
    }
    std::fprintf(stderr, "the sample has no task sheet (code name wsWBS)\n");
    std::exit(1);
}

// Where a row of the sample goes when its task block is repeated `copies` times, each copy below
// the last: rows above the block stay, rows of the block go to each copy, and the rows after it
// (the table's empty bordered rows) move below the last copy.
std::vector<int> RowsOf(int row, int copies) {
    if (row < kFirstTaskRow) return {row};
    if (row > kLastSampleTaskRow) return {row + (copies - 1) * kBlockRows};
    std::vector<int> rows;
    for (int copy = 0; copy < copies; ++copy) rows.push_back(row + copy * kBlockRows);
    return rows;
}

// A copy of the sample whose task block is repeated `copies` times.
std::shared_ptr<sheethost::Workbook> Project(const std::string& sampleJson, int copies) {
    auto book = sheethost::LoadWorkbookJson(sampleJson);
    sheethost::Sheet& sheet = TaskSheet(*book);
    std::map<sheethost::CellRef, sheethost::Cell> cells;
    for (const auto& [ref, cell] : sheet.cells) {
        for (int row : RowsOf(ref.row, copies)) cells[{row, ref.column}] = cell;
    }
    std::map<int, sheethost::RowInfo> rows;
    for (const auto& [row, info] : sheet.rows) {
        for (int to : RowsOf(row, copies)) rows[to] = info;
    }
    sheet.cells = std::move(cells);
    sheet.rows = std::move(rows);
    return book;
}

double SecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

long PeakResidentKiB() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

long messages = 0;
void CountMessage(const OLECHAR*, UINT) {
    ++messages;
}

void Measure(const std::string& sampleJson, int tasks, const std::filesystem::path& folder) {
    const int copies = std::max(1, tasks / kBlockRows);
    const auto book = Project(sampleJson, copies);
    IDispatch* workbook = sheethost::NewWorkbookObject(book);

    messages = 0;
    sheethost::ResetCallCount();
    const auto updateStart = std::chrono::steady_clock::now();
    kpInit();
    kpSetMessageReceiver(CountMessage);
    kpSetStatusDate(values::DateSerial(2024, 4, 15) + values::TimeSerial(12, 0, 0));
    kpSetWorkBook(&workbook);
    kpUpdateWBS();
    kpQuit();
    const double updateSeconds = SecondsSince(updateStart);
    const long calls = sheethost::CallCount();
    workbook->Release();

    const std::filesystem::path file = folder / "update_wbs_bench.xlsx";
    const auto saveStart = std::chrono::steady_clock::now();
    xlsx::SaveXlsx(*book, {}, file, {.overwriteSource = true});
    const double saveSeconds = SecondsSince(saveStart);
    const auto loadStart = std::chrono::steady_clock::now();
    xlsx::LoadXlsx(file);
    const double loadSeconds = SecondsSince(loadStart);

    std::printf("%6d %8.3f %10ld %8.1f %8ld %8.3f %8.3f %10ld\n", copies * kBlockRows,
                updateSeconds, calls, static_cast<double>(calls) / (copies * kBlockRows), messages,
                saveSeconds, loadSeconds, PeakResidentKiB());
    std::filesystem::remove(file);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: update_wbs_bench SAMPLE.json [TASKS ...]\n");
        return 2;
    }
    std::ifstream in(argv[1]);
    std::stringstream text;
    text << in.rdbuf();
    std::vector<int> sizes;
    for (int i = 2; i < argc; ++i) sizes.push_back(std::atoi(argv[i]));
    if (sizes.empty()) sizes = {36, 360, 1800, 3600};

    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("vantora-bench-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    std::printf("%6s %8s %10s %8s %8s %8s %8s %10s\n", "tasks", "update_s", "calls", "per_task",
                "messages", "save_s", "load_s", "peak_KiB");
    for (int tasks : sizes) Measure(text.str(), tasks, folder);
    std::filesystem::remove_all(folder);
    return 0;
}
