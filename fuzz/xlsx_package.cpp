// The .xlsx/.xlsm loader fed whole files; whatever loads is saved from itself and loaded again.
#include <cstddef>
#include <cstdint>
#include <fstream>

#include "package_round_trip.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::filesystem::path input = fuzzing::Scratch("in.xlsm");
    static const std::filesystem::path output = fuzzing::Scratch("out.xlsm");
    std::ofstream(input, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    fuzzing::RoundTrip(input, output);
    return 0;
}
