// Editing and measuring the text of a text frame. Character positions are 1-based and count UTF-16
// code units, as the spreadsheet's Characters(start, length) does.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "sheethost/shape_model.h"

namespace sheethost {

// A stretch of a frame's text; `length` < 0 means "to the end".
struct CharacterSpan {
    int start = 1;
    int length = -1;
};

int CharacterCount(const TextFrame& frame);
// The number of characters of the stretch that lie within the text.
int SpanLength(const TextFrame& frame, CharacterSpan span);
std::string SpanText(const TextFrame& frame, CharacterSpan span);
// Replaces the stretch by `text`, which takes the font of the stretch's first character (the
// frame's default font when the frame is empty).
void ReplaceSpanText(TextFrame& frame, CharacterSpan span, std::string_view text);
// The fonts the stretch is written in, one per run it touches; for an empty stretch the font a
// character typed there would take.
std::vector<Font> SpanFonts(const TextFrame& frame, CharacterSpan span);
// Applies `edit` to every character of the stretch (to the default font too when the stretch
// covers the whole frame, so text typed later keeps the look).
void EditSpanFont(TextFrame& frame, CharacterSpan span, const std::function<void(Font&)>& edit);

// The size the frame's text needs, margins included, by a simple metric: a narrow character is
// half the font size wide, a wide (East Asian) character the full size; a line is 1.2 times the
// largest font size on it. Lines break at line feeds and carriage returns.
struct TextExtent {
    double width = 0;
    double height = 0;
};
TextExtent MeasureText(const TextFrame& frame);

}  // namespace sheethost
