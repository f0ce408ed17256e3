// The format objects of a range: Borders and Border, Interior, Font, FormatConditions and
// FormatCondition (with the font and interior of a condition).
#include <array>
#include <cstdint>
#include <new>
#include <vector>

#include "sheethost/palette.h"
#include "sheethost/range_object.h"
#include "sheethost/sheet_edit.h"

namespace sheethost {
namespace {

constexpr HRESULT kInvalidCall = static_cast<HRESULT>(0x800A0005);

int CheckedColorIndex(const Invocation& call, std::string_view typeName) {
    const int index = call.PutInteger();
    if (index != xl::kAutomatic && index != xl::kNone && (index < 1 || index > 56)) {
        RaiseProperty("set", "ColorIndex", typeName);
    }
    return index;
}

template <class T>
void ReturnCommon(Invocation& call, const std::optional<T>& common) {
    if (!common) return call.ReturnNull();
    if constexpr (std::is_same_v<T, std::string>) {
        call.ReturnText(*common);
    } else if constexpr (std::is_same_v<T, bool>) {
        call.ReturnBoolean(*common);
    } else if constexpr (std::is_same_v<T, double>) {
        call.ReturnNumber(*common);
    } else {
        call.ReturnInteger(*common);
    }
}

// --- Borders --------------------------------------------------------------------------------

// Where Borders(index) lies in CellBorders.
std::size_t BorderSlot(int index) {
    return static_cast<std::size_t>(index - xl::kDiagonalDown);
}

// One side of the cells of a block: which cells, and which of their borders.
struct EdgePart {
    Area cells;
    int slot;
};

// The cell borders that make up edge `index` of `area`. An edge between two cells is kept on
// both, so that either cell reads it.
std::vector<EdgePart> EdgeParts(const Area& area, int index) {
    std::vector<EdgePart> parts;
    const Area& a = area;
    switch (index) {
        case xl::kDiagonalDown:
        case xl::kDiagonalUp:
            parts.push_back({a, index});
            break;
        case xl::kEdgeLeft:
            parts.push_back({{a.top, a.left, a.bottom, a.left}, xl::kEdgeLeft});
            if (a.left > 1) {
                parts.push_back({{a.top, a.left - 1, a.bottom, a.left - 1}, xl::kEdgeRight});
            }
            break;
        case xl::kEdgeRight:
            parts.push_back({{a.top, a.right, a.bottom, a.right}, xl::kEdgeRight});
            if (a.right < kMaxColumn) {
                parts.push_back({{a.top, a.right + 1, a.bottom, a.right + 1}, xl::kEdgeLeft});
            }
            break;
        case xl::kEdgeTop:
            parts.push_back({{a.top, a.left, a.top, a.right}, xl::kEdgeTop});
            if (a.top > 1)
                parts.push_back({{a.top - 1, a.left, a.top - 1, a.right}, xl::kEdgeBottom});
            break;
        case xl::kEdgeBottom:
            parts.push_back({{a.bottom, a.left, a.bottom, a.right}, xl::kEdgeBottom});
            if (a.bottom < kMaxRow) {
                parts.push_back({{a.bottom + 1, a.left, a.bottom + 1, a.right}, xl::kEdgeTop});
            }
            break;
        case xl::kInsideVertical:
            if (a.Columns() > 1) {
                parts.push_back({{a.top, a.left, a.bottom, a.right - 1}, xl::kEdgeRight});
                parts.push_back({{a.top, a.left + 1, a.bottom, a.right}, xl::kEdgeLeft});
            }
            break;
        case xl::kInsideHorizontal:
            if (a.Rows() > 1) {
                parts.push_back({{a.top, a.left, a.bottom - 1, a.right}, xl::kEdgeBottom});
                parts.push_back({{a.top + 1, a.left, a.bottom, a.right}, xl::kEdgeTop});
            }
            break;
        default:
            break;
    }
    return parts;
}

bool IsBorderIndex(int index) {
    return index >= xl::kDiagonalDown && index <= xl::kInsideHorizontal;
}

constexpr std::array<int, 6> kAllEdges{xl::kEdgeLeft,  xl::kEdgeTop,        xl::kEdgeBottom,
                                       xl::kEdgeRight, xl::kInsideVertical, xl::kInsideHorizontal};

// What Border (one index) and Borders (every edge and inside line at once) share.
template <class Self>
class BorderBase : public DispatchObjectOf<Self> {
  public:
    BorderBase(RangeSpan span, std::vector<int> indices)
        : span(std::move(span)), indices(std::move(indices)) {}

