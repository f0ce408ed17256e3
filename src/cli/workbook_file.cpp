#include "cli/workbook_file.h"

#include <fstream>
#include <sstream>
#include <system_error>

#include "sheethost/sheethost.h"
#include "xlsx/xlsx.h"

namespace fs = std::filesystem;

namespace {

enum class FileKind { kJson, kPackage };

FileKind KindOf(const fs::path& path) {
    const std::string extension = path.extension().string();
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
    std::ostringstream text;
    text << in.rdbuf();
    std::string error;
    auto book = sheethost::LoadWorkbookJson(text.str(), &error);
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
    const fs::path temporary = path.string() + ".vantora-tmp";
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out << sheethost::DumpWorkbookJson(book);
        out.close();
        if (!out) {
            std::error_code ignored;
            fs::remove(temporary, ignored);
            throw WorkbookFileError(path.string() + ": cannot be written");
        }
    }
    std::error_code error;
    fs::rename(temporary, path, error);
    if (error) {
        fs::remove(temporary, error);
        throw WorkbookFileError(path.string() + ": cannot be written: " + error.message());
    }
}

bool WouldReplaceInput(const fs::path& output, const fs::path& input) {
    std::error_code error;
    return fs::exists(output, error) && fs::equivalent(output, input, error);
}
