#include "sheethost/shape_list.h"

#include <algorithm>
#include <utility>

#include "sheethost/model.h"

namespace sheethost {
namespace {

template <class Index, class Key>
void Drop(Index& index, const Key& key, const Shape& shape) {
    const auto found = index.find(key);
    if (found == index.end()) return;
    std::erase_if(found->second,
                  [&](const ShapeList::Pointer& candidate) { return candidate.get() == &shape; });
    if (found->second.empty()) index.erase(found);
}

}  // namespace

ShapeList::ShapeList(const ShapeList& other) {
    for (const Pointer& shape : other.stack_) push_back(std::make_shared<Shape>(*shape));
}

ShapeList& ShapeList::operator=(const ShapeList& other) {
    if (this != &other) {
        clear();
        for (const Pointer& shape : other.stack_) push_back(std::make_shared<Shape>(*shape));
    }
    return *this;
}

ShapeList::ShapeList(ShapeList&& other) noexcept
    : stack_(std::move(other.stack_)),
      byName_(std::move(other.byName_)),
      byId_(std::move(other.byId_)),
      gluedTo_(std::move(other.gluedTo_)) {
    MarkShapes(this);
    other.clear();
}

ShapeList& ShapeList::operator=(ShapeList&& other) noexcept {
    if (this != &other) {
        MarkShapes(nullptr);
        stack_ = std::move(other.stack_);
        byName_ = std::move(other.byName_);
        byId_ = std::move(other.byId_);
        gluedTo_ = std::move(other.gluedTo_);
        MarkShapes(this);
        other.clear();
    }
    return *this;
}

ShapeList::~ShapeList() {
    MarkShapes(nullptr);
}

void ShapeList::MarkShapes(const void* list) {
    for (const Pointer& shape : stack_) shape->onList.list = list;
}

const ShapeList::Pointer& ShapeList::push_back(Pointer shape) {
    Index(shape);
    return stack_.emplace_back(std::move(shape));
}

void ShapeList::clear() {
    MarkShapes(nullptr);
    stack_.clear();
    gluedTo_.clear();
    byName_.clear();
    byId_.clear();
}

void ShapeList::erase(const Shape& shape) {
    if (!Holds(shape)) return;
    Unindex(shape);
    stack_.erase(std::find_if(stack_.begin(), stack_.end(),
                              [&](const Pointer& candidate) { return candidate.get() == &shape; }));
}

void ShapeList::move(std::size_t from, std::size_t to) {
    const auto at = [this](std::size_t index) { return stack_.begin() + std::ptrdiff_t(index); };
    if (from < to) {
        std::rotate(at(from), at(from + 1), at(to + 1));
    } else if (to < from) {
        std::rotate(at(to), at(from), at(from + 1));
    }
}

void ShapeList::Rename(Shape& shape, std::string name) {
    Pointer held = Holds(shape) ? byName_.Remove(shape) : nullptr;
    shape.name = std::move(name);
    if (held != nullptr) byName_.Add(held);
}

void ShapeList::Glue(Shape& connector, ConnectorEndOf end, std::optional<ConnectorEnd> glue) {
    const Pointer held = PointerTo(connector);
    if (held != nullptr) UnindexGlue(connector);
    connector.*end = glue;
    if (held != nullptr) IndexGlue(held);
}

std::vector<ShapeList::Pointer> ShapeList::GluedTo(int id) const {
    const auto found = gluedTo_.find(id);
    if (found == gluedTo_.end()) return {};
    std::vector<Pointer> connectors;
    for (const Pointer& connector : found->second) {
        if (std::find(connectors.begin(), connectors.end(), connector) == connectors.end()) {
            connectors.push_back(connector);
        }
    }
    return connectors;
}

ShapeList::Pointer ShapeList::Named(std::string_view name) const {
    Pointer first;
    std::vector<Pointer> more;  // names are seldom shared
    byName_.ForEachNamed(name, [&](const Pointer& shape) {
        if (first == nullptr) {
            first = shape;
        } else {
            more.push_back(shape);
        }
    });
    if (more.empty()) return first;
    more.push_back(first);
    return Backmost(more);
}

ShapeList::Pointer ShapeList::WithId(int id) const {
    const auto found = byId_.find(id);
    return found == byId_.end() ? nullptr : Backmost(found->second);
}

std::ptrdiff_t ShapeList::IndexOf(const Shape& shape) const {
    if (!Holds(shape)) return -1;
    const auto found = std::find_if(stack_.begin(), stack_.end(), [&](const Pointer& candidate) {
        return candidate.get() == &shape;
    });
    return found - stack_.begin();
}

ShapeList::Pointer ShapeList::PointerTo(const Shape& shape) const {
    const auto found = byId_.find(shape.id);
    if (found == byId_.end()) return nullptr;
    for (const Pointer& candidate : found->second) {
        if (candidate.get() == &shape) return candidate;
    }
    return nullptr;
}

void ShapeList::IndexGlue(const Pointer& shape) {
    for (const auto& end : {shape->beginConnection, shape->endConnection}) {
        if (end) gluedTo_[end->shapeId].push_back(shape);
    }
}

void ShapeList::UnindexGlue(const Shape& shape) {
    for (const auto& end : {shape.beginConnection, shape.endConnection}) {
        if (end) Drop(gluedTo_, end->shapeId, shape);
    }
}

void ShapeList::Index(const Pointer& shape) {
    IndexGlue(shape);
    byName_.Add(shape);
    byId_[shape->id].push_back(shape);
    shape->onList.list = this;
}

void ShapeList::Unindex(const Shape& shape) {
    UnindexGlue(shape);
    byName_.Remove(shape);
    Drop(byId_, shape.id, shape);
    shape.onList.list = nullptr;
}

ShapeList::Pointer ShapeList::Backmost(const std::vector<Pointer>& candidates) const {
    // Names and ids are seldom shared; when they are, the z-order decides.
    if (candidates.size() == 1) return candidates.front();
    for (const Pointer& shape : stack_) {
        if (std::find(candidates.begin(), candidates.end(), shape) != candidates.end())
            return shape;
    }
    return nullptr;
}

}  // namespace sheethost
