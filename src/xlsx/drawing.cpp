#include "xlsx/drawing.h"

#include <algorithm>
#include <climits>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string_view>
#include <vector>

#include "xlsx/chart_part.h"
#include "xlsx/drawing_anchor.h"
#include "xlsx/drawing_shape.h"
#include "xlsx/drawing_xml.h"
#include "xlsx/sheet_write.h"
#include "xlsx/workbook_parts.h"
#include "xlsx/xml.h"

namespace xlsx {
namespace {

using sheethost::Chart;
using sheethost::Shape;

constexpr const char* kEmptyDrawing =
    R"(<xdr:wsDr xmlns:xdr="http://schemas.openxmlformats.org/drawingml/2006/spreadsheetDrawing" )"
    R"(xmlns:a="http://schemas.openxmlformats.org/drawingml/2006/main"/>)";

bool IsAnchor(pugi::xml_node node) {
    const std::string_view name = LocalName(node);
    return name == "twoCellAnchor" || name == "oneCellAnchor" || name == "absoluteAnchor";
}

pugi::xml_node ObjectOf(pugi::xml_node anchor) {
    for (pugi::xml_node child : anchor.children()) {
        const std::string_view name = LocalName(child);
        if (name == "sp" || name == "cxnSp" || name == "graphicFrame" || name == "pic" ||
            name == "grpSp" || name == "contentPart") {
            return child;
        }
    }
    return {};
}

// The relationship id of the chart a graphic frame shows; empty for other frames.
std::string ChartIdOf(pugi::xml_node frame) {
    pugi::xml_node chart = Child(Child(Child(frame, "graphic"), "graphicData"), "chart");
    return RelationshipIdAttribute(chart).value();
}

// One anchor of a drawing part as read: the host's records for it, or nothing when the host
// does not model it.
struct ReadObject {
    pugi::xml_node anchor;
    std::optional<Shape> shape;
    std::optional<Chart> chart;
};

struct ReadDrawingPart {
    std::string partName;
    pugi::xml_document document;
    std::vector<ReadObject> objects;
};

// Reads the drawing the worksheet refers to, if any.
std::unique_ptr<ReadDrawingPart> ReadPart(const Package& package, const std::string& worksheetPart,
                                          pugi::xml_node worksheet, const SheetGrid& grid,
                                          const ThemeColors& theme) {
    const std::string id = RelationshipIdAttribute(Child(worksheet, "drawing")).value();
    if (id.empty()) return nullptr;
    std::string partName;
    for (const Relationship& relationship : ReadRelationships(package, worksheetPart)) {
        if (relationship.id == id && !relationship.external) partName = relationship.target;
    }
    const Part* part = package.Find(partName);
    if (part == nullptr) return nullptr;
    auto drawing = std::make_unique<ReadDrawingPart>();
    drawing->partName = partName;
    ParseXml(drawing->document, part->bytes, partName);
    const auto chartParts = ReadRelationships(package, partName);
    for (pugi::xml_node anchor : drawing->document.document_element().children()) {
        if (!IsAnchor(anchor)) continue;
        ReadObject object;
        object.anchor = anchor;
        const auto anchored = ReadAnchor(anchor, grid);
        if (anchored) {
            object.shape = ReadShapeElement(ObjectOf(anchor), anchored->box, theme);
        }
        if (object.shape && object.shape->type == sheethost::mso::kChart) {
            const std::string chartId = ChartIdOf(ObjectOf(anchor));
            for (const Relationship& relationship : chartParts) {
                if (relationship.id != chartId || relationship.external) continue;
                if (const Part* chart = package.Find(relationship.target)) {
                    object.chart = ReadChartPart(chart->bytes, relationship.target);
                }
            }
            // A frame of something other than a chart the host can show stays the file's.
            if (!object.chart) object.shape.reset();
        }
        if (object.shape) {
            object.shape->placement = anchored->placement;
            if (object.chart) object.chart->shapeId = object.shape->id;
        }
        drawing->objects.push_back(std::move(object));
    }
    return drawing;
}

const Chart* ChartOf(const sheethost::Sheet& sheet, int shapeId) {
    for (const auto& chart : sheet.charts) {
        if (chart->shapeId == shapeId) return chart.get();
    }
    return nullptr;
}

// Whether the sheet's drawing layer is what the part held.
bool Unchanged(const ReadDrawingPart& drawing, const sheethost::Sheet& sheet) {
    std::size_t next = 0;
    for (const ReadObject& object : drawing.objects) {
        if (!object.shape) continue;
        if (next == sheet.shapes.size() || *sheet.shapes[next] != *object.shape) return false;
        if (object.chart) {
            const Chart* chart = ChartOf(sheet, object.shape->id);
            if (chart == nullptr || !SameChartInFile(*chart, *object.chart)) return false;
        }
        ++next;
    }
    return next == sheet.shapes.size();
}

// The relationship ids a part's XML uses (r:id, r:embed, r:link and the like).
std::set<std::string> UsedIds(pugi::xml_node root, const std::string& prefix) {
    std::set<std::string> ids;
    const std::string start = prefix + ":";
    for (const pugi::xpath_node& found : root.select_nodes(".//*")) {
        for (pugi::xml_attribute attribute : found.node().attributes()) {
            if (std::string_view(attribute.name()).starts_with(start))
                ids.insert(attribute.value());
        }
    }
    return ids;
}

void SetChartReference(pugi::xml_node frame, const std::string& id,
                       const DrawingPrefixes& prefixes) {
    pugi::xml_node graphic = ChildOrAdd(frame, prefixes.a, "graphic");
    pugi::xml_node data = ChildOrAdd(graphic, prefixes.a, "graphicData");
    SetAttribute(data, "uri", kChartNamespace);
    pugi::xml_node chart = Child(data, "chart");
    if (!chart) {
        chart = AddElement(data, prefixes.c, "chart");
        SetAttribute(chart, ("xmlns:" + prefixes.c).c_str(), kChartNamespace);
        SetAttribute(chart, ("xmlns:" + prefixes.r).c_str(), kRelationshipsNamespace);
    }
    SetAttribute(chart, (prefixes.r + ":id").c_str(), id);
}

class DrawingWriter {
  public:
    DrawingWriter(Package& package, ContentTypes& types, const sheethost::Sheet& sheet,
                  const ReadDrawingPart* source, std::string partName, const ThemeColors& theme)
        : package_(package),
          types_(types),
          sheet_(sheet),
          theme_(theme),
          source_(source),
          partName_(std::move(partName)),
          relationships_(package, partName_),
          grid_(sheet) {}

