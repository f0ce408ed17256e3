#include "sheethost/formula_results.h"

#include <algorithm>
#include <utility>

namespace sheethost {
namespace {

std::size_t Spread(std::uint64_t key) {
    // Rows in the high bits, columns in the low: a multiplication mixes both into the bits the
    // mask keeps.
    return static_cast<std::size_t>((key * 0x9E3779B97F4A7C15ull) >> 20);
}

}  // namespace

bool FormulaResults::Current(const ResultSources& now) const {
    return sources_.sheetCells == now.sheetCells && sources_.sheetNames == now.sheetNames &&
           (!readOtherSheets_ || sources_.anyCells == now.anyCells);
}

void FormulaResults::Refresh(const ResultSources& now) {
    if (Current(now)) return;
    slots_ = {};
    kept_ = 0;
    sources_ = now;
    readOtherSheets_ = false;
}

std::size_t FormulaResults::PlaceOf(std::uint64_t key) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t at = Spread(key) & mask;
    while (slots_[at].key != key && slots_[at].key != 0) at = (at + 1) & mask;
    return at;
}

void FormulaResults::Grow() {
    const std::size_t size = std::max<std::size_t>(64, 2 * slots_.size());
    std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(size));
    for (Slot& slot : old) {
        if (slot.key != 0) slots_[PlaceOf(slot.key)] = std::move(slot);
    }
}

const Value* FormulaResults::Find(const ResultSources& now, int row, int column) const {
    if (kept_ == 0 || !Current(now)) return nullptr;
    const Slot& slot = slots_[PlaceOf(KeyOf(row, column))];
    return slot.key == 0 ? nullptr : &slot.value;
}

void FormulaResults::Keep(const ResultSources& now, int row, int column, const Value& value) {
    Refresh(now);
    if (2 * (kept_ + 1) > slots_.size()) Grow();
    const std::uint64_t key = KeyOf(row, column);
    Slot& slot = slots_[PlaceOf(key)];
    if (slot.key == 0) ++kept_;
    slot.key = key;
    slot.value = value;
}

void FormulaResults::ReadOtherSheets(const ResultSources& now) {
    Refresh(now);
    if (readOtherSheets_) return;
    // The results kept so far read this sheet alone; from now on any change may matter.
    readOtherSheets_ = true;
    sources_.anyCells = now.anyCells;
}

}  // namespace sheethost
