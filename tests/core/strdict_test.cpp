// The dictionary's order, look-up and freeing rules.
#include "core/strdict.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// A record that counts its deletions.
struct Counted {
    explicit Counted(int* deletions) : deletions(deletions) {}
    ~Counted() { ++*deletions; }
    int* deletions;
};

TEST(StrDictTest, KeepsOrderAndFindsTheFirstOfDuplicateKeys) {
    int deletions = 0;
    StrDict<Counted> dictionary(Ownership::kOwnsRecords);
    auto* first = new Counted(&deletions);
    auto* second = new Counted(&deletions);
    dictionary.Add("1.2", first);
    dictionary.Add("1.2", second);
    dictionary.Add("task", new Counted(&deletions));

    EXPECT_EQ(dictionary.Count(), 3);
    EXPECT_EQ(dictionary.Find("1.2"), first);
    EXPECT_EQ(dictionary.ItemAt(2), second);
    EXPECT_EQ(dictionary.KeyAt(2), "1.2");
    EXPECT_EQ(dictionary.IndexOf("task"), 3);
    EXPECT_EQ(dictionary.IndexOf("Task"), -1);  // keys are case-sensitive
    EXPECT_EQ(dictionary.Find("TASK"), nullptr);
    EXPECT_EQ(dictionary.ItemAt(0), nullptr);
    EXPECT_EQ(dictionary.ItemAt(dictionary.Count() + 1), nullptr);
    EXPECT_EQ(dictionary.KeyAt(4), "");
}

TEST(StrDictTest, ManyEntriesStayAtTheirIndexes) {
    int deletions = 0;
    StrDict<Counted> dictionary(Ownership::kOwnsRecords);
    std::vector<Counted*> records;
    for (int i = 1; i <= 120; ++i) {
        records.push_back(new Counted(&deletions));
        dictionary.Add(std::to_string(i), records.back());
    }
    // A pool grows by repeating the last key; look-ups still find the first.
    dictionary.Add("120", new Counted(&deletions));
    for (int i = 1; i <= 120; ++i) {
        ASSERT_EQ(dictionary.ItemAt(i), records[static_cast<std::size_t>(i - 1)]);
        ASSERT_EQ(dictionary.IndexOf(std::to_string(i)), i);
    }
    EXPECT_EQ(dictionary.Count(), 121);
    dictionary.Clear(true);
    EXPECT_EQ(deletions, 121);
    EXPECT_EQ(dictionary.Count(), 0);
    EXPECT_EQ(dictionary.Find("1"), nullptr);
}

TEST(StrDictTest, FreeingFollowsOwnership) {
    int deletions = 0;
    Counted kept(&deletions);
    auto* handedBack = new Counted(&deletions);
    StrDict<Counted> owner(Ownership::kOwnsRecords);
    owner.Add("a", handedBack);
    owner.Clear(false);  // hands the records back
    EXPECT_EQ(owner.Count(), 0);
    EXPECT_EQ(deletions, 0);
    delete handedBack;

    owner.Add("x", new Counted(&deletions));
    {
        StrDict<Counted> index(Ownership::kIndexesOnly);
        index.Add("k", &kept);
        index.Clear(true);  // an index never deletes
        index.CopyFrom(owner);
        EXPECT_EQ(index.Find("x"), owner.Find("x"));
        StrDict<Counted> copy(Ownership::kOwnsRecords);
        copy.Add("own", new Counted(&deletions));
        copy.CopyFrom(owner);  // deletes its own entry, never the copied one
        EXPECT_EQ(deletions, 2);
    }
    EXPECT_EQ(deletions, 2);
    EXPECT_NE(owner.Find("x"), nullptr);
}

}  // namespace
