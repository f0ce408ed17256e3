// Measures every built command, and the workbook files, on projects of 1,000 and 10,000 tasks:
// the sample's task rows repeated until the project holds that many. Each measurement runs in a
// process of its own, so that its peak memory is its own, five times; the fastest counts. Prints
// a Markdown table (the README's speed table) and each target next to its measurement.
//
// usage: command_bench SAMPLE.json [TASKS TASKS]           (default 1000 10000)
//        command_bench SAMPLE.json --profile COMMAND TASKS  (the host members a command calls)
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "engine/exports.h"
#include "sheethost/sheethost.h"
#include "values/values.h"
#include "xlsx/xlsx.h"

namespace {

// Every command measured. A command that becomes built is measured by adding its line here. The
// commands that work from what the update leaves behind (the task table, the earned values) are
// measured after an update, and a redrawing after a first drawing, neither of which is counted.
struct Command {
    const char* name;
    std::function<void()> run;
    std::function<void()> prepare = [] {};
};

const std::function<void()> kAfterUpdate = [] { kpUpdateWBS(); };
const Command kCommands[] = {
    {"kpUpdateWBS", [] { kpUpdateWBS(); }},
    {"kpWBSReschedule", [] { kpWBSReschedule(); }},
    {"kpDrawGanntChart", [] { kpDrawGanntChart(1); }},
    {"kpDrawGanntChart again", [] { kpDrawGanntChart(1); }, [] { kpDrawGanntChart(1); }},
    {"kpDrawCalendar", [] { kpDrawCalendar(0); }},
    {"kpWBSFilter", [] { kpWBSFilter(); }, kAfterUpdate},
    {"kpDrawProgressLines", [] { kpDrawProgressLines(); }, kAfterUpdate},
    {"kpEVMByTask", [] { kpEVMByTask(); }, kAfterUpdate},
    {"kpEVMByProject", [] { kpEVMByProject(1, 1); }, kAfterUpdate},
    {"kpWorkload", [] { kpWorkload(1, 1); }, kAfterUpdate},
};

// The targets: the update's calls per task and time, every command's growth, the memory.
constexpr double kUpdateCallsPerTask = 30;
constexpr double kUpdateSeconds = 0.5;
constexpr double kGrowth = 11;
constexpr double kPeakMegabytes = 200;
constexpr int kRounds = 5;

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

// Where a row of the sample goes in a project of `tasks` task rows: rows above the task block
// stay, task row k of the project is the sample's task row k modulo the block, and the rows after
// the block (the table's empty bordered rows) move below the last task.
std::vector<int> RowsOf(int row, int tasks) {
    if (row < kFirstTaskRow) return {row};
    if (row > kLastSampleTaskRow) return {row - kBlockRows + tasks};
    std::vector<int> rows;
    for (int to = row; to < kFirstTaskRow + tasks; to += kBlockRows) rows.push_back(to);
    return rows;
}

std::shared_ptr<sheethost::Workbook> Project(const std::string& sampleJson, int tasks) {
    auto book = sheethost::LoadWorkbookJson(sampleJson);
    sheethost::Sheet& sheet = TaskSheet(*book);
    // Each project row is a copy of the sample row it repeats.
    std::map<int, int> sourceOf;
    for (const auto& [ref, cell] : sheet.cells) {
        for (int row : RowsOf(ref.row, tasks)) sourceOf.emplace(row, ref.row);
    }
    sheethost::CellStore<sheethost::Cell> cells;
    for (const auto& [row, source] : sourceOf) {
        for (auto cell = sheet.cells.lower_bound({source, 1});
             cell != sheet.cells.end() && cell->first.row == source; ++cell) {
            cells.emplace({row, cell->first.column}, cell->second);
        }
    }
    sheethost::RowInfos::Map rows;
    for (const auto& [row, info] : sheet.rows) {
        for (int to : RowsOf(row, tasks)) rows[to] = info;
    }
    sheet.cells = std::move(cells);
    sheet.rows.Edit() = std::move(rows);
    return book;
}

double SecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Pushes the workbook out of the processor's caches. A command is timed as a user meets it: after
// their own work in the program has filled the caches with other things. Timed straight after
// the preparation instead, a small project is still in the cache that a large one has outgrown,
// and the comparison of the two sizes measures the cache's size rather than the command. The
// memory taken for this is given back and its peak forgotten, so that the peak measured is the
// workbook's and the command's.
void EmptyCaches() {
    {
        constexpr std::size_t kBytes = std::size_t{128} << 20;  // well past any last-level cache
        std::vector<unsigned char> other(kBytes, 1);
        unsigned sum = 0;
        for (std::size_t at = 0; at < kBytes; at += 64) sum += other[at];
        if (sum == 0) std::abort();  // keeps the walk from being optimised away
    }
    if (!(std::ofstream("/proc/self/clear_refs") << "5")) {
        std::fprintf(stderr, "cannot restart the peak memory count (/proc/self/clear_refs)\n");
        std::exit(1);
    }
}

// The most memory the process has held since EmptyCaches.
double PeakMegabytes() {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.starts_with("VmHWM:")) return std::stod(line.substr(6)) / 1024.0;
    }
    std::fprintf(stderr, "no peak memory in /proc/self/status\n");
    std::exit(1);
}

