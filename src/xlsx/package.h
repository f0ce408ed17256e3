// A package as a list of named parts held in memory, read with limits that stop zip bombs and
// written atomically.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace xlsx {

struct Part {
    std::string name;  // "xl/workbook.xml", without a leading slash
    std::string bytes;
};

struct Package {
    std::vector<Part> parts;  // in the order of the archive

    const Part* Find(std::string_view name) const;
    Part* Find(std::string_view name);
    // Replaces the part's bytes, or adds the part at the end.
    void Put(std::string_view name, std::string bytes);
    void Remove(std::string_view name);
};

// What an archive may unpack to before it is taken for a zip bomb.
struct UnpackLimits {
    std::uint64_t maxEntries = 10000;
    std::uint64_t maxEntryBytes = std::uint64_t{256} << 20;
    std::uint64_t maxTotalBytes = std::uint64_t{1} << 30;
    // Uncompressed to compressed size, checked on entries big enough for it to matter.
    std::uint64_t maxRatio = 200;
    std::uint64_t ratioCheckFrom = std::uint64_t{1} << 20;
};

// Throws XlsxError for a file that is not a zip package, is corrupt, is an encrypted or legacy
// binary workbook, or exceeds the limits.
Package ReadPackage(const std::filesystem::path& file, const UnpackLimits& limits = {});

// Writes the package to a temporary file beside `target` and renames it over `target`; on
// failure the temporary file is removed and XlsxError thrown.
void WritePackageAtomically(const Package& package, const std::filesystem::path& target);

}  // namespace xlsx
