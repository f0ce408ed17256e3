#include "cli/render_command.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "cli/workbook_file.h"
#include "render/render.h"

namespace fs = std::filesystem;

CLI::App* AddRenderCommand(CLI::App& app, RenderRequest& request) {
    CLI::App* render = app.add_subcommand(
        "render",
        "Draw the task sheet and its chart (cells, bars, labels, connectors) as an SVG picture "
        "that any web browser shows");
    render->add_option("WORKBOOK", request.workbook, "The workbook (.xlsx, .xlsm or .json)")
        ->required()
        ->check(CLI::ExistingFile);
    render->add_option("-o,--output", request.output, "Where to write the picture (.svg)")
        ->required();
    render->add_option("--sheet", request.sheet,
                       "The name of the sheet to draw (default: the task sheet)");
    render->add_flag("--overwrite", request.overwrite, "Allow the picture to replace the input");
    return render;
}

bool RunRender(const RenderRequest& request) {
    if (!request.overwrite && fs::exists(request.output) &&
        fs::equivalent(request.output, request.workbook)) {
        std::cerr << "vantora: the picture would replace the input workbook; give --overwrite to "
                     "allow it\n";
        return false;
    }
    try {
        const auto book = ReadWorkbookFile(request.workbook);
        const sheethost::Sheet* sheet = request.sheet.empty()
                                            ? render::SheetToRender(*book)
                                            : sheethost::FindSheet(*book, request.sheet).get();
        if (sheet == nullptr) {
            std::cerr << "vantora: " << request.workbook << " has no sheet named '" << request.sheet
                      << "'\n";
            return false;
        }
        const std::string svg = render::RenderSheetSvg(*book, *sheet);
        // Written beside the target and renamed into place, so a failed write leaves an earlier
        // picture whole.
        const fs::path temporary = fs::path(request.output).concat(".partial");
        {
            std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
            out << svg;
            if (!out.flush()) {
                std::error_code ignored;
                fs::remove(temporary, ignored);
                std::cerr << "vantora: cannot write " << request.output << '\n';
                return false;
            }
        }
        fs::rename(temporary, request.output);
        std::cout << "drew sheet '" << sheet->name << "' to " << request.output << '\n';
        return true;
    } catch (const WorkbookFileError& error) {
        std::cerr << "vantora: " << error.what() << '\n';
    } catch (const fs::filesystem_error& error) {
        std::cerr << "vantora: cannot write " << request.output << ": " << error.code().message()
                  << '\n';
    }
    return false;
}