void IgnoreMessage(const OLECHAR*, UINT) {}

// Binds the engine to the workbook as the macros do, with the status date pinned.
void StartEngine(IDispatch* workbook) {
    kpInit();
    kpSetMessageReceiver(IgnoreMessage);
    kpSetStatusDate(values::DateSerial(2024, 4, 15) + values::TimeSerial(12, 0, 0));
    kpSetWorkBook(&workbook);
}

const Command& CommandNamed(const std::string& name) {
    for (const Command& command : kCommands) {
        if (name == command.name) return command;
    }
    std::fprintf(stderr, "no command %s\n", name.c_str());
    std::exit(2);
}

struct Measurement {
    double seconds = 0;
    double callsPerTask = 0;
    double peakMegabytes = 0;
};

// One measurement in this process: "seconds calls-per-task peak-MB" on standard output.
// "save" saves the updated project to `file`; "load" loads `file`.
int MeasureHere(const std::string& sampleJson, const std::string& what, int tasks,
                const std::string& file) {
    double seconds = 0;
    long calls = 0;
    if (what == "load") {
        EmptyCaches();
        const auto start = std::chrono::steady_clock::now();
        xlsx::LoadXlsx(file);
        seconds = SecondsSince(start);
    } else {
        const auto book = Project(sampleJson, tasks);
        IDispatch* workbook = sheethost::NewWorkbookObject(book);
        StartEngine(workbook);
        const bool save = what == "save";
        const Command& command = CommandNamed(save ? "kpUpdateWBS" : what);
        command.prepare();
        if (!save) EmptyCaches();
        sheethost::ResetCallCount();
        const auto start = std::chrono::steady_clock::now();
        command.run();
        seconds = SecondsSince(start);
        calls = sheethost::CallCount();
        kpQuit();
        workbook->Release();
        if (save) {
            EmptyCaches();
            const auto saveStart = std::chrono::steady_clock::now();
            xlsx::SaveXlsx(*book, {}, file, {.overwriteSource = true});
            seconds = SecondsSince(saveStart);
            calls = 0;
        }
    }
    std::printf("%.6f %.3f %.1f\n", seconds, static_cast<double>(calls) / tasks, PeakMegabytes());
    return 0;
}

// Runs one measurement in a process of its own.
Measurement MeasureApart(const std::string& self, const std::string& sample,
                         const std::string& what, int tasks, const std::string& file) {
    const std::string line = "'" + self + "' '" + sample + "' --one '" + what + "' " +
                             std::to_string(tasks) + " '" + file + "'";
    Measurement measured;
    FILE* child = popen(line.c_str(), "r");
    if (child == nullptr ||
        std::fscanf(child, "%lf %lf %lf", &measured.seconds, &measured.callsPerTask,
                    &measured.peakMegabytes) != 3 ||
        pclose(child) != 0) {
        std::fprintf(stderr, "the measurement of %s at %d tasks failed\n", what.c_str(), tasks);
        std::exit(1);
    }
    return measured;
}

// The host members a command calls, most called first, per task.
int Profile(const std::string& sampleJson, const std::string& name, int tasks) {
    const auto book = Project(sampleJson, tasks);
    IDispatch* workbook = sheethost::NewWorkbookObject(book);
    StartEngine(workbook);
    const Command& command = CommandNamed(name);
    command.prepare();
    std::vector<std::string> log;
    sheethost::SetMemberLog(&log);
    command.run();
    sheethost::SetMemberLog(nullptr);
    kpQuit();
    workbook->Release();
    std::map<std::string, long> counts;
    for (const std::string& entry : log) ++counts[entry.substr(0, entry.find_first_of("(="))];
    std::vector<std::pair<long, std::string>> sorted;
    for (const auto& [member, count] : counts) sorted.emplace_back(count, member);
    std::sort(sorted.rbegin(), sorted.rend());
    std::printf("%s at %d tasks: %zu host calls, %.1f per task\n", name.c_str(), tasks, log.size(),
                static_cast<double>(log.size()) / tasks);
    for (const auto& [count, member] : sorted) {
        std::printf("%10ld %8.2f  %s\n", count, static_cast<double>(count) / tasks, member.c_str());
    }
    return 0;
}

