#include "sheethost/palette.h"

#include <array>
#include <limits>

namespace sheethost {
namespace {

// The default palette behind ColorIndex 1..56, as 0xRRGGBB.
constexpr std::array<std::uint32_t, 56> kPalette{
    0x000000, 0xFFFFFF, 0xFF0000, 0x00FF00, 0x0000FF, 0xFFFF00, 0xFF00FF, 0x00FFFF,
    0x800000, 0x008000, 0x000080, 0x808000, 0x800080, 0x008080, 0xC0C0C0, 0x808080,
    0x9999FF, 0x993366, 0xFFFFCC, 0xCCFFFF, 0x660066, 0xFF8080, 0x0066CC, 0xCCCCFF,
    0x000080, 0xFF00FF, 0xFFFF00, 0x00FFFF, 0x800080, 0x800000, 0x008080, 0x0000FF,
    0x00CCFF, 0xCCFFFF, 0xCCFFCC, 0xFFFF99, 0x99CCFF, 0xFF99CC, 0xCC99FF, 0xFFCC99,
    0x3366FF, 0x33CCCC, 0x99CC00, 0xFFCC00, 0xFF9900, 0xFF6600, 0x666699, 0x969696,
    0x003366, 0x339966, 0x003300, 0x333300, 0x993300, 0x993366, 0x333399, 0x333333,
};

}  // namespace

std::int32_t PaletteColor(int colorIndex) {
    if (colorIndex < 1 || colorIndex > 56) return 0;
    const std::uint32_t rgb = kPalette[static_cast<std::size_t>(colorIndex - 1)];
    return static_cast<std::int32_t>(((rgb >> 16) & 0xFF) | (rgb & 0xFF00) | ((rgb & 0xFF) << 16));
}

int NearestColorIndex(std::int32_t color) {
    auto channel = [](std::int32_t value, int shift) { return (value >> shift) & 0xFF; };
    int best = 1;
    long bestDistance = std::numeric_limits<long>::max();
    for (int index = 1; index <= 56; ++index) {
        const std::int32_t candidate = PaletteColor(index);
        long distance = 0;
        for (int shift : {0, 8, 16}) {
            const long delta = channel(color, shift) - channel(candidate, shift);
            distance += delta * delta;
        }
        if (distance < bestDistance) {
            best = index;
            bestDistance = distance;
        }
    }
    return best;
}

}  // namespace sheethost
