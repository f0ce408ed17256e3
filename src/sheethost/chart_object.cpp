// Chart, ChartTitle, Axis, SeriesCollection and Series.
#include <algorithm>
#include <array>

#include "sheethost/chart_place.h"
#include "sheethost/chart_source.h"
#include "sheethost/shape_geometry.h"
#include "sheethost/shape_objects.h"
#include "sheethost/shape_text.h"

namespace sheethost {
namespace {

constexpr int kCategoryAxis = 1;
constexpr int kValueAxis = 2;
constexpr int kLocationAsNewSheet = 1;
constexpr int kLocationAsObject = 2;

// What every object of one chart holds: the chart and its workbook, which it keeps alive. The
// chart is found again at each call, so the objects stay valid when Location moves it.
struct ChartHandle {
    BookPtr book;
    std::shared_ptr<Chart> chart;

    ChartPlace Place() const {
        std::optional<ChartPlace> place = FindChartPlace(*book, chart);
        if (!place) RaiseDeleted();
        return *place;
    }
    Chart& Live() const {
        Place();
        return *chart;
    }
    std::string Name() const {
        const ChartPlace place = Place();
        if (place.chartSheet) return place.chartSheet->name;
        return place.sheet->name + " " + (place.frame ? place.frame->name : std::string());
    }
};

// The title's text as a frame of one run, so that Characters(start, length) reads and writes it
// the way it does a shape's text.
TextFrame TitleFrame(const Chart& chart) {
    TextFrame frame;
    frame.runs.push_back({chart.title, {}});
    return frame;
}

class TitleCharactersObject final : public DispatchObjectOf<TitleCharactersObject> {
  public:
    TitleCharactersObject(ChartHandle handle, CharacterSpan span)
        : handle_(std::move(handle)), span_(span) {}

    std::string_view TypeName() const override { return "Characters"; }
    std::string Describe() const override { return "Characters of the title of " + handle_.Name(); }

    static const MemberTable<TitleCharactersObject>& Members() {
        static const MemberTable<TitleCharactersObject> members{
            {"Text", [](TitleCharactersObject& self, Invocation& call) { self.Text(call); }},
            {"Caption", [](TitleCharactersObject& self, Invocation& call) { self.Text(call); }},
            {"Count",
             [](TitleCharactersObject& self, Invocation& call) {
                 ReadOnly(call);
                 call.ExpectCount(0, 0);
                 call.ReturnInteger(SpanLength(TitleFrame(self.handle_.Live()), self.span_));
             }},
        };
        return members;
    }

  private:
    void Text(Invocation& call) {
        call.ExpectCount(0, 0);
        Chart& chart = handle_.Live();
        TextFrame frame = TitleFrame(chart);
        if (!call.IsPut()) return call.ReturnText(SpanText(frame, span_));
        ReplaceSpanText(frame, span_, call.PutText());
        chart.title = SpanText(frame, {});
    }

    ChartHandle handle_;
    CharacterSpan span_;
};

class ChartTitleObject final : public DispatchObjectOf<ChartTitleObject> {
  public:
    explicit ChartTitleObject(ChartHandle handle) : handle_(std::move(handle)) {}

    std::string_view TypeName() const override { return "ChartTitle"; }
    std::string Describe() const override { return "ChartTitle of " + handle_.Name(); }

    static const MemberTable<ChartTitleObject>& Members() {
        static const MemberTable<ChartTitleObject> members{
            {"Text", [](ChartTitleObject& self,
                        Invocation& call) { TextProperty(call, self.Title().title); }},
            {"Caption", [](ChartTitleObject& self,
                           Invocation& call) { TextProperty(call, self.Title().title); }},
            {"Characters",
             [](ChartTitleObject& self, Invocation& call) {
                 call.ExpectCount(0, 2);
                 self.Title();
                 CharacterSpan span;
                 if (const auto start = call.OptionalInteger(0)) span.start = *start;
                 if (const auto length = call.OptionalInteger(1)) span.length = *length;
                 if (span.start < 1 || (call.Has(1) && span.length < 0)) RaiseOutOfRange();
                 call.ReturnObject(new TitleCharactersObject(self.handle_, span));
             }},
            {"Delete",
             [](ChartTitleObject& self, Invocation& call) {
                 call.ExpectCount(0, 0);
                 self.Title().hasTitle = false;
                 call.ReturnEmpty();
             }},
        };
        return members;
    }

  private:
    // The title, refused once the chart no longer shows one.
    Chart& Title() {
        Chart& chart = handle_.Live();
        if (!chart.hasTitle) Raise("The chart has no title.");
        return chart;
    }

