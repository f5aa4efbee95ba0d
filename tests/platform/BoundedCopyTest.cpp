// Fixed fields: a text at the field's limit is kept whole, one past it is
// cut and reported, and nothing is written outside the field; a host's text
// is a format only for exactly the arguments passed.
#include "platform/BoundedCopy.h"
#include "platform/FormatCheck.h"
#include "support/Portable.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>

using namespace qv;

TEST(BoundedCopy, KeepsToTheFieldAndTellsWhenItCut)
{
    const std::string s19(19, 'a'), s20(20, 'b');
    const char raw[8] = {'z', 'z', 'z', 'z', 'z', 'z', 'z', 'z'};  // a field with no terminator
    struct Row { const char* what; std::function<bool(char*, size_t)> op; bool fits; std::string text; } rows[] = {
        {"copy at the limit", [&](char* f, size_t n) { return CopyBounded(f, n, s19.c_str()); }, true, s19},
        {"copy one past", [&](char* f, size_t n) { return CopyBounded(f, n, s20.c_str()); }, false, std::string(19, 'b')},
        {"copy of null", [](char* f, size_t n) { return CopyBounded(f, n, nullptr); }, true, ""},
        {"field read to its end", [&](char* f, size_t n) { return CopyField(f, n, raw, sizeof raw); }, true, "zzzzzzzz"},
        {"field into 5 bytes", [&](char* f, size_t) { return CopyField(f, 5, raw, sizeof raw); }, false, "zzzz"},
        {"append to the limit", [](char* f, size_t n) { CopyBounded(f, n, "abc"); return AppendBounded(f, n, "defghijklmnopqrs"); }, true, "abcdefghijklmnopqrs"},
        {"append past it", [](char* f, size_t n) { CopyBounded(f, n, "abc"); return AppendBounded(f, n, "defghijklmnopqrst"); }, false, "abcdefghijklmnopqrs"},
        {"format cut", [](char* f, size_t n) { return FormatBounded(f, n, "%s-%d", "abcdefghijklmnopqr", 7); }, false, "abcdefghijklmnopqr-"},
        // Record fields: a text of exactly the field's size fills it with no terminator.
        {"fill at the limit", [&](char* f, size_t n) { return FillField(f, n, (s19 + "a").c_str()); }, true, s19 + "a"},
        {"fill one past", [&](char* f, size_t n) { return FillField(f, n, (s20 + "b").c_str()); }, false, s20},
        {"overlapping copy", [](char* f, size_t n) { std::strcpy(f, "  hello"); return CopyBounded(f, n, f + 2); }, true, "hello"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.what);
        qvtest::Guarded<20> g('#');
        EXPECT_EQ(r.op(g.field, sizeof g.field), r.fits);
        EXPECT_EQ(g.Text(), r.text);
        EXPECT_TRUE(g.Intact());
    }
}

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
