// TextFrame, Characters and the font of characters: the text of a shape.
#include <algorithm>
#include <initializer_list>

#include "sheethost/shape_objects.h"
#include "sheethost/shape_text.h"

namespace sheethost {
namespace {

constexpr double kDefaultSideMargin = 7.2;
constexpr double kDefaultEndMargin = 3.6;

TextFrame& FrameOf(const ShapeHandle& handle) {
    Shape& shape = handle.Live();
    if (!shape.textFrame) Raise("This object does not support text.");
    return *shape.textFrame;
}

std::string SpanDescription(const ShapeHandle& handle, std::string_view typeName,
                            CharacterSpan span) {
    return handle.Describe(typeName) + " (" + std::to_string(span.start) + "," +
           std::to_string(span.length) + ")";
}

void ReturnFontValue(Invocation& call, const std::string& value) {
    call.ReturnText(value);
}
void ReturnFontValue(Invocation& call, double value) {
    call.ReturnNumber(value);
}
void ReturnFontValue(Invocation& call, bool value) {
    call.ReturnBoolean(value);
}
void ReturnFontValue(Invocation& call, std::int32_t value) {
    call.ReturnNumber(value);
}

void ReadPut(const Invocation& call, std::string& value) {
    value = call.PutText();
}
void ReadPut(const Invocation& call, double& value) {
    value = call.PutNumber();
    if (value < 1 || value > 409) RaiseOutOfRange();
}
void ReadPut(const Invocation& call, bool& value) {
    value = call.PutBoolean();
}
void ReadPut(const Invocation& call, std::int32_t& value) {
    const double color = call.PutNumber();
    if (color < 0 || color > 0xFFFFFF) RaiseOutOfRange();
    value = static_cast<std::int32_t>(color);
}

// The font of a stretch of characters. A property that differs within the stretch reads as Null.
class CharactersFontObject final : public DispatchObjectOf<CharactersFontObject> {
  public:
    CharactersFontObject(ShapeHandle handle, CharacterSpan span)
        : handle_(std::move(handle)), span_(span) {}

    std::string_view TypeName() const override { return "Font"; }
    std::string Describe() const override { return SpanDescription(handle_, TypeName(), span_); }

    static const MemberTable<CharactersFontObject>& Members() {
        static const MemberTable<CharactersFontObject> members{
            {"Name", [](CharactersFontObject& self,
                        Invocation& call) { self.Property(call, &Font::name); }},
            {"Size", [](CharactersFontObject& self,
                        Invocation& call) { self.Property(call, &Font::size); }},
            {"Bold", [](CharactersFontObject& self,
                        Invocation& call) { self.Property(call, &Font::bold); }},
            {"Italic", [](CharactersFontObject& self,
                          Invocation& call) { self.Property(call, &Font::italic); }},
            {"Color", [](CharactersFontObject& self,
                         Invocation& call) { self.Property(call, &Font::color); }},
        };
        return members;
    }

  private:
    template <typename T>
    void Property(Invocation& call, T Font::*member) {
        call.ExpectCount(0, 0);
        TextFrame& frame = FrameOf(handle_);
        if (call.IsPut()) {
            T value{};
            ReadPut(call, value);
            EditSpanFont(frame, span_, [&](Font& font) { font.*member = value; });
            return handle_.TextChanged();
        }
        const std::vector<Font> fonts = SpanFonts(frame, span_);
        const bool mixed = std::any_of(fonts.begin(), fonts.end(), [&](const Font& font) {
            return font.*member != fonts.front().*member;
        });
        if (mixed) return call.ReturnNull();
        ReturnFontValue(call, fonts.front().*member);
    }

    ShapeHandle handle_;
    CharacterSpan span_;
};

class CharactersObject final : public DispatchObjectOf<CharactersObject> {
  public:
    CharactersObject(ShapeHandle handle, CharacterSpan span)
        : handle_(std::move(handle)), span_(span) {}

    std::string_view TypeName() const override { return "Characters"; }
    std::string Describe() const override { return SpanDescription(handle_, TypeName(), span_); }

    static const MemberTable<CharactersObject>& Members() {
        static const MemberTable<CharactersObject> members{
            {"Text", [](CharactersObject& self, Invocation& call) { self.Text(call); }},
            {"Caption", [](CharactersObject& self, Invocation& call) { self.Text(call); }},
            {"Count",
             [](CharactersObject& self, Invocation& call) {
                 ReadOnly(call);
                 call.ExpectCount(0, 0);
                 call.ReturnInteger(SpanLength(FrameOf(self.handle_), self.span_));
             }},
            {"Font",
             [](CharactersObject& self, Invocation& call) {
                 call.ExpectCount(0, 0);
                 FrameOf(self.handle_);
                 call.ReturnObject(new CharactersFontObject(self.handle_, self.span_));
             }},
            {"Delete",
             [](CharactersObject& self, Invocation& call) {
                 call.ExpectCount(0, 0);
                 ReplaceSpanText(FrameOf(self.handle_), self.span_, "");
                 self.handle_.TextChanged();
                 call.ReturnEmpty();
             }},
        };
        return members;
    }

