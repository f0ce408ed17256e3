// The cells of a sheet in row-major order, each row's cells side by side in one array, sorted by
// column. Blocks, files and row edits walk the cells in order, and formulas and single-cell
// members look one cell up at a time. Kept in a tree, every step of a walk and every lookup went
// to a node of its own somewhere in memory: once a sheet outgrew the processor's cache, each cell
// cost a trip to main memory and a command's time grew faster than its table. Rows are found by
// number in constant time and walked as arrays.
//
// Iterators behave like those of an array: a change to a row moves the cells after the changed
// place, so only iterators into other rows, and those the change returns, stay valid.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <type_traits>
#include <utility>
#include <vector>

#include "sheethost/any_cell_changes.h"

namespace sheethost {

struct CellRef {
    int row = 1;
    int column = 1;

    auto operator<=>(const CellRef&) const = default;
};

template <typename Cell>
class CellStore {
  public:
    // Named like an ordered map's pairs, so that walks over the cells read as they would over one.
    struct Entry {
        CellRef first;
        Cell second;

        bool operator==(const Entry&) const = default;
    };
    using Row = std::vector<Entry>;

    template <bool IsConst>
    class Iterator {
        using Store = std::conditional_t<IsConst, const CellStore, CellStore>;
        using RowOf = std::conditional_t<IsConst, const Row, Row>;

      public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = Entry;
        using difference_type = std::ptrdiff_t;
        using pointer = std::conditional_t<IsConst, const Entry*, Entry*>;
        using reference = std::conditional_t<IsConst, const Entry&, Entry&>;

        Iterator() = default;
        // The iterator past the last cell.
        explicit Iterator(Store* store) : store_(store) {}
        // The first cell at or after place `at` of `row`, or past the last cell.
        Iterator(Store* store, int row, std::size_t at) : store_(store) { Settle(row, at); }
        // As a map's iterator turns into its const_iterator.
        operator Iterator<true>() const requires(!IsConst) {
            return Iterator<true>(store_, row_, at_, cells_);
        }

        reference operator*() const { return (*cells_)[at_]; }
        pointer operator->() const { return &(*cells_)[at_]; }
        Iterator& operator++() {
            if (++at_ == cells_->size()) Settle(row_ + 1, 0);
            return *this;
        }
        Iterator operator++(int) {
            Iterator before = *this;
            ++*this;
            return before;
        }
        bool operator==(const Iterator& other) const {
            return row_ == other.row_ && at_ == other.at_;
        }

      private:
        friend class CellStore;
        friend class Iterator<!IsConst>;
        Iterator(Store* store, int row, std::size_t at, RowOf* cells)
            : store_(store), cells_(cells), row_(row), at_(at) {}

        // Mostly the place asked for holds a cell. Otherwise the rows and blocks of rows that
        // hold none are passed over by their marks: a walk down a column of a sheet with a cell at
        // its top and one at its bottom otherwise asked every row and block in between at each
        // step.
        void Settle(int row, std::size_t at) {
            if (RowOf* cells = store_->RowCells(row); cells != nullptr && at < cells->size()) {
                cells_ = cells;
                row_ = row;
                at_ = at;
                return;
            }
            std::size_t chunk = ChunkOf(row);
            std::size_t slot = SlotOf(row) + 1;
            while (chunk < store_->chunks_.size()) {
                if (store_->ChunkHoldsCells(chunk)) {
                    Chunk& held = *store_->chunks_[chunk];
                    const std::size_t filled = NextMarked(held.filledRows, slot);
                    if (filled < kRowsPerChunk) {
                        cells_ = &held.rows[filled];
                        row_ = static_cast<int>(chunk * kRowsPerChunk + filled) + 1;
                        at_ = 0;
                        return;
                    }
                }
                chunk = NextMarked(store_->filledChunks_, chunk + 1);
                slot = 0;
            }
            *this = Iterator(store_);
        }

        Store* store_ = nullptr;
        RowOf* cells_ = nullptr;
        int row_ = kPastEnd;
        std::size_t at_ = 0;
    };
    using iterator = Iterator<false>;
    using const_iterator = Iterator<true>;

    CellStore() = default;
    CellStore(const CellStore& other) { *this = other; }
    CellStore(CellStore&& other) noexcept { *this = std::move(other); }
    CellStore& operator=(const CellStore& other) {
        if (this == &other) return *this;
        NoteChange();
        chunks_.clear();
        chunks_.reserve(other.chunks_.size());
        for (const auto& chunk : other.chunks_) {
            chunks_.push_back(chunk ? std::make_unique<Chunk>(*chunk) : nullptr);
        }
        filledChunks_ = other.filledChunks_;
        size_ = other.size_;
        lastRow_ = other.lastRow_;
        return *this;
    }
    // The store moved from is left empty.
    CellStore& operator=(CellStore&& other) noexcept {
        NoteChange();
        other.NoteChange();
        chunks_ = std::exchange(other.chunks_, {});
        filledChunks_ = std::exchange(other.filledChunks_, {});
        size_ = std::exchange(other.size_, 0);
        lastRow_ = std::exchange(other.lastRow_, 0);
        return *this;
    }
    ~CellStore() = default;

