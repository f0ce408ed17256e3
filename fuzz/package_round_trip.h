// What the package fuzzers share: scratch files of their own process, and the round trip every
// input makes through the loader and the writer.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <string>

#include "xlsx/xlsx.h"

namespace fuzzing {

inline std::filesystem::path Scratch(const char* name) {
    return std::filesystem::temp_directory_path() /
           ("vantora-fuzz-" + std::to_string(getpid()) + "-" + name);
}

// Loads the package at `input`, saves it from itself to `output` and loads that again. A refusal
// with a message is what a bad package must get; anything else (a crash, a hang, a sanitizer
// report) is a finding. What the writer wrote from a package it read must read back: a refusal
// of the output escapes as a finding too.
inline void RoundTrip(const std::filesystem::path& input, const std::filesystem::path& output) {
    try {
        const auto book = xlsx::LoadXlsx(input);
        xlsx::SaveXlsx(*book, input, output);
    } catch (const xlsx::XlsxError&) {
        return;
    }
    xlsx::LoadXlsx(output);
}

}  // namespace fuzzing
