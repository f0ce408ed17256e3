// The .xlsx/.xlsm loader fed whole files; whatever loads is saved from itself and loaded again.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "xlsx/xlsx.h"

namespace {

std::filesystem::path Scratch(const char* name) {
    return std::filesystem::temp_directory_path() /
           ("vantora-fuzz-" + std::to_string(getpid()) + "-" + name);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::filesystem::path input = Scratch("in.xlsm");
    static const std::filesystem::path output = Scratch("out.xlsm");
    std::ofstream(input, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    try {
        const auto book = xlsx::LoadXlsx(input);
        xlsx::SaveXlsx(*book, input, output);
        xlsx::LoadXlsx(output);
    } catch (const xlsx::XlsxError&) {
        // Refused with a message: what a bad file must get.
    }
    return 0;
}
