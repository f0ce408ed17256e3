// The shapes of a sheet by name, compared without regard to case (A to Z) as the spreadsheet
// compares shape names. A chart's redraw names, renames and finds tens of thousands of shapes; a
// node-based map cost a fetch from memory for its bucket, one for the node and one for the key on
// every question once the shapes outgrew the cache. Here each shape is one slot of an array,
// holding the name's hash beside the shape: a question reads a slot or two and the shape it is
// about.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "sheethost/shape_model.h"

namespace sheethost {

class ShapeNames {
  public:
    using Pointer = std::shared_ptr<Shape>;

    // Files the shape under its name; shapes may share a name.
    void Add(const Pointer& shape);
    // Takes the shape out from under its name (which must be the one it was filed under) and
    // returns it; null when it is not filed.
    Pointer Remove(const Shape& shape);
    // Visits the shapes of that name, in no particular order.
    template <class Visit>
    void ForEachNamed(std::string_view name, Visit visit) const {
        if (used_ == 0) return;
        const std::size_t hash = Hash(name);
        for (std::size_t at = Home(hash); slots_[at].shape != nullptr;
             at = (at + 1) & (slots_.size() - 1)) {
            if (slots_[at].hash == hash && SameNameAs(*slots_[at].shape, name)) {
                visit(slots_[at].shape);
            }
        }
    }
    void clear();

  private:
    struct Slot {
        std::size_t hash = 0;
        Pointer shape;  // null: an empty slot
    };
    static std::size_t Hash(std::string_view name);
    static bool SameNameAs(const Shape& shape, std::string_view name);
    std::size_t Home(std::size_t hash) const { return hash & (slots_.size() - 1); }
    // The first empty slot from the hash's home on.
    std::size_t FreeSlot(std::size_t hash) const;
    void Grow();

    std::vector<Slot> slots_;  // a power of two of them, at most half full, probed in turn
    std::size_t used_ = 0;
};

}  // namespace sheethost
