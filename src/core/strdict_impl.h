// Template implementation of StrDict (included by strdict.h).
#pragma once

template <typename Record>
StrDict<Record>::~StrDict() {
    Clear(true);
}

template <typename Record>
void StrDict<Record>::Add(std::string_view key, Record* record) {
    keys_.emplace_back(key);
    records_.push_back(record);
    deletable_.push_back(ownership_ == Ownership::kOwnsRecords);
    // try_emplace keeps an existing entry: a look-up finds the first entry added under a key.
    firstIndex_.try_emplace(keys_.back(), Count());
}

template <typename Record>
std::int64_t StrDict<Record>::IndexOf(std::string_view key) const {
    const auto found = firstIndex_.find(key);
    return found == firstIndex_.end() ? -1 : found->second;
}

template <typename Record>
Record* StrDict<Record>::ItemAt(std::int64_t index) const {
    if (index < 1 || index > Count()) return nullptr;
    return records_[static_cast<std::size_t>(index - 1)];
}

template <typename Record>
const std::string& StrDict<Record>::KeyAt(std::int64_t index) const {
    static const std::string kNoKey;
    if (index < 1 || index > Count()) return kNoKey;
    return keys_[static_cast<std::size_t>(index - 1)];
}

template <typename Record>
void StrDict<Record>::Clear(bool freeRecords) {
    if (freeRecords) {
        for (std::size_t i = 0; i < records_.size(); ++i) {
            if (deletable_[i]) delete records_[i];
        }
    }
    keys_.clear();
    records_.clear();
    deletable_.clear();
    firstIndex_.clear();
}

template <typename Record>
void StrDict<Record>::CopyFrom(const StrDict& other) {
    if (this == &other) return;
    Clear(true);
    keys_ = other.keys_;
    records_ = other.records_;
    deletable_.assign(other.records_.size(), false);
    firstIndex_ = other.firstIndex_;
}