    std::string Describe() const override {
        return std::string(this->TypeName()) + " of " + span.Describe();
    }

    void Change(const std::function<void(Border&)>& change) const {
        // All the edges are weighed before any changes, so that a refusal leaves none changed.
        std::vector<Area> parts;
        for (const Area& area : span.areas) {
            for (int index : indices) {
                for (const EdgePart& part : EdgeParts(area, index)) parts.push_back(part.cells);
            }
        }
        if (CellsStyledBy(*span.sheet, parts) > kMostCellsStyledAtOnce) throw std::bad_alloc();
        // The edges of one area are drawn in one walk over the area and the cells around it.
        for (const Area& area : span.areas) {
            std::vector<StylePart> sides;
            for (int index : indices) {
                for (const EdgePart& part : EdgeParts(area, index)) {
                    const std::size_t slot = BorderSlot(part.slot);
                    sides.push_back({part.cells, [&change, slot](Style& style) {
                                         change(style.borders[slot]);
                                     }});
                }
            }
            ChangeStyleByPart(*span.sheet, sides);
        }
    }

    template <class T, class Get>
    std::optional<T> Common(Get get) const {
        std::optional<T> common;
        for (const Area& area : span.areas) {
            for (int index : indices) {
                const auto parts = EdgeParts(area, index);
                std::optional<T> value;
                if (parts.empty()) {
                    value = get(Border{});  // no inside lines in one row or column: no line
                } else {
                    const EdgePart& part = parts.front();
                    value = CommonStyleValue<T>(
                        RangeSpan{span.book, span.sheet, {part.cells}}, [&](const Style& style) {
                            return get(style.borders[BorderSlot(part.slot)]);
                        });
                }
                if (!value || (common && *common != *value)) return std::nullopt;
                common = value;
            }
        }
        return common;
    }

