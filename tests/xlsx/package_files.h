// Small workbook packages written by the tests themselves, part by part.
#pragma once

#include <gtest/gtest.h>
#include <zip.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace xlsx::testing {

using Parts = std::vector<std::pair<std::string, std::string>>;

inline void WriteZip(const std::filesystem::path& file, const Parts& parts) {
    int error = 0;
    zip_t* archive = zip_open(file.string().c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    ASSERT_NE(archive, nullptr);
    for (const auto& [name, bytes] : parts) {
        zip_source_t* source = zip_source_buffer(archive, bytes.data(), bytes.size(), 0);
        ASSERT_GE(zip_file_add(archive, name.c_str(), source, 0), 0);
    }
    ASSERT_EQ(zip_close(archive), 0);
}

inline std::string ReadFile(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline void WriteFile(const std::filesystem::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
}

// The bytes of one part of a package, empty when it is missing.
inline std::string ReadPart(const std::filesystem::path& file, const std::string& name) {
    int error = 0;
    zip_t* archive = zip_open(file.string().c_str(), ZIP_RDONLY, &error);
    if (archive == nullptr) return {};
    std::string bytes;
    zip_stat_t stat;
    if (zip_stat(archive, name.c_str(), 0, &stat) == 0) {
        zip_file_t* entry = zip_fopen(archive, name.c_str(), 0);
        bytes.resize(stat.size);
        zip_fread(entry, bytes.data(), bytes.size());
        zip_fclose(entry);
    }
    zip_discard(archive);
    return bytes;
}

// A folder of its own for each test, removed afterwards.
class TempFolder {
  public:
    TempFolder() {
        const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
        path_ = std::filesystem::temp_directory_path() /
                ("vantora-xlsx-" + std::string(test->test_suite_name()) + "-" + test->name());
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    ~TempFolder() { std::filesystem::remove_all(path_); }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }
    std::size_t FileCount() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(path_),
                                                      std::filesystem::directory_iterator()));
    }

  private:
    std::filesystem::path path_;
};

}  // namespace xlsx::testing
