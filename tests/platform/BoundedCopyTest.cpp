// Copies into fixed fields: a text at the field's limit is kept whole, one
// past it is cut and reported, and nothing is written outside the field.
#include "platform/BoundedCopy.h"
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