    const RangeSpan span;
    const std::vector<int> indices;
};

class BorderObject final : public BorderBase<BorderObject> {
  public:
    using BorderBase::BorderBase;
    static const MemberTable<BorderObject>& Members();
    std::string_view TypeName() const override { return "Border"; }
};

class BordersObject final : public BorderBase<BordersObject> {
  public:
    explicit BordersObject(RangeSpan span)
        : BorderBase(std::move(span), {kAllEdges.begin(), kAllEdges.end()}) {}
    static const MemberTable<BordersObject>& Members();
    std::string_view TypeName() const override { return "Borders"; }
};

template <class T>
void BorderLineStyle(T& border, Invocation& call) {
    if (!call.IsPut()) {
        return ReturnCommon(
            call, border.template Common<int>([](const Border& b) { return b.lineStyle; }));
    }
    const int lineStyle = call.PutInteger();
    border.Change([lineStyle](Border& b) {
        if (lineStyle == xl::kNone) {
            b = Border{};
        } else {
            b.lineStyle = lineStyle;
        }
    });
}

// Giving a weight or colour to a missing line draws a continuous one.
void DrawIfMissing(Border& border) {
    if (border.lineStyle == xl::kNone) border.lineStyle = xl::kContinuous;
}

template <class T>
void BorderWeight(T& border, Invocation& call) {
    if (!call.IsPut()) {
        return ReturnCommon(call,
                            border.template Common<int>([](const Border& b) { return b.weight; }));
    }
    const int weight = call.PutInteger();
    if (weight != xl::kHairline && weight != xl::kThin && weight != xl::kMedium &&
        weight != xl::kThick) {
        RaiseProperty("set", "Weight", border.TypeName());
    }
    border.Change([weight](Border& b) {
        b.weight = weight;
        DrawIfMissing(b);
    });
}

template <class T>
void BorderColorIndex(T& border, Invocation& call) {
    if (!call.IsPut()) {
        return ReturnCommon(
            call, border.template Common<int>([](const Border& b) { return b.colorIndex; }));
    }
    const int index = CheckedColorIndex(call, border.TypeName());
    border.Change([index](Border& b) {
        b.colorIndex = index;
        DrawIfMissing(b);
    });
}

template <class T>
void BorderColor(T& border, Invocation& call) {
    if (!call.IsPut()) {
        return ReturnCommon(call, border.template Common<double>([](const Border& b) {
            return static_cast<double>(PaletteColor(b.colorIndex));
        }));
    }
    const int index = NearestColorIndex(call.PutInteger());
    border.Change([index](Border& b) {
        b.colorIndex = index;
        DrawIfMissing(b);
    });
}

void BordersItem(BordersObject& borders, Invocation& call) {
    call.ReturnObject(NewBorderObject(borders.span, call.Integer(0)));
}

void BordersCount(BordersObject& borders, Invocation& call) {
    call.ReturnInteger(static_cast<std::int32_t>(borders.indices.size()));
}

// --- Interior and Font ----------------------------------------------------------------------

class InteriorObject final : public DispatchObjectOf<InteriorObject> {
  public:
    explicit InteriorObject(RangeSpan span) : span(std::move(span)) {}
    static const MemberTable<InteriorObject>& Members();
    std::string_view TypeName() const override { return "Interior"; }
    std::string Describe() const override { return "Interior of " + span.Describe(); }
    const RangeSpan span;
};

void ChangeInterior(const RangeSpan& span, const std::function<void(Interior&)>& change) {
    ChangeStyle(*span.sheet, span.areas, [&](Style& style) { change(style.interior); });
}

void InteriorColorIndex(InteriorObject& interior, Invocation& call) {
    if (!call.IsPut()) {
        return ReturnCommon(call, CommonStyleValue<int>(interior.span, [](const Style& s) {
                                return s.interior.colorIndex;
                            }));
    }
    const int index = CheckedColorIndex(call, "Interior");
    ChangeInterior(interior.span, [index](Interior& fill) {
        if (index == xl::kNone || index == xl::kAutomatic) {
            fill = Interior{};
            return;
        }
        fill.colorIndex = index;
        fill.color = PaletteColor(index);
        if (fill.pattern == xl::kNone) fill.pattern = xl::kPatternSolid;
    });
}

void InteriorColor(InteriorObject& interior, Invocation& call) {
    if (!call.IsPut()) {
        return ReturnCommon(call, CommonStyleValue<double>(interior.span, [](const Style& s) {
                                return static_cast<double>(s.interior.color);
                            }));
    }
    const std::int32_t color = call.PutInteger();
    ChangeInterior(interior.span, [color](Interior& fill) {
        fill.color = color;
        fill.colorIndex = NearestColorIndex(color);
        if (fill.pattern == xl::kNone) fill.pattern = xl::kPatternSolid;
    });
}

void InteriorPattern(InteriorObject& interior, Invocation& call) {
    if (!call.IsPut()) {
        return ReturnCommon(call, CommonStyleValue<int>(interior.span, [](const Style& s) {
                                return s.interior.pattern;
                            }));
    }
    const int pattern = call.PutInteger();
    ChangeInterior(interior.span, [pattern](Interior& fill) {
        if (pattern == xl::kNone) {
            fill = Interior{};
            return;
        }
        fill.pattern = pattern;
        if (fill.colorIndex == xl::kNone) fill.colorIndex = 2;  // white
    });
}

class FontObject final : public DispatchObjectOf<FontObject> {
  public:
    explicit FontObject(RangeSpan span) : span(std::move(span)) {}
    static const MemberTable<FontObject>& Members();
    std::string_view TypeName() const override { return "Font"; }
    std::string Describe() const override { return "Font of " + span.Describe(); }
    const RangeSpan span;
};

template <class T>
void FontProperty(FontObject& font, Invocation& call, T CellFont::*field, std::string_view member) {
    if (!call.IsPut()) {
        return ReturnCommon(call, CommonStyleValue<T>(font.span, [field](const Style& s) {
                                return s.font.*field;
                            }));
    }
    T value;
    if constexpr (std::is_same_v<T, std::string>) {
        value = call.PutText();
        if (value.empty()) RaiseProperty("set", member, "Font");
    } else if constexpr (std::is_same_v<T, bool>) {
        value = call.PutBoolean();
    } else {
        value = call.PutNumber();
        if (value < 1 || value > 409) RaiseProperty("set", member, "Font");
    }
    ChangeStyle(*font.span.sheet, font.span.areas, [&](Style& s) { s.font.*field = value; });
}

// An automatic font colour is black: it reads as palette entry 1.
int ShownFontColorIndex(int colorIndex) {
    return colorIndex == xl::kAutomatic ? 1 : colorIndex;
}

void FontColorIndex(FontObject& font, Invocation& call) {
    if (!call.IsPut()) {
        return ReturnCommon(call, CommonStyleValue<int>(font.span, [](const Style& s) {
                                return ShownFontColorIndex(s.font.colorIndex);
                            }));
    }
    const int index = CheckedColorIndex(call, "Font");
    ChangeStyle(*font.span.sheet, font.span.areas, [index](Style& s) {
        s.font.colorIndex = index == xl::kNone ? xl::kAutomatic : index;
    });
}

void FontColor(FontObject& font, Invocation& call) {
    if (!call.IsPut()) {
        return ReturnCommon(
            call, CommonStyleValue<double>(font.span, [](const Style& s) {
                return static_cast<double>(PaletteColor(ShownFontColorIndex(s.font.colorIndex)));
            }));
    }
    const int index = NearestColorIndex(call.PutInteger());
    ChangeStyle(*font.span.sheet, font.span.areas,
                [index](Style& s) { s.font.colorIndex = index; });
}

// --- Format conditions ----------------------------------------------------------------------

class FormatConditionsObject final : public DispatchObjectOf<FormatConditionsObject> {
  public:
    explicit FormatConditionsObject(RangeSpan span) : span(std::move(span)) {}
    static const MemberTable<FormatConditionsObject>& Members();
    std::string_view TypeName() const override { return "FormatConditions"; }
    std::string Describe() const override { return "FormatConditions of " + span.Describe(); }
    const RangeSpan span;
};

// Condition `index` (1-based) of every cell of a range, as the first cell shows it.
struct ConditionSlot {
    RangeSpan span;
    int index;

