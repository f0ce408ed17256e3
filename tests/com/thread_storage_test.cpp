#include <gtest/gtest.h>

#include <thread>

#include "com/com.h"

namespace {

TEST(ThreadStorage, EachThreadSeesItsOwnValue) {
    const DWORD slot = TlsAlloc();
    ASSERT_NE(slot, TLS_OUT_OF_INDEXES);
    int mine = 1, theirs = 2;
    ASSERT_TRUE(TlsSetValue(slot, &mine));
    LPVOID seenBeforeSet = &mine, seenAfterSet = nullptr;
    std::thread other([&] {
        seenBeforeSet = TlsGetValue(slot);
        TlsSetValue(slot, &theirs);
        seenAfterSet = TlsGetValue(slot);
    });
    other.join();
    EXPECT_EQ(seenBeforeSet, nullptr);
    EXPECT_EQ(seenAfterSet, &theirs);
    EXPECT_EQ(TlsGetValue(slot), &mine);
    EXPECT_TRUE(TlsFree(slot));
}

TEST(ThreadStorage, AReusedSlotStartsEmpty) {
    const DWORD slot = TlsAlloc();
    int value = 0;
    TlsSetValue(slot, &value);
    TlsFree(slot);
    const DWORD again = TlsAlloc();
    ASSERT_NE(again, TLS_OUT_OF_INDEXES);
    EXPECT_EQ(TlsGetValue(again), nullptr);
    TlsFree(again);
}

TEST(ProcessHeap, ZeroFillsOnRequest) {
    auto* block = static_cast<unsigned char*>(HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, 704));
    ASSERT_NE(block, nullptr);
    for (int i = 0; i < 704; ++i) ASSERT_EQ(block[i], 0) << i;
    EXPECT_TRUE(HeapFree(GetProcessHeap(), 0, block));
}

}  // namespace