    ChartHandle handle_;
};

ChartAxis& AxisOf(Chart& chart, int type) {
    return type == kCategoryAxis ? chart.categoryAxis : chart.valueAxis;
}

// The axis type and group arguments of HasAxis and Axes: a primary category or value axis.
int AxisArgument(const Invocation& call) {
    call.ExpectCount(1, 2);
    const int type = call.Integer(0);
    const int group = call.OptionalInteger(1).value_or(1);
    if ((type != kCategoryAxis && type != kValueAxis) || group != 1) RaiseOutOfRange();
    return type;
}

class AxisObject final : public DispatchObjectOf<AxisObject> {
  public:
    AxisObject(ChartHandle handle, int type) : handle_(std::move(handle)), type_(type) {}

    std::string_view TypeName() const override { return "Axis"; }
    std::string Describe() const override { return "Axis of " + handle_.Name(); }

    static const MemberTable<AxisObject>& Members() {
        static const MemberTable<AxisObject> members{
            {"CategoryType", [](AxisObject& self, Invocation& call) { self.CategoryType(call); }},
            {"Type",
             [](AxisObject& self, Invocation& call) {
                 ReadOnly(call);
                 call.ExpectCount(0, 0);
                 self.Axis();
                 call.ReturnInteger(self.type_);
             }},
        };
        return members;
    }

  private:
    ChartAxis& Axis() {
        ChartAxis& axis = AxisOf(handle_.Live(), type_);
        if (!axis.hasAxis) Raise("The chart does not show this axis.");
        return axis;
    }

    // Category scale 2, time scale 3 or automatic; only a category axis has one.
    void CategoryType(Invocation& call) {
        ChartAxis& axis = Axis();
        if (type_ != kCategoryAxis)
            Raise("Unable to set the CategoryType property of the Axis class");
        int value = axis.categoryType;
        IntegerProperty(call, value);
        if (!call.IsPut()) return;
        if (value != 2 && value != 3 && value != mso::kAutomaticScale) RaiseOutOfRange();
        axis.categoryType = value;
    }

    ChartHandle handle_;
    int type_;
};

class SeriesObject final : public DispatchObjectOf<SeriesObject> {
  public:
    SeriesObject(ChartHandle handle, std::size_t index)
        : handle_(std::move(handle)), index_(index) {}

    std::string_view TypeName() const override { return "Series"; }
    std::string Describe() const override {
        return "Series " + std::to_string(index_ + 1) + " of " + handle_.Name();
    }

    static const MemberTable<SeriesObject>& Members() {
        static const MemberTable<SeriesObject> members{
            {"Name", [](SeriesObject& self, Invocation& call) { self.Name(call); }},
            {"Formula",
             [](SeriesObject& self, Invocation& call) {
                 ReadOnly(call);
                 call.ExpectCount(0, 0);
                 call.ReturnText(self.Formula());
             }},
            {"PlotOrder",
             [](SeriesObject& self, Invocation& call) {
                 ReadOnly(call);
                 call.ExpectCount(0, 0);
                 self.Live();
                 call.ReturnInteger(static_cast<int>(self.index_ + 1));
             }},
            {"Delete",
             [](SeriesObject& self, Invocation& call) {
                 call.ExpectCount(0, 0);
                 self.Live();
                 auto& series = self.handle_.chart->series;
                 series.erase(series.begin() + static_cast<std::ptrdiff_t>(self.index_));
                 call.ReturnEmpty();
             }},
        };
        return members;
    }

  private:
    ChartSeries& Live() {
        Chart& chart = handle_.Live();
        if (index_ >= chart.series.size()) RaiseDeleted();
        return chart.series[index_];
    }

    // A name given as text replaces the reference to its cell.
    void Name(Invocation& call) {
        ChartSeries& series = Live();
        TextProperty(call, series.name);
        if (call.IsPut()) series.nameReference.clear();
    }

    std::string Formula() {
        const ChartSeries& series = Live();
        const auto withoutEquals = [](const std::string& reference) {
            return reference.empty() ? reference : reference.substr(1);
        };
        const std::string name = series.nameReference.empty() ? "\"" + series.name + "\""
                                                              : withoutEquals(series.nameReference);
        return "=SERIES(" + name + "," + withoutEquals(series.xValues) + "," +
               withoutEquals(series.values) + "," + std::to_string(index_ + 1) + ")";
    }

    ChartHandle handle_;
    std::size_t index_;
};

class SeriesCollectionObject final : public DispatchObjectOf<SeriesCollectionObject> {
  public:
    explicit SeriesCollectionObject(ChartHandle handle) : handle_(std::move(handle)) {}