    // Builds the part; false when nothing is left in it.
    bool Write() {
        if (source_ != nullptr) {
            pugi::xml_node root = document_.append_copy(source_->document.document_element());
            while (root.first_child()) root.remove_child(root.first_child());
        } else {
            document_.load_string(kEmptyDrawing);
        }
        pugi::xml_node root = document_.document_element();
        prefixes_ = DrawingPrefixes::Bind(root);
        std::map<int, const ReadObject*> readById;
        std::set<int> keptIds;
        if (source_ != nullptr) {
            for (const ReadObject& object : source_->objects) {
                if (!object.shape) {
                    root.append_copy(object.anchor);
                    keptIds.insert(ObjectId(object.anchor));
                } else {
                    readById.emplace(object.shape->id, &object);
                }
            }
        }
        const std::map<int, int> newIds = IdsClearOf(keptIds);
        for (const auto& shape : sheet_.shapes) {
            const auto found = readById.find(shape->id);
            const ReadObject* read = found == readById.end() ? nullptr : found->second;
            if (read != nullptr && LocalName(ObjectOf(read->anchor)) != ObjectElementName(*shape)) {
                read = nullptr;
            }
            WriteObject(root, *shape, WithIds(*shape, newIds), read);
        }
        DropUnusedRelationships(root);
        relationships_.Store();
        return static_cast<bool>(root.first_child());
    }

    std::string Bytes() const { return SerializeXml(document_); }

  private:
    static int ObjectId(pugi::xml_node anchor) {
        pugi::xml_node object = ObjectOf(anchor);
        for (pugi::xml_node child : object.children()) {
            if (LocalName(child).starts_with("nv")) {
                return Child(child, "cNvPr").attribute("id").as_int();
            }
        }
        return 0;
    }

    // New ids for the host's shapes whose ids an object the host does not model already has:
    // the host numbers its shapes without seeing those objects, and ids must stay unique.
    // They count on above every id in use; a file may use the largest id there is, and then
    // they take the lowest free ones.
    std::map<int, int> IdsClearOf(const std::set<int>& keptIds) const {
        long long next = keptIds.empty() ? 1 : *keptIds.rbegin() + 1LL;
        for (const auto& shape : sheet_.shapes) next = std::max(next, shape->id + 1LL);
        std::set<int> taken;  // gathered once the ids above run out
        int low = 0;
        const auto freeId = [&]() -> int {
            if (next <= INT_MAX) return static_cast<int>(next++);
            if (taken.empty()) {
                taken = keptIds;
                for (const auto& shape : sheet_.shapes) taken.insert(shape->id);
            }
            do {
                ++low;
            } while (taken.contains(low));
            return low;
        };
        std::map<int, int> newIds;
        for (const auto& shape : sheet_.shapes) {
            if (keptIds.contains(shape->id)) newIds[shape->id] = freeId();
        }
        return newIds;
    }

    static Shape WithIds(Shape shape, const std::map<int, int>& newIds) {
        auto renumber = [&](int& id) {
            if (auto found = newIds.find(id); found != newIds.end()) id = found->second;
        };
        renumber(shape.id);
        if (shape.beginConnection) renumber(shape.beginConnection->shapeId);
        if (shape.endConnection) renumber(shape.endConnection->shapeId);
        return shape;
    }

