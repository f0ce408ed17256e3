// The spreadsheet's default colour palette, behind ColorIndex 1 to 56. Colours are the host's
// colour longs (red + green * 256 + blue * 65536).
#pragma once

#include <cstdint>

namespace sheethost {

// The colour of a palette entry; 0 (black) out of range.
std::int32_t PaletteColor(int colorIndex);

// The palette entry nearest to a colour: what ColorIndex reads after Color was set.
int NearestColorIndex(std::int32_t color);

}  // namespace sheethost
