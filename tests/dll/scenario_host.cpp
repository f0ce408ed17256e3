// Drives the engine the way a workbook's macros do, on a JSON workbook of the in-memory host, and
// writes what happened: kpSetWorkBook's result, the user messages, the host objects still
// referenced after kpQuit, and the workbook's canonical dump.
//
// The Windows build loads Vantora64.dll with LoadLibrary and finds the exports by name, so the
// calls cross the real DLL boundary and every host call goes through the system's OLE Automation
// runtime; the native build calls the same exports directly. Both write the same report for the
// same scenario, which the test run compares.
//
//     scenario_host WORKBOOK.json "YYYY-MM-DD HH:MM" REPORT COMMAND...
//
// A COMMAND is an export name followed by its whole-number arguments after a colon:
// kpUpdateWBS, kpDrawGanntChart:1, kpTasksOffset:1,3. The last COMMAND may be FreeLibrary: the
// spreadsheet program then closes the workbook and unloads the library without kpQuit, and the
// report says whether the library touched a host object after the host closed.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "com/text.h"
#include "sheethost/sheethost.h"
#include "sheethost/user_edits.h"
#include "values/values.h"

#ifndef _WIN32
#include "engine/exports.h"
#endif

namespace {

using Generic = void (*)();
using MessageReceiver = void (*)(const OLECHAR*, UINT);

#ifdef _WIN32
HMODULE library = nullptr;

Generic LookUp(const std::string& name) {
    return reinterpret_cast<Generic>(GetProcAddress(library, name.c_str()));
}
#else
Generic LookUp(const std::string& name) {
    struct Entry {
        const char* name;
        Generic function;
    };
    static const Entry entries[] = {
        {"kpInit", reinterpret_cast<Generic>(&kpInit)},
        {"kpQuit", reinterpret_cast<Generic>(&kpQuit)},
        {"kpSetWorkBook", reinterpret_cast<Generic>(&kpSetWorkBook)},
        {"kpDrawCalendar", reinterpret_cast<Generic>(&kpDrawCalendar)},
        {"kpDrawGanntChart", reinterpret_cast<Generic>(&kpDrawGanntChart)},
        {"kpUpdateWBS", reinterpret_cast<Generic>(&kpUpdateWBS)},
        {"kpWBSReschedule", reinterpret_cast<Generic>(&kpWBSReschedule)},
        {"kpWBSEventOnChange", reinterpret_cast<Generic>(&kpWBSEventOnChange)},
        {"kpWBSEventOnSelectionChange", reinterpret_cast<Generic>(&kpWBSEventOnSelectionChange)},
        {"kpTasksMoveUp", reinterpret_cast<Generic>(&kpTasksMoveUp)},
        {"kpTasksMoveDown", reinterpret_cast<Generic>(&kpTasksMoveDown)},
        {"kpTasksMoveRight", reinterpret_cast<Generic>(&kpTasksMoveRight)},
        {"kpTasksMoveLeft", reinterpret_cast<Generic>(&kpTasksMoveLeft)},
        {"kpTasksOffset", reinterpret_cast<Generic>(&kpTasksOffset)},
        {"kpWBSFilter", reinterpret_cast<Generic>(&kpWBSFilter)},
        {"kpDrawProgressLines", reinterpret_cast<Generic>(&kpDrawProgressLines)},
        {"kpEVMByTask", reinterpret_cast<Generic>(&kpEVMByTask)},
        {"kpEVMByProject", reinterpret_cast<Generic>(&kpEVMByProject)},
        {"kpWorkload", reinterpret_cast<Generic>(&kpWorkload)},
        {"kpSetMessageReceiver", reinterpret_cast<Generic>(&kpSetMessageReceiver)},
        {"kpSetStatusDate", reinterpret_cast<Generic>(&kpSetStatusDate)},
    };
    for (const Entry& entry : entries) {
        if (name == entry.name) {
            return entry.function;
        }
    }
    return nullptr;
}
#endif

template <typename Function>
Function Export(const std::string& name) {
    return reinterpret_cast<Function>(LookUp(name));
}

std::vector<std::string> messages;

void ReceiveMessage(const OLECHAR* text, UINT icon) {
    messages.push_back(std::to_string(icon) + " " + Narrow(text));
}

std::vector<std::string> statusBars;

// "set:U12=100" -> the edit made on the task sheet and its event fired; false when the word is
// not an edit or the edit is refused.
bool RunUserEdit(const std::string& word, const sheethost::BookPtr& book) {
    static const std::pair<const char*, sheethost::UserEditKind> kinds[] = {
        {"set", sheethost::UserEditKind::kType},
        {"insert-row", sheethost::UserEditKind::kInsertRow},
        {"delete-row", sheethost::UserEditKind::kDeleteRow},
        {"select", sheethost::UserEditKind::kSelect},
    };
    const auto colon = word.find(':');
    const std::string name = word.substr(0, colon);
    for (const auto& [kindName, kind] : kinds) {
        if (name != kindName || colon == std::string::npos) continue;
        std::string error;
        const auto edit = sheethost::ParseUserEdit(kind, word.substr(colon + 1), error);
        sheethost::SheetPtr sheet;
        for (const auto& candidate : book->sheets) {
            if (candidate->codeName == "wsWBS") sheet = candidate;
        }
        if (!edit || !sheet) return false;
        IDispatch* target = sheethost::PerformUserEdit(book, sheet, *edit, error);
        if (target == nullptr) return false;
        // The export releases the target once, as the program's event passes it.
        if (sheethost::IsSelection(*edit)) {
            Export<void (*)(IDispatch**)>("kpWBSEventOnSelectionChange")(&target);
            statusBars.push_back(word + ": " + book->statusBar.value_or("(the program's own)"));
        } else {
            Export<void (*)(IDispatch**)>("kpWBSEventOnChange")(&target);
        }
        return true;
    }
    return false;
}

// "kpTasksOffset:1,3" -> the export called with its arguments; false when it is not exported.
bool RunCommand(const std::string& word) {
    const auto colon = word.find(':');
    const std::string name = word.substr(0, colon);
    if (LookUp(name) == nullptr) {
        return false;
    }
    std::vector<std::int32_t> arguments;
    if (colon != std::string::npos) {
        std::istringstream list(word.substr(colon + 1));
        for (std::string item; std::getline(list, item, ',');) {
            arguments.push_back(std::stoi(item));
        }
    }
    if (arguments.size() > 2) {
        return false;
    }
    if (arguments.empty()) {
        Export<void (*)()>(name)();
    } else if (arguments.size() == 1) {
        Export<void (*)(std::int32_t)>(name)(arguments[0]);
    } else {
        Export<void (*)(std::int32_t, std::int32_t)>(name)(arguments[0], arguments[1]);
    }
    return true;
}

// The engine keeps, and never releases, the reference the worksheet enumeration gave it for each
// sheet it binds by code name; it takes no other reference of its own. Those are the only host
// objects that may outlive kpQuit, each with exactly one reference.
std::vector<std::string> ExpectedLeftovers(const sheethost::Workbook& book) {
    std::vector<std::string> expected;
    for (const auto& sheet : book.sheets) {
        if (sheet->codeName == "wsWBS" || sheet->codeName == "wsSettings" ||
            sheet->codeName == "wsResource") {
            expected.push_back("Worksheet " + sheet->name + " (1 references)");
        }
    }
    std::sort(expected.begin(), expected.end());
    return expected;
}

std::string ReadFile(const char* path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 4) {
        std::cerr << "usage: scenario_host WORKBOOK.json \"YYYY-MM-DD HH:MM\" REPORT COMMAND...\n";
        return 2;
    }
#ifdef _WIN32
    library = LoadLibraryW(L"Vantora64.dll");
    if (library == nullptr) {
        std::cerr << "Vantora64.dll cannot be loaded\n";
        return 1;
    }
#endif
    std::string error;
    auto book = sheethost::LoadWorkbookJson(ReadFile(argv[1]), &error);
    const auto now = values::ParseDateText(argv[2]);
    if (!book || !now) {
        std::cerr << argv[1] << ": " << (book ? "bad date and time" : error) << '\n';
        return 2;
    }