    // Every member that hands out a cell to change, or changes one, counts as a change
    // (Changes): reading goes through the const members.
    iterator begin() {
        NoteChange();
        return iterator(this, 1, 0);
    }
    iterator end() { return iterator(this); }
    const_iterator begin() const { return const_iterator(this, 1, 0); }
    const_iterator end() const { return const_iterator(this); }
    bool empty() const { return size_ == 0; }
    std::size_t size() const { return size_; }
    // The last row that holds a cell, 0 when none does. Rows emptied at the end are passed over
    // once: the answer is kept for the next question.
    int LastRow() const {
        while (lastRow_ > 0) {
            const std::size_t chunk = ChunkOf(lastRow_);
            if (!ChunkHoldsCells(chunk)) {
                lastRow_ = static_cast<int>(chunk) * kRowsPerChunk;
            } else if (chunks_[chunk]->rows[SlotOf(lastRow_)].empty()) {
                --lastRow_;
            } else {
                break;
            }
        }
        return lastRow_;
    }
    // Starts the processor fetching the first cells of a row that a walk will reach soon: rows
    // lie apart in memory, and a walk down a large table otherwise waits for main memory at the
    // start of every row.
    void Prefetch(int row) const {
        if (const Row* cells = RowCells(row)) __builtin_prefetch(cells->data());
    }
    // Room in a row for this many cells, for a reader that knows how many are coming.
    void ReserveRow(int row, std::size_t cells) {
        NoteChange();
        MakeRow(row).reserve(cells);
    }

    iterator find(const CellRef& ref) {
        NoteChange();
        return Find<iterator>(this, ref);
    }
    const_iterator find(const CellRef& ref) const { return Find<const_iterator>(this, ref); }
    const Cell& at(const CellRef& ref) const {
        const const_iterator found = find(ref);
        if (found == end()) throw std::out_of_range("no such cell");
        return found->second;
    }
    // The first cell at or after a place, whether or not a cell stands there.
    iterator lower_bound(const CellRef& ref) {
        NoteChange();
        return LowerBound<iterator>(this, ref);
    }
    const_iterator lower_bound(const CellRef& ref) const {
        return LowerBound<const_iterator>(this, ref);
    }

    std::pair<iterator, bool> emplace(const CellRef& ref, Cell cell) {
        NoteChange();
        Row& cells = MakeRow(ref.row);
        // Cells mostly come in column order, as a file or a new table is read: the end is tried
        // before the row is searched.
        const auto place = !cells.empty() && cells.back().first.column < ref.column
                               ? cells.end()
                               : PlaceIn(cells, ref.column);
        if (place != cells.end() && place->first == ref) {
            return {iterator(this, ref.row, Offset(cells, place), &cells), false};
        }
        return {Insert(cells, place, ref, std::move(cell)), true};
    }
    // A cell placed just before `hint` when it belongs there, as a walk along a row makes them.
    iterator emplace_hint(iterator hint, const CellRef& ref, Cell cell) {
        NoteChange();
        if (hint.row_ == ref.row) {
            Row& cells = *hint.cells_;
            const auto place = cells.begin() + static_cast<std::ptrdiff_t>(hint.at_);
            const bool fits =
                (place == cells.end() || ref.column < place->first.column) &&
                (place == cells.begin() || std::prev(place)->first.column < ref.column);
            if (fits) return Insert(cells, place, ref, std::move(cell));
        }
        return emplace(ref, std::move(cell)).first;
    }
    Cell& operator[](const CellRef& ref) { return emplace(ref, Cell{}).first->second; }
    // Returns the cell after the erased one.
    iterator erase(iterator at) {
        NoteChange();
        Row& cells = *at.cells_;
        cells.erase(cells.begin() + static_cast<std::ptrdiff_t>(at.at_));
        --size_;
        if (cells.empty()) MarkRow(at.row_, false);
        return iterator(this, at.row_, at.at_);
    }

    void clear() {
        NoteChange();
        chunks_.clear();
        filledChunks_.clear();
        size_ = 0;
        lastRow_ = 0;
    }

    // Counts the calls of the members that may change cells; a count that stayed means the cells
    // are as they were.
    std::uint64_t Changes() const { return changes_; }

    bool operator==(const CellStore& other) const {
        return size_ == other.size_ && std::equal(begin(), end(), other.begin(), other.end());
    }

  private:
    // Rows live in blocks made when a row of theirs first gets a cell, so that a sheet with a
    // cell in its last row holds one block, not a million empty rows.
    static constexpr int kRowsPerChunk = 256;
    static constexpr int kPastEnd = INT_MAX;
    // Rows up to this many cells are searched from their start: one stream through memory
    // rather than a binary search's jumps, each of which waits for its own fetch.
    static constexpr std::size_t kScannedRowCells = 32;
    // Marks, one bit each, of the rows of a chunk and of the chunks that hold a cell: a row is
    // marked exactly when it holds a cell.
    static constexpr std::size_t kMarkBits = 64;
    struct Chunk {
        std::array<Row, kRowsPerChunk> rows;
        std::array<std::uint64_t, kRowsPerChunk / kMarkBits> filledRows{};
    };