    std::string Describe() const {
        return "FormatCondition " + std::to_string(index) + " of " + span.Describe();
    }
    // Refuses a condition that is not (or no longer) there.
    const FormatCondition& Shown() const {
        const Area& first = span.First();
        const auto& conditions = EffectiveStyle(*span.sheet, first.top, first.left)->conditions;
        if (index < 1 || static_cast<std::size_t>(index) > conditions.size()) {
            Refuse(DISP_E_BADINDEX);
        }
        return conditions[static_cast<std::size_t>(index - 1)];
    }
    void Change(const std::function<void(FormatCondition&)>& change) const {
        Shown();
        ChangeStyle(*span.sheet, span.areas, [&](Style& style) {
            if (static_cast<std::size_t>(index) <= style.conditions.size()) {
                change(style.conditions[static_cast<std::size_t>(index - 1)]);
            }
        });
    }
    void Delete() const {
        Shown();
        const auto at = static_cast<std::ptrdiff_t>(index - 1);
        ChangeStyle(*span.sheet, span.areas, [at](Style& style) {
            if (at < static_cast<std::ptrdiff_t>(style.conditions.size())) {
                style.conditions.erase(style.conditions.begin() + at);
            }
        });
    }
};

class FormatConditionObject final : public DispatchObjectOf<FormatConditionObject> {
  public:
    explicit FormatConditionObject(ConditionSlot slot) : slot(std::move(slot)) {}
    static const MemberTable<FormatConditionObject>& Members();
    std::string_view TypeName() const override { return "FormatCondition"; }
    std::string Describe() const override { return slot.Describe(); }
    const ConditionSlot slot;
};

// The font or the interior of a condition: the colour it gives the cell.
class ConditionColorObject final : public DispatchObjectOf<ConditionColorObject> {
  public:
    ConditionColorObject(ConditionSlot slot, bool font) : slot(std::move(slot)), font(font) {}
    static const MemberTable<ConditionColorObject>& Members();
    std::string_view TypeName() const override { return font ? "Font" : "Interior"; }
    std::string Describe() const override {
        return std::string(TypeName()) + " of " + slot.Describe();
    }

