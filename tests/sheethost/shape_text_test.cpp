// The text of shapes: the label recipe of the bar chart with its automatic size, stretches of
// characters and their fonts, and the metric behind the size.
#include "sheethost/shape_text.h"

#include "sheethost/shape_test_support.h"

namespace drawingtest {
namespace {

using sheethost::CharacterSpan;
using sheethost::Font;
using sheethost::TextFrame;
using ShapeTextTest = DrawingTest;

TEST_F(ShapeTextTest, AnAutoSizedLabelTakesTheSizeOfItsTextAtItsCorner) {
    // The box starts with its position repeated as its size; the automatic size replaces it.
    Object box =
        Get(shapes.get(), OLESTR(".AddTextbox(%d,%e,%e,%e,%e)"), 1, 100.0, 30.0, 100.0, 30.0);
    ASSERT_EQ(Put(box.get(), OLESTR(".TextFrame.Characters.Text=%S"), OLESTR("1.2 Design (Ann)")),
              S_OK);
    ASSERT_EQ(Put(box.get(), OLESTR(".TextFrame.AutoSize=%d"), -1), S_OK);
    // 16 narrow characters of 11 points, and the default margins of 7.2 and 3.6 on each side.
    EXPECT_DOUBLE_EQ(Number(box.get(), OLESTR(".Width")), 16 * 5.5 + 14.4);
    EXPECT_DOUBLE_EQ(Number(box.get(), OLESTR(".Height")), 11 * 1.2 + 7.2);

    Put(box.get(), OLESTR(".TextFrame.Characters.font.Name=%S"), OLESTR("Meiryo UI"));
    Put(box.get(), OLESTR(".TextFrame.Characters.font.Size=%s"), "9");
    Put(box.get(), OLESTR(".TextFrame.VerticalAlignment=%d"), -4108);
    Put(box.get(), OLESTR(".TextFrame.HorizontalAlignment=%d"), -4131);
    Put(box.get(), OLESTR(".TextFrame.AutoMargins=%d"), 0);
    for (const OLECHAR* margin :
         {OLESTR(".TextFrame.MarginLeft=%d"), OLESTR(".TextFrame.MarginBottom=%d"),
          OLESTR(".TextFrame.MarginRight=%d"), OLESTR(".TextFrame.MarginTop=%d")}) {
        ASSERT_EQ(Put(box.get(), margin, 0), S_OK);
    }

    EXPECT_DOUBLE_EQ(Number(box.get(), OLESTR(".Width")), 16 * 4.5);
    EXPECT_DOUBLE_EQ(Number(box.get(), OLESTR(".Height")), 9 * 1.2);
    EXPECT_EQ(Number(box.get(), OLESTR(".Left")), 100);
    EXPECT_EQ(Number(box.get(), OLESTR(".Top")), 30);
    EXPECT_EQ(Text(box.get(), OLESTR(".TextFrame.Characters.Font.Name")), "Meiryo UI");
    EXPECT_EQ(Number(box.get(), OLESTR(".TextFrame.VerticalAlignment")), -4108);
    EXPECT_EQ(Text(box.get(), OLESTR(".TextFrame.AutoSize")), "True");

    // Without auto size the box keeps its size when the text grows.
    Put(box.get(), OLESTR(".TextFrame.AutoSize=%d"), 0);
    Put(box.get(), OLESTR(".TextFrame.Characters.Text=%s"), "a much longer text than before");
    EXPECT_DOUBLE_EQ(Number(box.get(), OLESTR(".Width")), 16 * 4.5);
}

TEST_F(ShapeTextTest, StretchesOfCharactersAreReadWrittenAndFormattedApart) {
    Object box = Get(shapes.get(), OLESTR(".AddTextbox(%d,%e,%e,%e,%e)"), 1, 0.0, 0.0, 50.0, 20.0);
    Put(box.get(), OLESTR(".TextFrame.Characters.Text=%s"), "Hello world");

    EXPECT_EQ(Text(box.get(), OLESTR(".TextFrame.Characters(%d,%d).Text"), 7, 5), "world");
    EXPECT_EQ(Number(box.get(), OLESTR(".TextFrame.Characters(%d,%d).Count"), 10, 5), 2);
    ASSERT_EQ(Put(box.get(), OLESTR(".TextFrame.Characters(%d,%d).Font.Bold=%b"), 1, 5, 1), S_OK);
    ASSERT_EQ(Put(box.get(), OLESTR(".TextFrame.Characters(%d,%d).Text=%s"), 7, 5, "there"), S_OK);
    ASSERT_EQ(Call(box.get(), OLESTR(".TextFrame.Characters(%d,%d).Delete"), 6, 1), S_OK);

    EXPECT_EQ(Text(box.get(), OLESTR(".TextFrame.Characters.Text")), "Hellothere");
    EXPECT_EQ(Text(box.get(), OLESTR(".TextFrame.Characters(%d,%d).Font.Bold"), 1, 5), "True");
    EXPECT_EQ(Text(box.get(), OLESTR(".TextFrame.Characters(%d).Font.Bold"), 6), "False");
    VARIANT mixed;
    VariantInit(&mixed);
    ASSERT_EQ(automation::GetValue(OLESTR("%v"), &mixed, box.get(),
                                   OLESTR(".TextFrame.Characters.Font.Bold")),
              S_OK);
    EXPECT_EQ(mixed.vt, VT_NULL);
    EXPECT_EQ(Call(box.get(), OLESTR(".TextFrame.Characters(%d,%d)"), 0, 1), DISP_E_EXCEPTION);
    EXPECT_EQ(Put(box.get(), OLESTR(".TextFrame.Characters.Font.Size=%e"), 0.0), DISP_E_EXCEPTION);
}

TEST_F(ShapeTextTest, LinesAndConnectorsHaveNoText) {
    Object line = Get(shapes.get(), OLESTR(".AddLine(%e,%e,%e,%e)"), 0.0, 0.0, 5.0, 5.0);
    EXPECT_EQ(Put(line.get(), OLESTR(".TextFrame.Characters.Text=%s"), "x"), DISP_E_EXCEPTION);
}

TEST(ShapeTextMetricTest, WideCharactersAndLineBreaksCount) {
    TextFrame frame;
    frame.marginLeft = frame.marginRight = frame.marginTop = frame.marginBottom = 0;
    sheethost::ReplaceSpanText(frame, {}, "\xE4\xBA\x88\xE5\xAE\x9A ab\r\nx");  // "予定 ab", "x"
    const sheethost::TextExtent extent = sheethost::MeasureText(frame);
    EXPECT_DOUBLE_EQ(extent.width, 2 * 11 + 3 * 5.5);
    EXPECT_DOUBLE_EQ(extent.height, 2 * 11 * 1.2);

    TextFrame empty;
    EXPECT_DOUBLE_EQ(sheethost::MeasureText(empty).height, 11 * 1.2 + 7.2);
}

TEST(ShapeTextMetricTest, PositionsCountUtf16UnitsAndRunsJoinAgain) {
    TextFrame frame;
    sheethost::ReplaceSpanText(frame, {},
                               "\xF0\x9F\x98\x80"
                               "ab");  // an emoji, then "ab"
    EXPECT_EQ(sheethost::CharacterCount(frame), 4);
    EXPECT_EQ(sheethost::SpanText(frame, {3, 1}), "a");

    sheethost::EditSpanFont(frame, {3, 1}, [](Font& font) { font.size = 20; });
    ASSERT_EQ(frame.runs.size(), 3u);
    EXPECT_EQ(sheethost::SpanFonts(frame, {3, 2}).size(), 2u);
    sheethost::EditSpanFont(frame, {3, 1}, [](Font& font) { font.size = 11; });
    EXPECT_EQ(frame.runs.size(), 1u);

    // Text written past the end is appended in the font of the last character.
    sheethost::EditSpanFont(frame, {4, 1}, [](Font& font) { font.italic = true; });
    sheethost::ReplaceSpanText(frame, CharacterSpan{9, 2}, "c");
    EXPECT_EQ(sheethost::SpanText(frame, {}),
              "\xF0\x9F\x98\x80"
              "abc");
    EXPECT_TRUE(frame.runs.back().font.italic);
    EXPECT_EQ(frame.runs.back().text, "bc");
}

}  // namespace
}  // namespace drawingtest
