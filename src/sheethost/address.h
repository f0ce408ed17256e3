// Cell addresses as the spreadsheet writes and reads them: "A1", "$A$1", "A1:B9", "5:7" (whole
// rows), "C:D" (whole columns), unions "B3:B9,H3:I9", sheet-qualified "WBS!$B$5" or
// "'My Sheet'!A1", and defined names at workbook and sheet level.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sheethost/model.h"

namespace sheethost {

// One block: "A1", "$B$3:$C$9", "5:7", "$C:$D". Reversed corners are put in order ("B2:A1" is
// "A1:B2"). Empty for anything else.
std::optional<Area> ParseArea(std::string_view text);

// The canonical text of a block: "$A$1", "$A$1:$B$3", "$5:$7", "$C:$D"; the row or column parts
// without their dollars when they are not absolute.
std::string AreaAddress(const Area& area, bool rowAbsolute = true, bool columnAbsolute = true);
std::string AreasAddress(const std::vector<Area>& areas, bool rowAbsolute = true,
                         bool columnAbsolute = true);

// A sheet name as an address qualifies it: quoted when it holds anything but letters, digits,
// dots and underscores ("'My Sheet'", "'It''s'").
std::string QuotedSheetName(std::string_view name);

struct ResolvedRange {
    std::shared_ptr<Sheet> sheet;
    std::vector<Area> areas;
};

// Resolves what Range(text) names, seen from `sheet`: a union of blocks, each of which may be
// qualified by a sheet name, or a defined name (the sheet's own names first, then the workbook's).
// All parts must lie on one sheet. Empty when the text names nothing.
std::optional<ResolvedRange> ResolveAddress(const Workbook& book,
                                            const std::shared_ptr<Sheet>& sheet,
                                            std::string_view text);

}  // namespace sheethost