  private:
    void Text(Invocation& call) {
        call.ExpectCount(0, 0);
        TextFrame& frame = FrameOf(handle_);
        if (!call.IsPut()) return call.ReturnText(SpanText(frame, span_));
        ReplaceSpanText(frame, span_, call.PutText());
        handle_.TextChanged();
    }

    ShapeHandle handle_;
    CharacterSpan span_;
};

class TextFrameObject final : public DispatchObjectOf<TextFrameObject> {
  public:
    explicit TextFrameObject(ShapeHandle handle) : handle_(std::move(handle)) {}

    std::string_view TypeName() const override { return "TextFrame"; }
    std::string Describe() const override { return handle_.Describe(TypeName()); }

    static const MemberTable<TextFrameObject>& Members() {
        static const MemberTable<TextFrameObject> members{
            {"Characters", [](TextFrameObject& self, Invocation& call) { self.Characters(call); }},
            {"AutoSize", [](TextFrameObject& self, Invocation& call) { self.AutoSize(call); }},
            {"AutoMargins",
             [](TextFrameObject& self, Invocation& call) { self.AutoMargins(call); }},
            {"HorizontalAlignment",
             [](TextFrameObject& self, Invocation& call) {
                 self.Choice(call, self.Frame().horizontalAlignment,
                             {-4131, -4108, -4152, -4130, -4117});
             }},
            {"VerticalAlignment",
             [](TextFrameObject& self, Invocation& call) {
                 self.Choice(call, self.Frame().verticalAlignment,
                             {-4160, -4108, -4107, -4130, -4117});
             }},
            {"Orientation",
             [](TextFrameObject& self, Invocation& call) {
                 self.Choice(call, self.Frame().orientation, {1, 2, 3, 4, 5, 6});
             }},
            {"MarginLeft", [](TextFrameObject& self,
                              Invocation& call) { self.Margin(call, &TextFrame::marginLeft); }},
            {"MarginRight", [](TextFrameObject& self,
                               Invocation& call) { self.Margin(call, &TextFrame::marginRight); }},
            {"MarginTop", [](TextFrameObject& self,
                             Invocation& call) { self.Margin(call, &TextFrame::marginTop); }},
            {"MarginBottom", [](TextFrameObject& self,
                                Invocation& call) { self.Margin(call, &TextFrame::marginBottom); }},
        };
        return members;
    }

  private:
    TextFrame& Frame() { return FrameOf(handle_); }

    void Characters(Invocation& call) {
        call.ExpectCount(0, 2);
        Frame();
        CharacterSpan span;
        if (const auto start = call.OptionalInteger(0)) span.start = *start;
        if (const auto length = call.OptionalInteger(1)) span.length = *length;
        if (span.start < 1 || (call.Has(1) && span.length < 0)) RaiseOutOfRange();
        call.ReturnObject(new CharactersObject(handle_, span));
    }

    // Switching auto size on sizes the shape to its text at once, and again after every change.
    void AutoSize(Invocation& call) {
        TextFrame& frame = Frame();
        BooleanProperty(call, frame.autoSize);
        if (call.IsPut()) handle_.TextChanged();
    }

    // Automatic margins are the defaults; setting any margin switches them off.
    void AutoMargins(Invocation& call) {
        TextFrame& frame = Frame();
        BooleanProperty(call, frame.autoMargins);
        if (!call.IsPut() || !frame.autoMargins) return;
        frame.marginLeft = frame.marginRight = kDefaultSideMargin;
        frame.marginTop = frame.marginBottom = kDefaultEndMargin;
        handle_.TextChanged();
    }

    void Margin(Invocation& call, double TextFrame::*margin) {
        TextFrame& frame = Frame();
        double value = frame.*margin;
        NumberProperty(call, value);
        if (!call.IsPut()) return;
        if (value < 0) RaiseOutOfRange();
        frame.*margin = value;
        frame.autoMargins = false;
        handle_.TextChanged();
    }

    void Choice(Invocation& call, int& field, std::initializer_list<int> allowed) {
        int value = field;
        IntegerProperty(call, value);
        if (!call.IsPut()) return;
        if (std::find(allowed.begin(), allowed.end(), value) == allowed.end()) RaiseOutOfRange();
        field = value;
    }

    ShapeHandle handle_;
};

}  // namespace

IDispatch* NewTextFrameObject(const ShapeHandle& handle) {
    return new TextFrameObject(handle);
}

}  // namespace sheethost