    // The first marked place at or after `from`, or one past the last place when none is.
    template <class Marks>
    static std::size_t NextMarked(const Marks& marks, std::size_t from) {
        while (from < marks.size() * kMarkBits) {
            const std::uint64_t word = marks[from / kMarkBits] >> (from % kMarkBits);
            if (word != 0) return from + static_cast<std::size_t>(std::countr_zero(word));
            from = (from / kMarkBits + 1) * kMarkBits;
        }
        return marks.size() * kMarkBits;
    }
    template <class Marks>
    static void Mark(Marks& marks, std::size_t place, bool on) {
        const std::uint64_t bit = std::uint64_t{1} << (place % kMarkBits);
        marks[place / kMarkBits] =
            on ? marks[place / kMarkBits] | bit : marks[place / kMarkBits] & ~bit;
    }
    bool ChunkHoldsCells(std::size_t chunk) const {
        return chunk < chunks_.size() &&
               (filledChunks_[chunk / kMarkBits] >> (chunk % kMarkBits) & 1);
    }
    // Marks a row as holding cells or not, and its chunk as holding a row that does or not.
    void MarkRow(int row, bool holdsCells) {
        Chunk& chunk = *chunks_[ChunkOf(row)];
        Mark(chunk.filledRows, SlotOf(row), holdsCells);
        const bool chunkHoldsCells = NextMarked(chunk.filledRows, 0) < kRowsPerChunk;
        Mark(filledChunks_, ChunkOf(row), chunkHoldsCells);
    }

    static std::size_t ChunkOf(int row) {
        return static_cast<std::size_t>(row - 1) / kRowsPerChunk;
    }
    static std::size_t SlotOf(int row) { return static_cast<std::size_t>(row - 1) % kRowsPerChunk; }

    const Row* RowCells(int row) const {
        if (row < 1 || ChunkOf(row) >= chunks_.size() || !chunks_[ChunkOf(row)]) return nullptr;
        return &chunks_[ChunkOf(row)]->rows[SlotOf(row)];
    }
    Row* RowCells(int row) {
        return const_cast<Row*>(static_cast<const CellStore*>(this)->RowCells(row));
    }
    Row& MakeRow(int row) {
        if (row < 1) throw std::out_of_range("no such row");
        if (ChunkOf(row) >= chunks_.size()) {
            chunks_.resize(ChunkOf(row) + 1);
            filledChunks_.resize((chunks_.size() + kMarkBits - 1) / kMarkBits);
        }
        std::unique_ptr<Chunk>& chunk = chunks_[ChunkOf(row)];
        if (!chunk) chunk = std::make_unique<Chunk>();
        lastRow_ = std::max(lastRow_, row);
        return chunk->rows[SlotOf(row)];
    }

    template <class Cells, class Place>
    static std::size_t Offset(Cells& cells, Place place) {
        return static_cast<std::size_t>(place - cells.begin());
    }
    template <class Cells>
    static auto PlaceIn(Cells& cells, int column) {
        const auto before = [](const Entry& entry, int c) { return entry.first.column < c; };
        if (cells.size() <= kScannedRowCells) {
            auto place = cells.begin();
            while (place != cells.end() && before(*place, column)) ++place;
            return place;
        }
        return std::lower_bound(cells.begin(), cells.end(), column, before);
    }

    iterator Insert(Row& cells, typename Row::iterator place, const CellRef& ref, Cell cell) {
        const auto placed = cells.insert(place, Entry{ref, std::move(cell)});
        ++size_;
        if (cells.size() == 1) MarkRow(ref.row, true);
        return iterator(this, ref.row, Offset(cells, placed), &cells);
    }

    template <class It, class Self>
    static It Find(Self* self, const CellRef& ref) {
        auto* cells = self->RowCells(ref.row);
        if (cells == nullptr) return It(self);
        const auto place = PlaceIn(*cells, ref.column);
        if (place == cells->end() || place->first.column != ref.column) return It(self);
        return It(self, ref.row, Offset(*cells, place), cells);
    }
    template <class It, class Self>
    static It LowerBound(Self* self, const CellRef& ref) {
        const int row = std::max(ref.row, 1);
        const auto* cells = self->RowCells(row);
        const std::size_t at =
            cells == nullptr || ref.row < 1 ? 0 : Offset(*cells, PlaceIn(*cells, ref.column));
        return It(self, row, at);
    }

    void NoteChange() {
        ++changes_;
        NoteAnyCellChange();
    }

    std::vector<std::unique_ptr<Chunk>> chunks_;
    std::vector<std::uint64_t> filledChunks_;  // the chunks that hold a cell
    std::size_t size_ = 0;
    mutable int lastRow_ = 0;  // no row past it holds a cell
    std::uint64_t changes_ = 0;
};

}  // namespace sheethost
