// Thread-local storage slots and the process heap.
#ifndef _WIN32

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <mutex>
#include <vector>

#include "com/com.h"

namespace {

// As many slots as Windows offers a process.
constexpr DWORD kSlotCount = 1088;

// Each allocation of a slot gets a new generation (0 = free). A thread's value counts only if it
// was stored under the slot's current generation, so freeing a slot clears it on every thread,
// as on Windows, without visiting the threads.
struct SlotTable {
    std::mutex allocation;
    std::uint64_t lastGeneration = 0;
    std::array<std::atomic<std::uint64_t>, kSlotCount> generation{};
};

SlotTable& Slots() {
    static SlotTable table;
    return table;
}

struct ThreadValue {
    std::uint64_t generation = 0;
    LPVOID value = nullptr;
};

thread_local std::vector<ThreadValue> threadValues;

std::uint64_t CurrentGeneration(DWORD index) {
    return index < kSlotCount ? Slots().generation[index].load() : 0;
}

// Stands for the one process heap; only its address is used.
char processHeap;

}  // namespace

DWORD TlsAlloc() {
    SlotTable& slots = Slots();
    const std::lock_guard lock(slots.allocation);
    for (DWORD index = 0; index < kSlotCount; ++index) {
        if (slots.generation[index].load() == 0) {
            slots.generation[index].store(++slots.lastGeneration);
            return index;
        }
    }
    return TLS_OUT_OF_INDEXES;
}

BOOL TlsFree(DWORD index) {
    SlotTable& slots = Slots();
    const std::lock_guard lock(slots.allocation);
    if (CurrentGeneration(index) == 0) return FALSE;
    slots.generation[index].store(0);
    return TRUE;
}

LPVOID TlsGetValue(DWORD index) {
    const std::uint64_t generation = CurrentGeneration(index);
    if (generation == 0 || index >= threadValues.size()) return nullptr;
    const ThreadValue& slot = threadValues[index];
    return slot.generation == generation ? slot.value : nullptr;
}

BOOL TlsSetValue(DWORD index, LPVOID value) {
    const std::uint64_t generation = CurrentGeneration(index);
    if (generation == 0) return FALSE;
    if (index >= threadValues.size()) threadValues.resize(index + 1);
    threadValues[index] = {generation, value};
    return TRUE;
}

HANDLE GetProcessHeap() {
    return &processHeap;
}

LPVOID HeapAlloc(HANDLE heap, DWORD flags, std::size_t bytes) {
    if (heap != &processHeap) return nullptr;
    // A block of 0 bytes is still a distinct block that can be freed.
    const std::size_t size = std::max<std::size_t>(bytes, 1);
    return (flags & HEAP_ZERO_MEMORY) ? std::calloc(1, size) : std::malloc(size);
}

BOOL HeapFree(HANDLE heap, DWORD, LPVOID memory) {
    if (heap != &processHeap) return FALSE;
    std::free(memory);
    return TRUE;
}

#endif  // _WIN32
