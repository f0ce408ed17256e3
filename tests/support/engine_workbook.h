// An in-memory workbook bound to the engine the way the workbook's macros bind theirs: kpInit,
// kpSetWorkBook, and kpQuit at the end. A test first builds its sheets, names and cells on
// `book`, then calls Bind(); user messages are collected instead of shown.
//
//     testsupport::EngineWorkbook workbook;
//     sheethost::Sheet& settings = workbook.AddSheet("Settings", "wsSettings");
//     workbook.SetNamedCell(settings, "CSCalendarUnit", 3, 3, 1440.0);
//     workbook.Bind();
//     LoadCalendarSettings();
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "com/text.h"
#include "core/engine_state.h"
#include "engine/exports.h"
#include "sheethost/model.h"
#include "sheethost/objects.h"
#include "workbook/workbook.h"

namespace testsupport {

class EngineWorkbook {
  public:
    EngineWorkbook() : book(std::make_shared<sheethost::Workbook>()) {
        Messages().clear();
        kpSetMessageReceiver(&CollectMessage);
    }
    ~EngineWorkbook() {
        if (bound_) {
            // The engine keeps the sheets it bound without ever releasing them, as it must for the
            // workbook's macros; the test owns the host, so it gives them back here.
            for (auto* sheet : {Engine().wbsSheet.get(), Engine().settingsSheet.get(),
                                Engine().resourceSheet.get()}) {
                if (sheet != nullptr && sheet->object() != nullptr) sheet->object()->Release();
            }
            kpQuit();
        }
        if (bookObject_ != nullptr) bookObject_->Release();
        kpSetMessageReceiver(nullptr);
    }
    EngineWorkbook(const EngineWorkbook&) = delete;
    EngineWorkbook& operator=(const EngineWorkbook&) = delete;

    sheethost::Sheet& AddSheet(std::string name, std::string codeName) {
        auto sheet = std::make_shared<sheethost::Sheet>();
        sheet->name = std::move(name);
        sheet->codeName = std::move(codeName);
        book->sheets.push_back(sheet);
        return *sheet;
    }

    static void SetCell(sheethost::Sheet& sheet, int row, int column, sheethost::Value value) {
        sheethost::CellAt(sheet, row, column).value = std::move(value);
    }

    // A workbook-level name for one cell of `sheet`, holding `value`.
    void SetNamedCell(sheethost::Sheet& sheet, std::string name, int row, int column,
                      sheethost::Value value) {
        book->names.push_back({std::move(name), "='" + sheet.name + "'!$" + ColumnLetters(column) +
                                                    "$" + std::to_string(row)});
        SetCell(sheet, row, column, std::move(value));
    }

    // kpInit and kpSetWorkBook with the book as it stands.
    void Bind() {
        kpInit();
        bookObject_ = sheethost::NewWorkbookObject(book);
        bound_ = true;
        kpSetWorkBook(&bookObject_);
    }

    static const std::vector<std::string>& messages() { return Messages(); }

    sheethost::BookPtr book;

  private:
    static std::vector<std::string>& Messages() {
        static std::vector<std::string> messages;
        return messages;
    }
    static void CollectMessage(const OLECHAR* text, UINT) {
        Messages().push_back(Narrow(WideStringView(text)));
    }

    IDispatch* bookObject_ = nullptr;
    bool bound_ = false;
};

}  // namespace testsupport
