// Each XML part of a real workbook package in turn: the first byte picks the part of the base
// package that the rest of the input replaces; the package is then loaded, saved from itself and
// loaded again.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

#include "xlsx/package.h"
#include "xlsx/xlsx.h"

namespace {

std::filesystem::path Scratch(const char* name) {
    return std::filesystem::temp_directory_path() /
           ("vantora-fuzz-" + std::to_string(getpid()) + "-" + name);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const xlsx::Package base = xlsx::ReadPackage(VANTORA_FUZZ_BASE_PACKAGE);
    static const std::filesystem::path input = Scratch("parts.xlsm");
    static const std::filesystem::path output = Scratch("parts-out.xlsm");
    if (size == 0) return 0;
    xlsx::Package package = base;
    xlsx::Part& part = package.parts[data[0] % package.parts.size()];
    part.bytes.assign(reinterpret_cast<const char*>(data) + 1, size - 1);
    try {
        xlsx::WritePackageAtomically(package, input);
        const auto book = xlsx::LoadXlsx(input);
        xlsx::SaveXlsx(*book, input, output);
        xlsx::LoadXlsx(output);
    } catch (const xlsx::XlsxError&) {
        // Refused with a message: what a bad part must get.
    }
    return 0;
}
