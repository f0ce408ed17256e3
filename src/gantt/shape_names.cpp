#include <memory>
#include <string>
#include <vector>

#include "engine/engine_state.h"
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
    // The letters run on past "Z" through the following character codes; a row never has that
    // many shapes of one kind in practice, but no name is ever refused.
    WideString candidate = Widen(stem);
    candidate.push_back(OLESTR('A'));
    const XlObject sheet = EngineWbsSheet();
    while (!sheet.ShapeByName(Narrow(candidate)).IsNothing()) {
        ++candidate.back();
    }
    shape.SetString("Name", Narrow(candidate));
}

void DeleteShapesByPrefix(std::string_view prefix) {
    // The shape collection is live: deleting while enumerating would shift the shapes not yet
    // visited and skip some. The matches are collected first and deleted afterwards.
    for (const XlObject& shape : ShapesNamedWith(prefix)) {
        shape.Delete();
    }
}

void DeleteTaskBars() {
    DeleteShapesByPrefix(BarTemplateName());
}

void DeleteTaskConnectors() {
    DeleteShapesByPrefix(ConnectorTemplateName());
}
