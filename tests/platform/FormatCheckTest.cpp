#include "platform/FormatCheck.h"

#include <gtest/gtest.h>

// A host's text is a format only for exactly the arguments passed.
TEST(FormatCheck, TakesOnlyTheArgumentsPassed)
{
    struct Case { const char* format; const char* kinds; bool takes; } cases[] = {
        {"Saved to %s.", "s", true}, {"At most %d (100%%).", "d", true}, {"%-8.3s|%05d|%x", "sdd", true},
        {"100%% done", "", true},    {"No conversion", "d", false},      {"Saved %s to %s.", "s", false},
        {"%d scenes", "s", false},   {"%s", "d", false},                 {"%n", "d", false},
        {"%*d", "d", false},         {"%.*s", "s", false},               {"%1$s", "s", false},
        {"%ld", "d", false},         {"%p", "d", false},                 {"trailing %", "", false}};
    for (const Case& c : cases) EXPECT_EQ(qv::FormatTakes(c.format, c.kinds), c.takes) << c.format;
    EXPECT_FALSE(qv::FormatTakes(nullptr, "s"));
}
