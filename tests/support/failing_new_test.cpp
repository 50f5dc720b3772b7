#include "support/failing_new.h"

#include <gtest/gtest.h>

#include <new>

// The functions themselves: a compiler may leave out what a new expression allocates.
TEST(FailingNew, FailsTheOneAllocation) {
    const long before = liveAllocations();
    bool happened[4] = {};
    void* memory[4] = {};
    {
        const FailingNew second(2);
        for (int i = 0; i < 4; ++i) {
            memory[i] = i % 2 == 0 ? ::operator new(8, std::nothrow) : ::operator new[](8, std::nothrow);
            happened[i] = second.happened();
        }
    }
    const long during = liveAllocations();
    for (void* each : memory) ::operator delete(each);
    const long after = liveAllocations();

    EXPECT_FALSE(happened[0]);
    EXPECT_TRUE(happened[1] && happened[2] && happened[3]);
    EXPECT_TRUE(memory[0] && memory[2] && memory[3]);
    EXPECT_EQ(memory[1], nullptr);
    EXPECT_EQ(during, before + 3);
    EXPECT_EQ(after, before);
}
