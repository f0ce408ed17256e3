// Workbook files for the command line: read one into the in-memory host, write the result back
// without ever damaging what the user gave.
#pragma once

#include <filesystem>
#include <memory>
#include <stdexcept>

#include "sheethost/model.h"

// A workbook that cannot be read or written; the message says which file and why.
class WorkbookFileError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Reads a JSON workbook of the in-memory host, or an .xlsx/.xlsm package.
std::shared_ptr<sheethost::Workbook> ReadWorkbookFile(const std::filesystem::path& path);

// Writes to a temporary file beside `path` and renames it into place, so a failed write leaves any
// earlier file whole. `source` is the file the workbook was read from: a package written as
// .xlsx/.xlsm keeps every part of it that the host does not model (macros, themes, drawings, ...).
void WriteWorkbookFile(const sheethost::Workbook& book, const std::filesystem::path& source,
                       const std::filesystem::path& path);

// True when writing `output` would replace the workbook file `input` (the same file, by any path).
bool WouldReplaceInput(const std::filesystem::path& output, const std::filesystem::path& input);
