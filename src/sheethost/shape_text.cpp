#include "sheethost/shape_text.h"

#include <algorithm>
#include <cstddef>

#include "com/text.h"

namespace sheethost {
namespace {

// The frame's runs in UTF-16, where positions are counted.
struct WideRun {
    WideString text;
    Font font;
};

std::vector<WideRun> ToWide(const TextFrame& frame) {
    std::vector<WideRun> runs;
    for (const TextRun& run : frame.runs) runs.push_back({Widen(run.text), run.font});
    return runs;
}

// Stores the runs back, dropping empty ones and joining neighbours in the same font.
void StoreRuns(TextFrame& frame, const std::vector<WideRun>& runs) {
    frame.runs.clear();
    for (const WideRun& run : runs) {
        if (run.text.empty()) continue;
        if (!frame.runs.empty() && frame.runs.back().font == run.font) {
            frame.runs.back().text += Narrow(run.text);
        } else {
            frame.runs.push_back({Narrow(run.text), run.font});
        }
    }
}

std::size_t TotalLength(const std::vector<WideRun>& runs) {
    std::size_t length = 0;
    for (const WideRun& run : runs) length += run.text.size();
    return length;
}

// Makes a run start at `offset` (0-based) and answers its index (runs.size() at the end).
std::size_t SplitAt(std::vector<WideRun>& runs, std::size_t offset) {
    std::size_t runStart = 0;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const std::size_t runEnd = runStart + runs[i].text.size();
        if (offset == runStart) return i;
        if (offset < runEnd) {
            WideRun tail{runs[i].text.substr(offset - runStart), runs[i].font};
            runs[i].text.resize(offset - runStart);
            runs.insert(runs.begin() + static_cast<std::ptrdiff_t>(i) + 1, std::move(tail));
            return i + 1;
        }
        runStart = runEnd;
    }
    return runs.size();
}

// The stretch as 0-based [begin, end) offsets clamped to the text.
std::pair<std::size_t, std::size_t> Offsets(std::size_t total, CharacterSpan span) {
    const std::size_t begin = std::min<std::size_t>(std::max(span.start, 1) - 1, total);
    const std::size_t end =
        span.length < 0 ? total : std::min(total, begin + static_cast<std::size_t>(span.length));
    return {begin, end};
}

// The font a character at `offset` has, or would take if typed there.
Font FontAt(const TextFrame& frame, const std::vector<WideRun>& runs, std::size_t offset) {
    std::size_t runStart = 0;
    for (const WideRun& run : runs) {
        if (offset < runStart + run.text.size()) return run.font;
        runStart += run.text.size();
    }
    return runs.empty() ? frame.defaultFont : runs.back().font;
}

bool IsWide(char32_t c) {
    return (c >= 0x1100 && c <= 0x115F) || (c >= 0x2E80 && c <= 0xA4CF) ||
           (c >= 0xAC00 && c <= 0xD7A3) || (c >= 0xF900 && c <= 0xFAFF) ||
           (c >= 0xFE30 && c <= 0xFE4F) || (c >= 0xFF00 && c <= 0xFF60) ||
           (c >= 0xFFE0 && c <= 0xFFE6) || c >= 0x20000;
}

constexpr double kLineSpacing = 1.2;

}  // namespace

int CharacterCount(const TextFrame& frame) {
    return static_cast<int>(TotalLength(ToWide(frame)));
}

int SpanLength(const TextFrame& frame, CharacterSpan span) {
    const auto [begin, end] = Offsets(TotalLength(ToWide(frame)), span);
    return static_cast<int>(end - begin);
}

std::string SpanText(const TextFrame& frame, CharacterSpan span) {
    WideString text;
    for (const WideRun& run : ToWide(frame)) text += run.text;
    const auto [begin, end] = Offsets(text.size(), span);
    return Narrow(WideStringView(text).substr(begin, end - begin));
}

void ReplaceSpanText(TextFrame& frame, CharacterSpan span, std::string_view text) {
    std::vector<WideRun> runs = ToWide(frame);
    const auto [begin, end] = Offsets(TotalLength(runs), span);
    const Font font = FontAt(frame, runs, begin);
    // Splitting at the begin first keeps the end's index valid: that split lies before it.
    const std::size_t beginIndex = SplitAt(runs, begin);
    const std::size_t endIndex = SplitAt(runs, end);
    runs.erase(runs.begin() + static_cast<std::ptrdiff_t>(beginIndex),
               runs.begin() + static_cast<std::ptrdiff_t>(endIndex));
    runs.insert(runs.begin() + static_cast<std::ptrdiff_t>(beginIndex), WideRun{Widen(text), font});
    StoreRuns(frame, runs);
}

std::vector<Font> SpanFonts(const TextFrame& frame, CharacterSpan span) {
    std::vector<WideRun> runs = ToWide(frame);
    const auto [begin, end] = Offsets(TotalLength(runs), span);
    if (begin == end) return {FontAt(frame, runs, begin)};
    std::vector<Font> fonts;
    std::size_t runStart = 0;
    for (const WideRun& run : runs) {
        const std::size_t runEnd = runStart + run.text.size();
        if (runEnd > begin && runStart < end) fonts.push_back(run.font);
        runStart = runEnd;
    }
    return fonts;
}

void EditSpanFont(TextFrame& frame, CharacterSpan span, const std::function<void(Font&)>& edit) {
    std::vector<WideRun> runs = ToWide(frame);
    const std::size_t total = TotalLength(runs);
    const auto [begin, end] = Offsets(total, span);
    if (begin == 0 && end == total) edit(frame.defaultFont);
    const std::size_t beginIndex = SplitAt(runs, begin);
    const std::size_t endIndex = SplitAt(runs, end);
    for (std::size_t i = beginIndex; i < endIndex; ++i) edit(runs[i].font);
    StoreRuns(frame, runs);
}

TextExtent MeasureText(const TextFrame& frame) {
    double widest = 0;
    double height = 0;
    double lineWidth = 0;
    double lineFontSize = 0;
    const auto endLine = [&] {
        if (lineFontSize == 0) lineFontSize = frame.defaultFont.size;
        widest = std::max(widest, lineWidth);
        height += lineFontSize * kLineSpacing;
        lineWidth = 0;
        lineFontSize = 0;
    };
    bool afterCarriageReturn = false;
    for (const WideRun& run : ToWide(frame)) {
        for (std::size_t i = 0; i < run.text.size(); ++i) {
            char32_t c = run.text[i];
            if (c == u'\n' && afterCarriageReturn) {  // the second half of a CR LF pair
                afterCarriageReturn = false;
                continue;
            }
            afterCarriageReturn = c == u'\r';
            if (c == u'\n' || c == u'\r') {
                endLine();
                continue;
            }
            const bool highSurrogate = c >= 0xD800 && c <= 0xDBFF && i + 1 < run.text.size();
            if (highSurrogate) c = 0x10000 + ((c - 0xD800) << 10) + (run.text[++i] - 0xDC00);
            lineWidth += run.font.size * (IsWide(c) ? 1.0 : 0.5);
            lineFontSize = std::max(lineFontSize, run.font.size);
        }
    }
    endLine();
    return {widest + frame.marginLeft + frame.marginRight,
            height + frame.marginTop + frame.marginBottom};
}

}  // namespace sheethost
