// The sample workbook (examples/sample.json) as JSON, for tests that run the engine on it.
#pragma once

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

namespace testsupport {

inline nlohmann::json SampleJson() {
    const auto path = std::filesystem::path(__FILE__).parent_path().parent_path().parent_path() /
                      "examples" / "sample.json";
    std::ifstream file(path, std::ios::binary);
    return nlohmann::json::parse(file);
}

}  // namespace testsupport