    IDispatch* workbook = sheethost::NewWorkbookObject(book);
    Export<void (*)()>("kpInit")();
    Export<void (*)(MessageReceiver)>("kpSetMessageReceiver")(ReceiveMessage);
    Export<void (*)(double)>("kpSetStatusDate")(*now);
    const std::int32_t bound = Export<std::int32_t (*)(IDispatch**)>("kpSetWorkBook")(&workbook);
    std::vector<std::string> unknown;
    const bool unloadWithoutQuit = std::string(argv[argc - 1]) == "FreeLibrary";
    for (int i = 4; i < argc - (unloadWithoutQuit ? 1 : 0); ++i) {
        if (!RunUserEdit(argv[i], book) && !RunCommand(argv[i])) {
            unknown.push_back(argv[i]);
        }
    }
    if (unloadWithoutQuit) {
        // The program frees its objects first; whatever the library still holds is then gone.
        workbook->Release();
        sheethost::CloseHost();
#ifdef _WIN32
        FreeLibrary(library);
        library = nullptr;
#endif
    } else {
        Export<void (*)()>("kpQuit")();
        workbook->Release();
    }

    std::ostringstream report;
    report << "kpSetWorkBook: " << bound << '\n';
    for (const std::string& command : unknown) {
        report << "not exported: " << command << '\n';
    }
    report << "messages: " << messages.size() << '\n';
    for (const std::string& message : messages) {
        report << message << '\n';
    }
    for (const std::string& status : statusBars) {
        report << "status bar after " << status << '\n';
    }
    const auto live = sheethost::LiveObjectReport();
    bool leftoversExplained = true;
    if (unloadWithoutQuit) {
        // The references the library held are forgotten, never released, at unload.
        leftoversExplained = sheethost::CallsAfterClose() == 0;
        report << "calls into the closed host while unloading: " << sheethost::CallsAfterClose()
               << '\n';
        report << "host objects still referenced: " << live.size() << '\n';
    } else {
        leftoversExplained = live == ExpectedLeftovers(*book);
        report << "host objects referenced after kpQuit: " << live.size()
               << (leftoversExplained ? " (the kept sheet references)" : " (UNEXPECTED)") << '\n';
    }
    for (const std::string& object : live) {
        report << object << '\n';
    }
    report << sheethost::DumpWorkbookJson(*book) << '\n';

    std::ofstream out(argv[3], std::ios::binary | std::ios::trunc);
    out << report.str();
#ifdef _WIN32
    if (library != nullptr) {
        FreeLibrary(library);
    }
#endif
    if (!leftoversExplained) {
        std::cerr << argv[1]
                  << (unloadWithoutQuit
                          ? ": the library called into the host after it closed\n"
                          : ": host objects outlive kpQuit beyond the kept sheet references\n");
    }
    // Binding never fails, not even when a sheet is missing: its reference just stays null.
    if (bound != 0) {
        std::cerr << argv[1] << ": kpSetWorkBook answered " << bound << " instead of 0\n";
    }
    return out && leftoversExplained && bound == 0 ? 0 : 1;
}
