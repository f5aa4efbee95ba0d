#include "platform/PtrArray.h"

#include <gtest/gtest.h>

using qv::PtrArray;

TEST(PtrArray, AddInsertRemoveKeepOrder)
{
    int a = 1, b = 2, c = 3;
    PtrArray<int> t;
    EXPECT_EQ(t.Add(&a), 0);
    EXPECT_EQ(t.Add(&c), 1);
    t.InsertAt(1, &b);
    ASSERT_EQ(t.GetSize(), 3);
    EXPECT_EQ(*t[0] + *t[1] * 10 + *t[2] * 100, 321);
    t.RemoveAt(0);
    EXPECT_EQ(t.GetAt(0), &b);
    t.InsertAt(2, &a);  // at the end
    EXPECT_EQ(t.GetAt(2), &a);
}

TEST(PtrArray, OutOfRangeAccessThrows)
{
    int a = 1;
    PtrArray<int> t;
    EXPECT_THROW(t.GetAt(0), std::invalid_argument);
    t.Add(&a);
    EXPECT_THROW(t.GetAt(1), std::invalid_argument);
    EXPECT_THROW(t.GetAt(-1), std::invalid_argument);
    EXPECT_THROW(t.SetAt(5, &a), std::invalid_argument);
    EXPECT_THROW(t.RemoveAt(1), std::invalid_argument);
    EXPECT_THROW(t.InsertAt(3, &a), std::invalid_argument);
    EXPECT_EQ(t.GetAtOrNull(7), nullptr);
    EXPECT_EQ(t.GetAtOrNull(0), &a);
    EXPECT_EQ(t.GetSize(), 1);  // a refused change leaves the table as it was
}
