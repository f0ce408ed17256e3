// LineFormat, FillFormat and ColorFormat: the outline and the inside of a shape.
#include <type_traits>

#include "sheethost/shape_objects.h"

namespace sheethost {
namespace {

// A number property of the shape's line or fill, refused outside [minimum, maximum].
template <typename Field>
void RangedProperty(Invocation& call, Field& field, double minimum, double maximum) {
    call.ExpectCount(0, 0);
    if (!call.IsPut()) return call.ReturnNumber(static_cast<double>(field));
    const double value = call.PutNumber();
    if (value < minimum || value > maximum) return call.Decline(OutOfRange());
    if constexpr (std::is_integral_v<Field>) {
        field = call.PutInteger();
    } else {
        field = value;
    }
}

class ColorFormatObject final : public DispatchObjectOf<ColorFormatObject> {
  public:
    ColorFormatObject(ShapeHandle handle, std::int32_t& (*select)(Shape&))
        : handle_(std::move(handle)), select_(select) {}

    std::string_view TypeName() const override { return "ColorFormat"; }
    std::string Describe() const override { return handle_.Describe(TypeName()); }

    static const MemberTable<ColorFormatObject>& Members() {
        static const MemberTable<ColorFormatObject> members{
            {
                {"RGB",
                 [](ColorFormatObject& self, Invocation& call) {
                     ColorProperty(call, self.select_(self.handle_.Live()));
                 }},
                {"Type",
                 [](ColorFormatObject& self, Invocation& call) {
                     ReadOnly(call);
                     self.handle_.Live();
                     call.ReturnInteger(1);  // an RGB colour
                 }},
            },
            "RGB"};
        return members;
    }

  private:
    ShapeHandle handle_;
    std::int32_t& (*select_)(Shape&);
};

class LineFormatObject final : public DispatchObjectOf<LineFormatObject> {
  public:
    explicit LineFormatObject(ShapeHandle handle) : handle_(std::move(handle)) {}

    std::string_view TypeName() const override { return "LineFormat"; }
    std::string Describe() const override { return handle_.Describe(TypeName()); }

    static const MemberTable<LineFormatObject>& Members() {
        static const MemberTable<LineFormatObject> members{
            {"Visible", [](LineFormatObject& self,
                           Invocation& call) { TriStateProperty(call, self.Line().visible); }},
            {"Weight", [](LineFormatObject& self,
                          Invocation& call) { RangedProperty(call, self.Line().weight, 0, 1584); }},
            {"DashStyle",
             [](LineFormatObject& self, Invocation& call) {
                 RangedProperty(call, self.Line().dashStyle, 1, 12);
             }},
            {"Style", [](LineFormatObject& self,
                         Invocation& call) { RangedProperty(call, self.Line().style, 1, 5); }},
            {"BeginArrowheadStyle",
             [](LineFormatObject& self, Invocation& call) {
                 RangedProperty(call, self.Line().beginArrowheadStyle, 1, 6);
             }},
            {"EndArrowheadStyle",
             [](LineFormatObject& self, Invocation& call) {
                 RangedProperty(call, self.Line().endArrowheadStyle, 1, 6);
             }},
            {"Transparency",
             [](LineFormatObject& self, Invocation& call) {
                 RangedProperty(call, self.Line().transparency, 0, 1);
             }},
            {"ForeColor",
             [](LineFormatObject& self, Invocation& call) {
                 self.Color(call,
                            [](Shape& shape) -> std::int32_t& { return shape.line.foreColor; });
             }},
            {"BackColor",
             [](LineFormatObject& self, Invocation& call) {
                 self.Color(call,
                            [](Shape& shape) -> std::int32_t& { return shape.line.backColor; });
             }},
        };
        return members;
    }

  private:
    LineFormat& Line() { return handle_.Live().line; }

    void Color(Invocation& call, std::int32_t& (*select)(Shape&)) {
        call.ExpectCount(0, 0);
        handle_.Live();
        call.ReturnObject(NewColorFormatObject(handle_, select));
    }

    ShapeHandle handle_;
};

class FillFormatObject final : public DispatchObjectOf<FillFormatObject> {
  public:
    explicit FillFormatObject(ShapeHandle handle) : handle_(std::move(handle)) {}

    std::string_view TypeName() const override { return "FillFormat"; }
    std::string Describe() const override { return handle_.Describe(TypeName()); }

    static const MemberTable<FillFormatObject>& Members() {
        static const MemberTable<FillFormatObject> members{
            {"Visible", [](FillFormatObject& self,
                           Invocation& call) { TriStateProperty(call, self.Fill().visible); }},
            {"Transparency",
             [](FillFormatObject& self, Invocation& call) {
                 RangedProperty(call, self.Fill().transparency, 0, 1);
             }},
            {"ForeColor",
             [](FillFormatObject& self, Invocation& call) {
                 self.Color(call,
                            [](Shape& shape) -> std::int32_t& { return shape.fill.foreColor; });
             }},
            {"BackColor",
             [](FillFormatObject& self, Invocation& call) {
                 self.Color(call,
                            [](Shape& shape) -> std::int32_t& { return shape.fill.backColor; });
             }},
            {"Type",
             [](FillFormatObject& self, Invocation& call) {
                 ReadOnly(call);
                 call.ReturnInteger(self.Fill().type);
             }},
            {"Pattern",
             [](FillFormatObject& self, Invocation& call) {
                 call.ExpectCount(0, 0);
                 if (call.IsPut()) return self.ApplyPattern(call.PutInteger());
                 call.ReturnInteger(self.Fill().pattern);
             }},
            {"Patterned",
             [](FillFormatObject& self, Invocation& call) {
                 call.ExpectCount(1, 1);
                 self.ApplyPattern(call.Integer(0));
                 call.ReturnEmpty();
             }},
            {"Solid",
             [](FillFormatObject& self, Invocation& call) {
                 call.ExpectCount(0, 0);
                 FillFormat& fill = self.Fill();
                 fill.type = mso::kFillSolid;
                 fill.pattern = mso::kPatternMixed;
                 fill.visible = true;
                 call.ReturnEmpty();
             }},
        };
        return members;
    }

  private:
    FillFormat& Fill() { return handle_.Live().fill; }

    void Color(Invocation& call, std::int32_t& (*select)(Shape&)) {
        call.ExpectCount(0, 0);
        handle_.Live();
        call.ReturnObject(NewColorFormatObject(handle_, select));
    }

    // The pattern numbers run from 1 to 62; a solid fill's "mixed" pattern is not one of them.
    void ApplyPattern(int pattern) {
        FillFormat& fill = Fill();
        if (pattern < 1 || pattern > 62) RaiseOutOfRange();
        fill.type = mso::kFillPatterned;
        fill.pattern = pattern;
        fill.visible = true;
    }

    ShapeHandle handle_;
};

}  // namespace

IDispatch* NewColorFormatObject(const ShapeHandle& handle, std::int32_t& (*select)(Shape&)) {
    return new ColorFormatObject(handle, select);
}

IDispatch* NewLineFormatObject(const ShapeHandle& handle) {
    return new LineFormatObject(handle);
}

IDispatch* NewFillFormatObject(const ShapeHandle& handle) {
    return new FillFormatObject(handle);
}

}  // namespace sheethost
