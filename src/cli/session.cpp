#include "cli/session.h"

#include <iostream>

#include "calendar/resources.h"
#include "cli/settings_checks.h"
#include "cli/user_edits.h"
#include "com/text.h"
#include "engine/exports.h"
#include "engine/refresh.h"
#include "sheethost/address.h"
#include "sheethost/sheethost.h"
#include "wbs/filter.h"
#include "wbs/task_table.h"

namespace {

void PrintMessage(const OLECHAR* text, UINT) {
    std::cerr << "vantora: " << Narrow(text) << '\n';
}

void SelectRows(sheethost::Workbook& book, RowSpan rows) {
    for (std::size_t i = 0; i < book.sheets.size(); ++i) {
        sheethost::Sheet& sheet = *book.sheets[i];
        if (sheet.codeName == "wsWBS") {
            sheet.selection = {sheethost::Area{rows.first, 1, rows.last, sheethost::kMaxColumn}};
            sheet.activeCell = {rows.first, 1};
            book.activeSheet = i;
            return;
        }
    }
}

void WriteFilterSetting(sheethost::Workbook& book, const std::string& setting) {
    for (const auto& sheet : book.sheets) {
        if (sheet->codeName == "wsSettings") {
            const sheethost::Area cell = *sheethost::ParseArea(kFilterCell);
            sheethost::CellAt(*sheet, cell.top, cell.left).value = setting;
            return;
        }
    }
}

// Releases the host's workbook object when the session ends, after kpQuit: the engine never took a
// reference of its own.
struct HostReference {
    IDispatch* object;
    ~HostReference() { object->Release(); }
};

}  // namespace

bool WithPrimedEngine(const std::shared_ptr<sheethost::Workbook>& book,
                      const SessionOptions& options, const std::function<void()>& body) {
    if (options.selectedRows) {
        SelectRows(*book, *options.selectedRows);
    }
    if (options.filterSetting) {
        WriteFilterSetting(*book, *options.filterSetting);
    }
    HostReference workbook{sheethost::NewWorkbookObject(book)};

    kpInit();
    kpSetMessageReceiver(PrintMessage);
    kpSetStatusDate(options.now.value_or(0));
    kpSetWorkBook(&workbook.object);
    const bool usable = RefreshSettings() && SettingsAreUsable();
    if (usable) {
        LoadResources();
        TaskTable_Load();
        WarnAboutTaskRowsPastTheLimit();
        body();
    }
    kpQuit();
    kpSetMessageReceiver(nullptr);
    kpSetStatusDate(0);
    return usable;
}

bool RunEngineSession(const std::shared_ptr<sheethost::Workbook>& book,
                      std::span<const CommandCall> calls, const SessionOptions& options) {
    return WithPrimedEngine(book, options, [&] {
        for (const CommandCall& call : calls) {
            call.command->run(call.arguments);
        }
        ReplayUserEdits(book, options.userEdits);
    });
}
