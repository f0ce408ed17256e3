// The shapes of a sheet in z-order, back to front, which is also the order of the Shapes
// collection. The object model asks on nearly every call whether a shape is still on its sheet,
// and finds shapes by name and by id; with tens of thousands of shapes on a chart those questions
// are answered from indexes kept as shapes come and go, not by a walk over every shape.
#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "sheethost/shape_model.h"
#include "sheethost/shape_names.h"

namespace sheethost {

class ShapeList {
  public:
    using Pointer = std::shared_ptr<Shape>;
    // A deque: the shapes of a chart are deleted from the front, one by one, when it is redrawn.
    using Stack = std::deque<Pointer>;

    ShapeList() = default;
    // A copy holds copies of the shapes: a shape is on one list at a time.
    ShapeList(const ShapeList& other);
    ShapeList& operator=(const ShapeList& other);
    ShapeList(ShapeList&& other) noexcept;
    ShapeList& operator=(ShapeList&& other) noexcept;
    ~ShapeList();

    Stack::const_iterator begin() const { return stack_.begin(); }
    Stack::const_iterator end() const { return stack_.end(); }
    std::size_t size() const { return stack_.size(); }
    bool empty() const { return stack_.empty(); }
    const Pointer& operator[](std::size_t index) const { return stack_[index]; }
    const Pointer& at(std::size_t index) const { return stack_.at(index); }
    const Pointer& back() const { return stack_.back(); }

    // Puts a shape in front of all others.
    const Pointer& push_back(Pointer shape);
    void clear();
    // Takes the shape off the sheet.
    void erase(const Shape& shape);
    // Moves the shape at `from` to `to` in the z-order, the shapes between closing up.
    void move(std::size_t from, std::size_t to);
    // A shape's name and a connector's glue change only through here once they are on the sheet.
    void Rename(Shape& shape, std::string name);
    using ConnectorEndOf = std::optional<ConnectorEnd> Shape::*;
    void Glue(Shape& connector, ConnectorEndOf end, std::optional<ConnectorEnd> glue);

    // The first in z-order of that name, compared case-insensitively as the spreadsheet compares
    // shape names; of that id; null when there is none.
    Pointer Named(std::string_view name) const;
    Pointer WithId(int id) const;
    bool Holds(const Shape& shape) const { return shape.onList.list == this; }
    // 0-based z-order position, -1 when the shape is not on the sheet.
    std::ptrdiff_t IndexOf(const Shape& shape) const;
    int LastId() const { return byId_.empty() ? 0 : byId_.rbegin()->first; }
    // The connectors with an end glued to the shape with this id, each once.
    std::vector<Pointer> GluedTo(int id) const;

  private:
    Pointer PointerTo(const Shape& shape) const;
    // Marks the shapes as on this list (or on none).
    void MarkShapes(const void* list);
    void Index(const Pointer& shape);
    void IndexGlue(const Pointer& shape);
    void UnindexGlue(const Shape& shape);
    void Unindex(const Shape& shape);
    // The first of `candidates` in z-order.
    Pointer Backmost(const std::vector<Pointer>& candidates) const;

    Stack stack_;
    ShapeNames byName_;
    std::map<int, std::vector<Pointer>> byId_;               // ordered: the last id is the largest
    std::unordered_map<int, std::vector<Pointer>> gluedTo_;  // by the id each end is glued to
};

}  // namespace sheethost
