#include <memory>
#include <string>
#include <vector>

#include "core/engine_state.h"
#include "gantt/drawing.h"
#include "gantt/gantt.h"
#include "workbook/automation.h"

namespace {

struct ReleaseEnumerator {
    void operator()(IEnumVARIANT* enumerator) const { enumerator->Release(); }
};

// Every shape of the task sheet whose name begins with `prefix`, each held by its own reference.
std::vector<XlObject> ShapesNamedWith(std::string_view prefix) {
    std::vector<XlObject> matches;
    IEnumVARIANT* rawEnumerator = nullptr;
    if (FAILED(
            automation::EnumBegin(&rawEnumerator, EngineWbsSheet().object(), OLESTR(".Shapes")))) {
        return matches;
    }
    const std::unique_ptr<IEnumVARIANT, ReleaseEnumerator> enumerator(rawEnumerator);
    for (;;) {
        IDispatch* rawShape = nullptr;
        if (automation::EnumNextObject(enumerator.get(), &rawShape) != S_OK ||
            rawShape == nullptr) {
            return matches;
        }
        XlObject shape(rawShape);
        if (shape.GetName().starts_with(prefix)) {
            matches.push_back(std::move(shape));
        }
    }
}

}  // namespace

void NameNewShape(const XlObject& shape, const TaskRecord& task, std::string_view base) {
    const std::string stem =
        (base.empty() ? BarTemplateName() : std::string(base)) + std::to_string(task.row);
    // The letters run on past "Z" through the following character codes, so no name is refused
    // in practice. They stop before the surrogate range, where a single code unit is no longer a
    // character: a host that answered every name would otherwise keep the search going forever,
    // and the shape then keeps the name the host gave it.
    WideString candidate = Widen(stem);
    candidate.push_back(OLESTR('A'));
    const XlObject sheet = EngineWbsSheet();
    for (; candidate.back() < kFirstSurrogate; ++candidate.back()) {
        if (sheet.ShapeByName(Narrow(candidate)).IsNothing()) {
            shape.SetString("Name", Narrow(candidate));
            return;
        }
    }
}

void DeleteShapesByPrefix(std::string_view prefix) {
    // The shape collection is live: deleting while enumerating would shift the shapes not yet
    // visited and skip some. The matches are collected first and deleted afterwards, each let go
    // as soon as it is deleted: the host frees a shape with its last reference, and freeing it
    // while it is still in the processor's cache spares a second walk over thousands of shapes.
    for (XlObject& shape : ShapesNamedWith(prefix)) {
        shape.Delete();
        shape = XlObject();
    }
}

void DeleteTaskBars() {
    DeleteShapesByPrefix(BarTemplateName());
}

void DeleteTaskConnectors() {
    DeleteShapesByPrefix(ConnectorTemplateName());
}