    std::string_view TypeName() const override { return "SeriesCollection"; }
    std::string Describe() const override { return "SeriesCollection of " + handle_.Name(); }

    static const MemberTable<SeriesCollectionObject>& Members() {
        static const MemberTable<SeriesCollectionObject> members{
            {
                {"Item",
                 [](SeriesCollectionObject& self, Invocation& call) {
                     ReadOnly(call);
                     call.ExpectCount(1, 1);
                     const int index = call.Integer(0);
                     const Chart& chart = self.handle_.Live();
                     if (index < 1 || static_cast<std::size_t>(index) > chart.series.size()) {
                         RaiseBadIndex();
                     }
                     call.ReturnObject(
                         new SeriesObject(self.handle_, static_cast<std::size_t>(index) - 1));
                 }},
                {"Count",
                 [](SeriesCollectionObject& self, Invocation& call) {
                     ReadOnly(call);
                     call.ExpectCount(0, 0);
                     call.ReturnInteger(static_cast<int>(self.handle_.Live().series.size()));
                 }},
            },
            "Item"};
        return members;
    }

  private:
    ChartHandle handle_;
};

bool IsChartType(int type) {
    static constexpr std::array kOthers = {-4169, -4151, -4120, -4102, -4101, -4100,
                                           -4098, 1,     4,     5,     15};
    return (type >= 51 && type <= 112) ||
           std::find(kOthers.begin(), kOthers.end(), type) != kOthers.end();
}

class ChartObject final : public DispatchObjectOf<ChartObject> {
  public:
    explicit ChartObject(ChartHandle handle) : handle_(std::move(handle)) {}

    std::string_view TypeName() const override { return "Chart"; }
    std::string Describe() const override {
        const std::optional<ChartPlace> place = FindChartPlace(*handle_.book, handle_.chart);
        return place ? "Chart " + handle_.Name() : "Chart (deleted)";
    }

    static const MemberTable<ChartObject>& Members() {
        static const MemberTable<ChartObject> members{
            {"Name", [](ChartObject& self, Invocation& call) { self.Name(call); }},
            {"HasTitle", [](ChartObject& self, Invocation& call) { self.HasTitle(call); }},
            {"ChartTitle",
             [](ChartObject& self, Invocation& call) {
                 call.ExpectCount(0, 0);
                 if (!self.handle_.Live().hasTitle) Raise("The chart has no title.");
                 call.ReturnObject(new ChartTitleObject(self.handle_));
             }},
            {"HasAxis",
             [](ChartObject& self, Invocation& call) {
                 const int type = AxisArgument(call);
                 ChartAxis& axis = AxisOf(self.handle_.Live(), type);
                 if (call.IsPut()) return void(axis.hasAxis = call.PutBoolean());
                 call.ReturnBoolean(axis.hasAxis);
             }},
            {"Axes",
             [](ChartObject& self, Invocation& call) {
                 const int type = AxisArgument(call);
                 if (!AxisOf(self.handle_.Live(), type).hasAxis) {
                     Raise("Unable to get the Axes property of the Chart class");
                 }
                 call.ReturnObject(new AxisObject(self.handle_, type));
             }},
            {"ChartType", [](ChartObject& self, Invocation& call) { self.ChartType(call); }},
            {"PlotBy",
             [](ChartObject& self, Invocation& call) {
                 ReadOnly(call);
                 call.ExpectCount(0, 0);
                 call.ReturnInteger(self.handle_.Live().plotBy);
             }},
            {"SetSourceData",
             [](ChartObject& self, Invocation& call) { self.SetSourceData(call); }},
            {"SeriesCollection",
             [](ChartObject& self, Invocation& call) {
                 self.handle_.Live();
                 ReturnItemOrCollection(call, new SeriesCollectionObject(self.handle_));
             }},
            {"Location", [](ChartObject& self, Invocation& call) { self.Location(call); }},
            {"Left", [](ChartObject& self, Invocation& call) { self.Box(call, &Shape::left); }},
            {"Top", [](ChartObject& self, Invocation& call) { self.Box(call, &Shape::top); }},
            {"Width", [](ChartObject& self, Invocation& call) { self.Box(call, &Shape::width); }},
            {"Height", [](ChartObject& self, Invocation& call) { self.Box(call, &Shape::height); }},
            {"Delete",
             [](ChartObject& self, Invocation& call) {
                 call.ExpectCount(0, 0);
                 self.handle_.Place();
                 RemoveChart(*self.handle_.book, self.handle_.chart);
                 call.ReturnEmpty();
             }},
            {"Parent", [](ChartObject& self, Invocation& call) { self.Parent(call); }},
        };
        return members;
    }

