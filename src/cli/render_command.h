// vantora render: a picture of a workbook's task sheet and its chart as SVG, for people without a
// spreadsheet program.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

struct RenderRequest {
    std::string workbook;
    std::string output;
    std::string sheet;  // empty: the task sheet
    bool overwrite = false;
};

// Adds the subcommand and its options, which fill `request`.
CLI::App* AddRenderCommand(CLI::App& app, RenderRequest& request);

// Reads the workbook and writes the picture; false, with the reason on standard error, when the
// workbook cannot be read, has no such sheet, or the picture cannot be written.
bool RunRender(const RenderRequest& request);