    std::optional<int>& ColorOf(FormatCondition& condition) const {
        return font ? condition.fontColorIndex : condition.interiorColorIndex;
    }

    const ConditionSlot slot;
    const bool font;
};

void ConditionColorIndex(ConditionColorObject& color, Invocation& call) {
    if (!call.IsPut()) {
        FormatCondition shown = color.slot.Shown();
        return call.ReturnInteger(color.ColorOf(shown).value_or(xl::kNone));
    }
    const int index = CheckedColorIndex(call, color.TypeName());
    color.slot.Change([&](FormatCondition& condition) {
        color.ColorOf(condition) = index == xl::kNone ? std::nullopt : std::optional(index);
    });
}

void ConditionColor(ConditionColorObject& color, Invocation& call) {
    if (!call.IsPut()) {
        FormatCondition shown = color.slot.Shown();
        return call.ReturnNumber(PaletteColor(color.ColorOf(shown).value_or(0)));
    }
    const int index = NearestColorIndex(call.PutInteger());
    color.slot.Change([&](FormatCondition& condition) { color.ColorOf(condition) = index; });
}

std::string WithEquals(std::string formula) {
    return formula.empty() || formula.front() == '=' ? formula : "=" + formula;
}

void ConditionsAdd(FormatConditionsObject& conditions, Invocation& call) {
    FormatCondition added;
    added.type = call.Integer(0);
    added.comparison = call.OptionalInteger(1).value_or(xl::kBetween);
    added.formula1 = WithEquals(call.OptionalText(2).value_or(""));
    added.formula2 = WithEquals(call.OptionalText(3).value_or(""));
    const bool between = added.comparison == xl::kBetween || added.comparison == xl::kNotBetween;
    if ((added.type != xl::kCellValue && added.type != xl::kExpression) ||
        added.comparison < xl::kBetween || added.comparison > xl::kLessEqual ||
        added.formula1.empty() ||
        (added.type == xl::kCellValue && between && added.formula2.empty())) {
        Raise("Invalid procedure call or argument", kInvalidCall);
    }
    const RangeSpan& span = conditions.span;
    ChangeStyle(*span.sheet, span.areas, [&](Style& style) { style.conditions.push_back(added); });
    const Area& first = span.First();
    const auto count = EffectiveStyle(*span.sheet, first.top, first.left)->conditions.size();
    call.ReturnObject(NewFormatConditionObject(span, static_cast<int>(count)));
}

void ConditionsDelete(FormatConditionsObject& conditions, Invocation& call) {
    call.ExpectCount(0, 0);
    ChangeStyle(*conditions.span.sheet, conditions.span.areas,
                [](Style& style) { style.conditions.clear(); });
    call.ReturnEmpty();
}

void ConditionsCount(FormatConditionsObject& conditions, Invocation& call) {
    const Area& first = conditions.span.First();
    const Sheet& sheet = *conditions.span.sheet;
    call.ReturnInteger(
        static_cast<std::int32_t>(EffectiveStyle(sheet, first.top, first.left)->conditions.size()));
}

void ConditionsItem(FormatConditionsObject& conditions, Invocation& call) {
    call.ReturnObject(NewFormatConditionObject(conditions.span, call.Integer(0)));
}

}  // namespace

const MemberTable<BorderObject>& BorderObject::Members() {
    static const MemberTable<BorderObject> table({
        {"LineStyle", BorderLineStyle<BorderObject>},
        {"Weight", BorderWeight<BorderObject>},
        {"ColorIndex", BorderColorIndex<BorderObject>},
        {"Color", BorderColor<BorderObject>},
    });
    return table;
}

const MemberTable<BordersObject>& BordersObject::Members() {
    static const MemberTable<BordersObject> table(
        {
            {"LineStyle", BorderLineStyle<BordersObject>},
            {"Weight", BorderWeight<BordersObject>},
            {"ColorIndex", BorderColorIndex<BordersObject>},
            {"Color", BorderColor<BordersObject>},
            {"Item", BordersItem},
            {"Count", BordersCount},
        },
        "Item");
    return table;
}

const MemberTable<InteriorObject>& InteriorObject::Members() {
    static const MemberTable<InteriorObject> table({
        {"ColorIndex", InteriorColorIndex},
        {"Color", InteriorColor},
        {"Pattern", InteriorPattern},
    });
    return table;
}

const MemberTable<FontObject>& FontObject::Members() {
    static const MemberTable<FontObject> table({
        {"Name", [](FontObject& f, Invocation& c) { FontProperty(f, c, &CellFont::name, "Name"); }},
        {"Size", [](FontObject& f, Invocation& c) { FontProperty(f, c, &CellFont::size, "Size"); }},
        {"Bold", [](FontObject& f, Invocation& c) { FontProperty(f, c, &CellFont::bold, "Bold"); }},
        {"Italic",
         [](FontObject& f, Invocation& c) { FontProperty(f, c, &CellFont::italic, "Italic"); }},
        {"ColorIndex", FontColorIndex},
        {"Color", FontColor},
    });
    return table;
}

const MemberTable<FormatConditionsObject>& FormatConditionsObject::Members() {
    static const MemberTable<FormatConditionsObject> table(
        {
            {"Item", ConditionsItem},
            {"Count", ConditionsCount},
            {"Add", ConditionsAdd},
            {"Delete", ConditionsDelete},
        },
        "Item");
    return table;
}

const MemberTable<FormatConditionObject>& FormatConditionObject::Members() {
    using Condition = FormatConditionObject;
    static const MemberTable<Condition> table({
        {"Type", [](Condition& f, Invocation& c) { c.ReturnInteger(f.slot.Shown().type); }},
        {"Operator",
         [](Condition& f, Invocation& c) { c.ReturnInteger(f.slot.Shown().comparison); }},
        {"Formula1", [](Condition& f, Invocation& c) { c.ReturnText(f.slot.Shown().formula1); }},
        {"Formula2", [](Condition& f, Invocation& c) { c.ReturnText(f.slot.Shown().formula2); }},
        {"Font", [](Condition& f,
                    Invocation& c) { c.ReturnObject(new ConditionColorObject(f.slot, true)); }},
        {"Interior",
         [](Condition& f, Invocation& c) {
             c.ReturnObject(new ConditionColorObject(f.slot, false));
         }},
        {"Delete",
         [](Condition& f, Invocation& c) {
             f.slot.Delete();
             c.ReturnEmpty();
         }},
    });
    return table;
}

const MemberTable<ConditionColorObject>& ConditionColorObject::Members() {
    static const MemberTable<ConditionColorObject> table({
        {"ColorIndex", ConditionColorIndex},
        {"Color", ConditionColor},
    });
    return table;
}

IDispatch* NewBordersObject(const RangeSpan& span) {
    return new BordersObject(span);
}

IDispatch* NewBorderObject(const RangeSpan& span, int index) {
    if (!IsBorderIndex(index)) Raise("Unable to get the Item property of the Borders class");
    return new BorderObject(span, std::vector<int>{index});
}

IDispatch* NewInteriorObject(const RangeSpan& span) {
    return new InteriorObject(span);
}

IDispatch* NewFontObject(const RangeSpan& span) {
    return new FontObject(span);
}

IDispatch* NewFormatConditionObject(const RangeSpan& span, int index) {
    ConditionSlot slot{span, index};
    slot.Shown();
    return new FormatConditionObject(std::move(slot));
}

IDispatch* NewFormatConditionsObject(const RangeSpan& span) {
    return new FormatConditionsObject(span);
}

}  // namespace sheethost
