// A text-keyed list of records: insertion order, 1-based indexes, exact case-sensitive keys, and
// no test for duplicates (a look-up finds the first entry with the key). The dictionary either
// owns its records (they are deleted by Clear(true) and when it is destroyed) or only indexes
// records that belong to someone else (Clear ignores the flag's freeing then); which one is fixed
// when it is made.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

enum class Ownership { kOwnsRecords, kIndexesOnly };

template <typename Record>
class StrDict {
  public:
    explicit StrDict(Ownership ownership) : ownership_(ownership) {}
    ~StrDict();
    StrDict(const StrDict&) = delete;
    StrDict& operator=(const StrDict&) = delete;

    std::int64_t Count() const { return static_cast<std::int64_t>(records_.size()); }
    // Appends; an owning dictionary takes the record over.
    void Add(std::string_view key, Record* record);
    // The first index whose key equals `key`, or -1.
    std::int64_t IndexOf(std::string_view key) const;
    // The record at 1-based `index`, or null when the index is out of range.
    Record* ItemAt(std::int64_t index) const;
    // The key at 1-based `index`, or the empty text when the index is out of range.
    const std::string& KeyAt(std::int64_t index) const;
    Record* Find(std::string_view key) const { return ItemAt(IndexOf(key)); }
    // Empties the dictionary; the records are deleted when `freeRecords` is set and it owns them.
    void Clear(bool freeRecords);
    // Becomes an index of the other's entries (same keys, order and records; none is copied). Its
    // own entries are cleared first, as by Clear(true); the copied ones are never deleted by it.
    void CopyFrom(const StrDict& other);

  private:
    // Hashes std::string and std::string_view alike, so a look-up by view makes no copy.
    struct KeyHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view key) const noexcept {
            return std::hash<std::string_view>{}(key);
        }
    };

    Ownership ownership_;
    std::vector<std::string> keys_;
    std::vector<Record*> records_;
    // Per entry: whether Clear(true) deletes the record. Entries taken over by CopyFrom stay the
    // other dictionary's.
    std::vector<bool> deletable_;
    // Key -> first 1-based index, so look-ups need not scan.
    std::unordered_map<std::string, std::int64_t, KeyHash, std::equal_to<>> firstIndex_;
};

#include "core/strdict_impl.h"
