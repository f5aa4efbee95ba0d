// The pointer table behind the scene list (its order is what every scene
// list test sees): an index outside it finds nothing and changes nothing.
#include "platform/PtrArray.h"

#include <gtest/gtest.h>

TEST(PtrArray, IndexesOutsideFindNothingAndChangeNothing)
{
    int a = 1, b = 2;
    qv::PtrArray<int> t;
    t.Add(&a);
    t.InsertAt(1, &b);  // at the end
    EXPECT_TRUE(t.GetAtOrNull(-1) == nullptr && t.GetAtOrNull(2) == nullptr);
    EXPECT_THROW(t.GetAt(2), std::invalid_argument);
    EXPECT_THROW(t.SetAt(2, &a), std::invalid_argument);
    EXPECT_THROW(t.RemoveAt(-1), std::invalid_argument);
    EXPECT_THROW(t.InsertAt(3, &a), std::invalid_argument);
    EXPECT_TRUE(t.GetSize() == 2 && t[0] == &a && t[1] == &b);
}
