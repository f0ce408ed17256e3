// Workbook files: .xlsx and .xlsm packages read into the in-memory host and written back.
//
// Saving rewrites only what the host models (cells, formulas, formats, conditional formats, rows
// and columns, sheets and their zoom and selection, defined names, shapes and embedded charts)
// and carries every other part of the source package (macros, custom UI, themes, printer
// settings, pictures, comments, ...) and every element it does not model (split panes, data
// validations, margins, paper, ...) through unchanged, byte for byte for whole parts. Parts that
// only a deleted sheet led to (its drawing, charts and pictures) go with it.
//
// Errors: every failure throws XlsxError with a message fit for the user. A file that is not a
// workbook package, is corrupt, encrypted, or too large when unpacked (a zip bomb) is refused
// before anything is read into the workbook, and a failed save leaves no output file behind.
#pragma once

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string_view>

#include "sheethost/model.h"

namespace xlsx {

class XlsxError : public std::runtime_error {
  public:
    using runtime_error::runtime_error;
};

std::shared_ptr<sheethost::Workbook> LoadXlsx(const std::filesystem::path& file);

struct SaveOptions {
    // Saving onto the file the workbook was loaded from is refused unless this is set.
    bool overwriteSource = false;
};

// Writes `book` to `target` through a temporary file in the target's folder, renamed into place
// once complete. `source` is the package `book` was loaded from; the parts and elements it holds
// that the host does not model are kept. An empty `source` writes a new package (a workbook made
// from JSON, for instance).
void SaveXlsx(const sheethost::Workbook& book, const std::filesystem::path& source,
              const std::filesystem::path& target, const SaveOptions& options = {});

// Writes the bytes (a workbook in another format, for instance) the way a package is written: to
// a new file of an unpredictable name beside `target`, created exclusively so that nothing
// planted there is followed, then renamed over `target`. On failure the temporary file is removed
// and XlsxError thrown.
void WriteFileAtomically(std::string_view bytes, const std::filesystem::path& target);

}  // namespace xlsx
