// The JSON workbook loader; whatever it loads must dump and load again to the same text.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "sheethost/sheethost.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto book =
        sheethost::LoadWorkbookJson(std::string_view(reinterpret_cast<const char*>(data), size));
    if (!book) return 0;
    const std::string dump = sheethost::DumpWorkbookJson(*book);
    const auto again = sheethost::LoadWorkbookJson(dump);
    if (!again || sheethost::DumpWorkbookJson(*again) != dump) std::abort();
    return 0;
}