    // Writes `shape`, which is the sheet's `original` with its ids as the file gets them.
    void WriteObject(pugi::xml_node root, const Shape& original, const Shape& shape,
                     const ReadObject* read) {
        pugi::xml_node anchor;
        pugi::xml_node object;
        const Shape* before = nullptr;
        if (read != nullptr) {
            anchor = root.append_copy(read->anchor);
            object = ObjectOf(anchor);
            before = &*read->shape;
        } else {
            anchor = AddElement(root, prefixes_.xdr, "twoCellAnchor");
            object = AddShapeElement(anchor, shape, prefixes_);
            AddElement(anchor, prefixes_.xdr, "clientData");
        }
        const bool moved = before == nullptr || before->left != shape.left ||
                           before->top != shape.top || before->width != shape.width ||
                           before->height != shape.height || before->placement != shape.placement;
        if (moved || LocalName(anchor) != "twoCellAnchor") {
            if (LocalName(anchor) != "twoCellAnchor") {
                anchor.set_name(Prefixed(prefixes_.xdr, "twoCellAnchor").c_str());
            }
            WriteAnchor(anchor, shape.placement,
                        Box{shape.left, shape.top, shape.width, shape.height}, grid_, prefixes_);
        }
        WriteShapeElement(object, shape, before, prefixes_);
        if (shape.type == sheethost::mso::kChart) WriteChart(object, original.id, read);
    }

    void WriteChart(pugi::xml_node frame, int shapeId, const ReadObject* read) {
        const Chart* chart = ChartOf(sheet_, shapeId);
        if (chart == nullptr) return;
        if (read != nullptr && read->chart && SameChartInFile(*chart, *read->chart)) return;
        const std::string chartPart = FreePartName(package_, "xl/charts/chart", ".xml");
        package_.Put(chartPart, WriteChartPart(*chart, theme_));
        types_.Override(chartPart, kChartContentType);
        SetChartReference(frame, relationships_.Add(kChartType, chartPart), prefixes_);
    }

    // Charts and pictures no longer shown lose their relationship (the save removes the parts
    // nothing leads to any more).
    void DropUnusedRelationships(pugi::xml_node root) {
        const std::set<std::string> used = UsedIds(root, prefixes_.r);
        for (const std::string& id : relationships_.Ids()) {
            if (!used.contains(id)) relationships_.Remove(id);
        }
    }

    Package& package_;
    ContentTypes& types_;
    const sheethost::Sheet& sheet_;
    const ThemeColors& theme_;
    const ReadDrawingPart* source_;
    std::string partName_;
    PartRelationships relationships_;
    SheetGrid grid_;
    pugi::xml_document document_;
    DrawingPrefixes prefixes_;
};

}  // namespace

void ReadDrawing(const Package& package, const std::string& worksheetPart, pugi::xml_node worksheet,
                 const ThemeColors& theme, sheethost::Sheet& sheet) {
    const SheetGrid grid(sheet);
    const auto drawing = ReadPart(package, worksheetPart, worksheet, grid, theme);
    if (!drawing) return;
    for (ReadObject& object : drawing->objects) {
        if (!object.shape) continue;
        sheet.shapes.push_back(std::make_shared<Shape>(std::move(*object.shape)));
        if (object.chart) sheet.charts.push_back(std::make_shared<Chart>(std::move(*object.chart)));
    }
}

void WriteDrawing(Package& package, ContentTypes& types, const std::string& worksheetPart,
                  pugi::xml_node worksheet, const ThemeColors& theme,
                  const sheethost::Sheet& sheet) {
    const SheetGrid grid(sheet);
    const auto source = ReadPart(package, worksheetPart, worksheet, grid, theme);
    if (source && Unchanged(*source, sheet)) return;
    if (!source && sheet.shapes.empty()) return;

    PartRelationships sheetRelationships(package, worksheetPart);
    const std::string partName =
        source ? source->partName : FreePartName(package, "xl/drawings/drawing", ".xml");
    DrawingWriter writer(package, types, sheet, source.get(), partName, theme);
    if (!writer.Write()) {
        // Nothing left to draw: the worksheet no longer refers to the part, which the save then
        // removes.
        sheetRelationships.RemoveTarget(partName);
        sheetRelationships.Store();
        worksheet.remove_child(Child(worksheet, "drawing"));
        return;
    }
    package.Put(partName, writer.Bytes());
    types.Override(partName, kDrawingContentType);
    if (source) return;
    const std::string id = sheetRelationships.Add(kDrawingType, partName);
    sheetRelationships.Store();
    pugi::xml_node drawing = EnsureChild(worksheet, "drawing", kWorksheetOrder);
    const std::string prefix = NamespacePrefix(worksheet, kRelationshipsNamespace, "r");
    SetAttribute(drawing, (prefix + ":id").c_str(), id);
}

}  // namespace xlsx