std::string WithThousands(int number) {
    std::string text = std::to_string(number);
    for (int at = static_cast<int>(text.size()) - 3; at > 0; at -= 3) text.insert(at, ",");
    return text;
}

const char* Verdict(bool met) {
    return met ? "met" : "MISSED";
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr,
                     "usage: command_bench SAMPLE.json [SMALL LARGE]\n"
                     "       command_bench SAMPLE.json --profile COMMAND TASKS\n");
        return 2;
    }
    std::ifstream in(argv[1]);
    std::stringstream text;
    text << in.rdbuf();
    const std::vector<std::string> arguments(argv + 2, argv + argc);
    if (arguments.size() == 4 && arguments[0] == "--one") {
        return MeasureHere(text.str(), arguments[1], std::atoi(arguments[2].c_str()), arguments[3]);
    }
    if (arguments.size() == 3 && arguments[0] == "--profile") {
        return Profile(text.str(), arguments[1], std::atoi(arguments[2].c_str()));
    }
    const int small = arguments.size() == 2 ? std::atoi(arguments[0].c_str()) : 1000;
    const int large = arguments.size() == 2 ? std::atoi(arguments[1].c_str()) : 10000;

    const std::string self = std::filesystem::read_symlink("/proc/self/exe").string();
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("vantora-bench-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    const std::string file = (folder / "project.xlsx").string();

    std::vector<std::string> rows = {"save .xlsx", "load .xlsx"};
    for (const Command& command : kCommands) rows.insert(rows.end() - 2, command.name);
    // Each measurement is taken in several rounds over the whole table and the fastest is kept:
    // on a shared machine the slow runs measure the neighbours, and the rounds spread a slow
    // spell over both sizes instead of one.
    std::map<std::pair<std::string, int>, Measurement> measured;
    for (int round = 0; round < kRounds; ++round) {
        for (const int tasks : {small, large}) {
            for (const std::string& row : rows) {
                const std::string what = row.substr(0, 4) == "save"   ? "save"
                                         : row.substr(0, 4) == "load" ? "load"
                                                                      : row;
                const Measurement taken = MeasureApart(self, argv[1], what, tasks, file);
                const auto known = measured.find({row, tasks});
                if (known == measured.end() || taken.seconds < known->second.seconds) {
                    measured[{row, tasks}] = taken;
                }
            }
        }
    }
    std::filesystem::remove_all(folder);

    const std::string smallText = WithThousands(small);
    const std::string largeText = WithThousands(large);
    std::printf(
        "| command | %s tasks | %s tasks | %s / %s | host calls per task | peak memory "
        "at %s |\n|---|---|---|---|---|---|\n",
        smallText.c_str(), largeText.c_str(), largeText.c_str(), smallText.c_str(),
        largeText.c_str());
    for (const std::string& row : rows) {
        const Measurement& a = measured[{row, small}];
        const Measurement& b = measured[{row, large}];
        const std::string calls =
            b.callsPerTask > 0 ? std::to_string(static_cast<int>(b.callsPerTask + 0.5)) : "";
        std::printf("| %s | %.3f s | %.3f s | %.1f | %s | %.0f MB |\n", row.c_str(), a.seconds,
                    b.seconds, b.seconds / a.seconds, calls.c_str(), b.peakMegabytes);
    }

    std::printf("\ntargets:\n");
    const Measurement& update = measured[{"kpUpdateWBS", large}];
    std::printf("  kpUpdateWBS host calls per task at %s: %.1f (at most %.0f) %s\n",
                largeText.c_str(), update.callsPerTask, kUpdateCallsPerTask,
                Verdict(update.callsPerTask <= kUpdateCallsPerTask));
    std::printf("  kpUpdateWBS at %s tasks: %.3f s (under %.1f s) %s\n", largeText.c_str(),
                update.seconds, kUpdateSeconds, Verdict(update.seconds < kUpdateSeconds));
    for (const std::string& row : rows) {
        const double growth = measured[{row, large}].seconds / measured[{row, small}].seconds;
        std::printf("  %s time at %s / at %s: %.1f (at most %.0f) %s\n", row.c_str(),
                    largeText.c_str(), smallText.c_str(), growth, kGrowth,
                    Verdict(growth <= kGrowth));
    }
    for (const char* row : {"kpUpdateWBS", "save .xlsx"}) {
        const double peak = measured[{row, large}].peakMegabytes;
        std::printf("  %s peak memory at %s: %.0f MB (under %.0f MB) %s\n", row, largeText.c_str(),
                    peak, kPeakMegabytes, Verdict(peak < kPeakMegabytes));
    }
    return 0;
}
