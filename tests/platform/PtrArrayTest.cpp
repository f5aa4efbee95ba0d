// The pointer table behind the scene list: order kept through every change,
// and an index outside it refused without a change.
#include "platform/PtrArray.h"

#include <gtest/gtest.h>

using qv::PtrArray;

TEST(PtrArray, KeepsOrderAndRefusesIndexesOutside)
{
    int a = 1, b = 2, c = 3;
    PtrArray<int> t;
    EXPECT_THROW(t.GetAt(0), std::invalid_argument);
    EXPECT_EQ(t.Add(&a), 0);
    EXPECT_EQ(t.Add(&c), 1);
    t.InsertAt(1, &b);
    t.InsertAt(3, &a);  // at the end
    ASSERT_EQ(t.GetSize(), 4);
    EXPECT_EQ(*t[0] + *t[1] * 10 + *t[2] * 100 + *t.GetAt(3) * 1000, 1321);
    t.RemoveAt(0);
    EXPECT_EQ(t.GetAt(0), &b);
    EXPECT_THROW(t.GetAt(3), std::invalid_argument);
    EXPECT_THROW(t.GetAt(-1), std::invalid_argument);
    EXPECT_THROW(t.SetAt(3, &a), std::invalid_argument);
    EXPECT_THROW(t.RemoveAt(3), std::invalid_argument);
    EXPECT_THROW(t.InsertAt(4, &a), std::invalid_argument);
    EXPECT_EQ(t.GetAtOrNull(3), nullptr);
    EXPECT_EQ(*t[0] + *t[1] * 10 + *t[2] * 100, 132) << "a refused change leaves the table as it was";
}