  private:
    // An embedded chart is named after its sheet and frame ("Report Chart 2") and cannot be
    // renamed; a chart sheet can.
    void Name(Invocation& call) {
        const ChartPlace place = handle_.Place();
        if (!call.IsPut()) {
            call.ExpectCount(0, 0);
            return call.ReturnText(handle_.Name());
        }
        if (!place.chartSheet) Raise("Unable to set the Name property of the Chart class");
        TextProperty(call, place.chartSheet->name);
    }

    // A title switched on shows "Chart Title" until it is given a text.
    void HasTitle(Invocation& call) {
        Chart& chart = handle_.Live();
        BooleanProperty(call, chart.hasTitle);
        if (call.IsPut() && chart.hasTitle && chart.title.empty()) chart.title = "Chart Title";
    }

    void ChartType(Invocation& call) {
        Chart& chart = handle_.Live();
        int type = chart.chartType;
        IntegerProperty(call, type);
        if (!call.IsPut()) return;
        if (!IsChartType(type)) RaiseOutOfRange();
        chart.chartType = type;
    }

    void SetSourceData(Invocation& call) {
        call.ExpectCount(1, 2);
        Chart& chart = handle_.Live();
        const std::optional<RangeTarget> range = RangeTargetOf(call.Object(0));
        if (!range) Refuse(DISP_E_TYPEMISMATCH);
        const std::optional<ChartSource> source =
            ReadChartSource(*range->sheet, range->areas, call.OptionalInteger(1));
        if (!source) Raise("Method 'SetSourceData' of object '_Chart' failed");
        chart.sourceData = source->sourceData;
        chart.plotBy = source->plotBy;
        chart.series = source->series;
        call.ReturnEmpty();
    }

    // Moves the chart onto a worksheet (as an object, keeping the size of its frame) or onto a
    // chart sheet of its own, and answers the chart in its new place.
    void Location(Invocation& call) {
        call.ExpectCount(1, 2);
        const ChartPlace place = handle_.Place();
        const int where = call.Integer(0);
        const std::optional<std::string> name = call.OptionalText(1);
        Workbook& book = *handle_.book;
        if (where == kLocationAsObject) {
            const std::shared_ptr<Sheet> target = name ? FindSheet(book, *name) : nullptr;
            if (!target) Raise("Method 'Location' of object '_Chart' failed");
            const double width = place.frame ? place.frame->width : kDefaultChartWidth;
            const double height = place.frame ? place.frame->height : kDefaultChartHeight;
            RemoveChart(book, handle_.chart);
            EmbedChart(*target, handle_.chart, ColumnLeft(*target, target->activeCell.column),
                       RowTop(*target, target->activeCell.row), width, height);
        } else if (where == kLocationAsNewSheet) {
            const std::string sheetName = name.value_or(NewChartSheetName(book));
            if (FindSheet(book, sheetName)) Raise("Method 'Location' of object '_Chart' failed");
            RemoveChart(book, handle_.chart);
            book.chartSheets.push_back({sheetName, handle_.chart});
        } else {
            RaiseOutOfRange();
        }
        const std::optional<ChartPlace> moved = FindChartPlace(book, handle_.chart);
        call.ReturnObject(NewChartObject(handle_.book, handle_.chart, moved->sheet));
    }

    // The box of an embedded chart is the box of its frame.
    void Box(Invocation& call, double Shape::*edge) {
        const ChartPlace place = handle_.Place();
        if (!place.frame) Raise("This member can only be accessed for an embedded chart.");
        Shape& frame = *place.frame;
        double value = frame.*edge;
        NumberProperty(call, value);
        if (!call.IsPut()) return;
        if ((edge == &Shape::width || edge == &Shape::height) && value < 0) RaiseOutOfRange();
        frame.*edge = value;
        RerouteConnectorsOf(frame.id, place.sheet->shapes);
    }

    void Parent(Invocation& call) {
        call.ExpectCount(0, 0);
        const ChartPlace place = handle_.Place();
        if (place.frame) {
            return call.ReturnObject(NewShapeObject(handle_.book, place.sheet, place.frame));
        }
        call.ReturnObject(NewWorkbookObject(handle_.book));
    }

    ChartHandle handle_;
};

}  // namespace

// The chart is found by identity wherever it is, so the sheet it was fetched from is not kept.
IDispatch* NewChartObject(const BookPtr& book, const std::shared_ptr<Chart>& chart,
                          const SheetPtr&) {
    return new ChartObject(ChartHandle{book, chart});
}

}  // namespace sheethost
