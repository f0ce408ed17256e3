// The cells of a sheet in row-major order, with a hashed index beside the ordered map. Blocks,
// files and row edits walk the cells in order; formulas and single-cell members look one cell up
// at a time, and on a sheet of a few hundred thousand cells a walk down the map for each of those
// costs more than all the rest of the lookup. The index holds the map's iterators, which stay
// valid until their own cell is erased, so every change goes through this class.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <stdexcept>
#include <unordered_map>
#include <utility>

namespace sheethost {

struct CellRef {
    int row = 1;
    int column = 1;

    auto operator<=>(const CellRef&) const = default;
};

template <typename Cell>
class CellStore {
  public:
    using Map = std::map<CellRef, Cell>;
    using iterator = typename Map::iterator;
    using const_iterator = typename Map::const_iterator;

    CellStore() = default;
    CellStore(const CellStore& other) : map_(other.map_) { Reindex(); }
    CellStore(CellStore&& other) noexcept : map_(std::move(other.map_)) {
        index_ = std::move(other.index_);
        other.index_.clear();
    }
    CellStore& operator=(const CellStore& other) {
        if (this != &other) {
            map_ = other.map_;
            Reindex();
        }
        return *this;
    }
    // Takes the cells of an ordered map built elsewhere.
    CellStore& operator=(Map&& cells) {
        map_ = std::move(cells);
        Reindex();
        return *this;
    }
    CellStore& operator=(CellStore&& other) noexcept {
        map_ = std::move(other.map_);
        index_ = std::move(other.index_);
        other.index_.clear();
        return *this;
    }
    ~CellStore() = default;

    iterator begin() { return map_.begin(); }
    iterator end() { return map_.end(); }
    const_iterator begin() const { return map_.begin(); }
    const_iterator end() const { return map_.end(); }
    typename Map::const_reverse_iterator rbegin() const { return map_.rbegin(); }
    bool empty() const { return map_.empty(); }
    // Room in the index for this many cells, for a reader that knows how many are coming.
    void reserve(std::size_t cells) { index_.reserve(cells); }
    std::size_t size() const { return map_.size(); }

    iterator find(const CellRef& ref) {
        const auto found = index_.find(ref);
        return found == index_.end() ? map_.end() : found->second;
    }
    const_iterator find(const CellRef& ref) const {
        const auto found = index_.find(ref);
        return found == index_.end() ? map_.end() : const_iterator(found->second);
    }
    const Cell& at(const CellRef& ref) const {
        const auto found = index_.find(ref);
        if (found == index_.end()) throw std::out_of_range("no such cell");
        return found->second->second;
    }
    // A walk over a block starts each row at its first cell, which is mostly there: the index
    // answers that before the map is searched.
    iterator lower_bound(const CellRef& ref) {
        const auto found = index_.find(ref);
        return found != index_.end() ? found->second : map_.lower_bound(ref);
    }
    const_iterator lower_bound(const CellRef& ref) const {
        const auto found = index_.find(ref);
        return found != index_.end() ? const_iterator(found->second) : map_.lower_bound(ref);
    }

    std::pair<iterator, bool> emplace(const CellRef& ref, Cell cell) {
        if (const iterator found = find(ref); found != map_.end()) return {found, false};
        // Cells mostly come in order, as a file or a new table is read: the end is tried first.
        const iterator placed = map_.emplace_hint(map_.end(), ref, std::move(cell));
        index_.emplace(ref, placed);
        return {placed, true};
    }
    iterator emplace_hint(const_iterator hint, const CellRef& ref, Cell cell) {
        const std::size_t before = map_.size();
        const iterator placed = map_.emplace_hint(hint, ref, std::move(cell));
        if (map_.size() != before) index_.emplace(ref, placed);
        return placed;
    }
    Cell& operator[](const CellRef& ref) {
        if (const iterator found = find(ref); found != map_.end()) return found->second;
        return emplace(ref, Cell{}).first->second;
    }
    iterator erase(iterator at) {
        index_.erase(at->first);
        return map_.erase(at);
    }

    void clear() {
        index_.clear();
        map_.clear();
    }

    bool operator==(const CellStore& other) const { return map_ == other.map_; }

  private:
    // Cells of neighbouring rows land in nearby buckets, so that the lookups of a formula over
    // the rows below it, or of a walk down a table, stay within a few pages of the bucket array.
    // Keys are distinct for the first 1,024 columns; further columns share chains.
    struct RefHash {
        std::size_t operator()(const CellRef& ref) const {
            return static_cast<std::size_t>(ref.row) * 1024 + static_cast<std::size_t>(ref.column);
        }
    };

    void Reindex() {
        index_.clear();
        index_.reserve(map_.size());
        for (auto at = map_.begin(); at != map_.end(); ++at) index_.emplace(at->first, at);
    }

    Map map_;
    std::unordered_map<CellRef, iterator, RefHash> index_;
};

}  // namespace sheethost
