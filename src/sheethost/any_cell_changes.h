// A count of the changes made to the cells of every sheet of the process. What is computed from
// cells of more than one sheet (the results of formulas that read other sheets) is kept for as
// long as the count stays where it was when it was computed.
#pragma once

#include <atomic>
#include <cstdint>

namespace sheethost {

inline std::atomic<std::uint64_t> anyCellChanges{0};

inline std::uint64_t AnyCellChanges() {
    return anyCellChanges.load(std::memory_order_relaxed);
}

inline void NoteAnyCellChange() {
    anyCellChanges.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace sheethost
