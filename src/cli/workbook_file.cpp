#include "cli/workbook_file.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <system_error>

#include "sheethost/sheethost.h"
#include "xlsx/xlsx.h"

namespace fs = std::filesystem;

namespace {

enum class FileKind { kJson, kPackage };

// The spreadsheet's own names and the file system's may spell the extension in capitals.
FileKind KindOf(const fs::path& path) {
    std::string extension = path.extension().string();
    std::ranges::transform(extension, extension.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (extension == ".json") {
        return FileKind::kJson;
    }
    if (extension == ".xlsx" || extension == ".xlsm") {
        return FileKind::kPackage;
    }
    throw WorkbookFileError(path.string() + ": a workbook must be a .xlsx, .xlsm or .json file");
}

}  // namespace

std::shared_ptr<sheethost::Workbook> ReadWorkbookFile(const fs::path& path) {
    // A pipe would block the read and a device may never end: only a file's bytes are a workbook.
    std::error_code kind;
    if (!fs::is_regular_file(path, kind)) {
        throw WorkbookFileError(path.string() + ": not a regular file");
    }
    if (KindOf(path) == FileKind::kPackage) {
        try {
            return xlsx::LoadXlsx(path);
        } catch (const xlsx::XlsxError& error) {
            throw WorkbookFileError(path.string() + ": " + error.what());
        }
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        throw WorkbookFileError(path.string() + ": cannot be opened");
    }
    const auto size = fs::file_size(path, kind);
    if (kind || size > sheethost::kMaxWorkbookJsonBytes) {
        throw WorkbookFileError(path.string() + ": larger than any workbook (256 MB at most)");
    }
    std::string text(static_cast<std::size_t>(size), '\0');
    in.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(in.gcount()));
    std::string error;
    auto book = sheethost::LoadWorkbookJson(text, &error);
    if (!book) {
        throw WorkbookFileError(path.string() + ": not a workbook: " + error);
    }
    return book;
}

void WriteWorkbookFile(const sheethost::Workbook& book, const fs::path& source,
                       const fs::path& path) {
    if (KindOf(path) == FileKind::kPackage) {
        try {
            // The caller has already decided whether the input may be replaced.
            const bool fromPackage = !source.empty() && KindOf(source) == FileKind::kPackage;
            const fs::path package = fromPackage ? source : fs::path();
            xlsx::SaveXlsx(book, package, path, xlsx::SaveOptions{.overwriteSource = true});
        } catch (const xlsx::XlsxError& error) {
            throw WorkbookFileError(path.string() + ": " + error.what());
        }
        return;
    }
    try {
        xlsx::WriteFileAtomically(sheethost::DumpWorkbookJson(book), path);
    } catch (const xlsx::XlsxError& error) {
        throw WorkbookFileError(path.string() + ": " + error.what());
    }
}

bool WouldReplaceInput(const fs::path& output, const fs::path& input) {
    std::error_code error;
    return fs::exists(output, error) && fs::equivalent(output, input, error);
}
