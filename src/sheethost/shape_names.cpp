#include "sheethost/shape_names.h"

#include <algorithm>
#include <utility>

#include "sheethost/model.h"

namespace sheethost {

std::size_t ShapeNames::Hash(std::string_view name) {
    std::size_t hash = 14695981039346656037ull;  // FNV-1a over the names' letters folded to lower
    for (char c : name) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
        hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211ull;
    }
    return hash ^ (hash >> 29);
}

void ShapeNames::Grow() {
    std::vector<Slot> old =
        std::exchange(slots_, std::vector<Slot>(std::max<std::size_t>(64, 2 * slots_.size())));
    for (Slot& slot : old) {
        if (slot.shape != nullptr) slots_[FreeSlot(slot.hash)] = std::move(slot);
    }
}

std::size_t ShapeNames::FreeSlot(std::size_t hash) const {
    std::size_t at = Home(hash);
    while (slots_[at].shape != nullptr) at = (at + 1) & (slots_.size() - 1);
    return at;
}

void ShapeNames::Add(const Pointer& shape) {
    if (2 * (used_ + 1) > slots_.size()) Grow();
    const std::size_t hash = Hash(shape->name);
    slots_[FreeSlot(hash)] = Slot{hash, shape};
    ++used_;
}

ShapeNames::Pointer ShapeNames::Remove(const Shape& shape) {
    if (used_ == 0) return nullptr;
    const std::size_t mask = slots_.size() - 1;
    std::size_t at = Home(Hash(shape.name));
    while (slots_[at].shape != nullptr && slots_[at].shape.get() != &shape) at = (at + 1) & mask;
    if (slots_[at].shape == nullptr) return nullptr;
    Pointer removed = std::move(slots_[at].shape);
    --used_;
    // The slots after the hole move back into it when their probe passed through it, so that
    // every shape stays reachable from its home slot without markers of removed ones.
    for (std::size_t next = (at + 1) & mask; slots_[next].shape != nullptr;
         next = (next + 1) & mask) {
        const std::size_t home = Home(slots_[next].hash);
        const bool passedHole =
            at <= next ? (home <= at || next < home) : (home <= at && next < home);
        if (passedHole) {
            slots_[at] = std::move(slots_[next]);
            at = next;
        }
    }
    return removed;
}

bool ShapeNames::SameNameAs(const Shape& shape, std::string_view name) {
    return SameName(shape.name, name);
}

void ShapeNames::clear() {
    slots_.clear();
    used_ = 0;
}

}  // namespace sheethost
