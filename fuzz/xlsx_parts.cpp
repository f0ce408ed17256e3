// Each XML part of a real workbook package in turn: the first byte picks the part of the base
// package that the rest of the input replaces; the package is then loaded, saved from itself and
// loaded again.
#include <cstddef>
#include <cstdint>

#include "package_round_trip.h"
#include "xlsx/package.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const xlsx::Package base = xlsx::ReadPackage(VANTORA_FUZZ_BASE_PACKAGE);
    static const std::filesystem::path input = fuzzing::Scratch("parts.xlsm");
    static const std::filesystem::path output = fuzzing::Scratch("parts-out.xlsm");
    if (size == 0) return 0;
    xlsx::Package package = base;
    xlsx::Part& part = package.parts[data[0] % package.parts.size()];
    part.bytes.assign(reinterpret_cast<const char*>(data) + 1, size - 1);
    try {
        xlsx::WritePackageAtomically(package, input);
    } catch (const xlsx::XlsxError&) {
        return 0;
    }
    fuzzing::RoundTrip(input, output);
    return 0;
}
