// The results of a sheet's formula cells as they were last computed. A formula cell is read far
// more often than the cells it reads change: a summary row's roll-ups are read with the row, by
// the roll-ups of the summaries above it (each reading its children twice, once to test them and
// once for the result), and again by every command. A result computed once serves until what it
// was computed from changes: the sheet's cells, the names of the workbook's sheets, and, once a
// formula of the sheet has read another sheet, the cells of any sheet.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "sheethost/value.h"

namespace sheethost {

// What results are computed from, as counts that grow with every change.
struct ResultSources {
    std::uint64_t sheetCells = 0;  // the sheet's own cells (CellStore::Changes)
    std::uint64_t sheetNames = 0;  // the workbook's sheets added and renamed
    std::uint64_t anyCells = 0;    // the cells of every sheet (AnyCellChanges)
};

class FormulaResults {
  public:
    FormulaResults() = default;
    // A sheet copied computes its results anew.
    FormulaResults(const FormulaResults&) {}
    FormulaResults& operator=(const FormulaResults&) {
        slots_ = {};
        kept_ = 0;
        return *this;
    }
    ~FormulaResults() = default;

    // The cell's result, when nothing it was computed from has changed since; else null.
    const Value* Find(const ResultSources& now, int row, int column) const;
    // Keeps a result computed now.
    void Keep(const ResultSources& now, int row, int column, const Value& value);
    // The results kept from now on may depend on other sheets' cells.
    void ReadOtherSheets(const ResultSources& now);

  private:
    static std::uint64_t KeyOf(int row, int column) {
        return static_cast<std::uint64_t>(row) << 16 | static_cast<std::uint64_t>(column);
    }
    bool Current(const ResultSources& now) const;
    // Drops the results of sources that have changed: dropping them costs no more than keeping
    // them did.
    void Refresh(const ResultSources& now);

    // Open addressing in one array: a result is found with one fetch from memory, where a node
    // per result cost a fetch for its bucket and another for itself.
    struct Slot {
        std::uint64_t key = 0;  // 0: empty (rows and columns count from 1)
        Value value;
    };
    // Where the key's slot is, or the empty slot it would take.
    std::size_t PlaceOf(std::uint64_t key) const;
    void Grow();

    ResultSources sources_;
    bool readOtherSheets_ = false;
    std::vector<Slot> slots_;  // a power of two of them, at most half full
    std::size_t kept_ = 0;
};

}  // namespace sheethost
