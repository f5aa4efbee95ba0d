#include "platform/BoundedCopy.h"

#include <gtest/gtest.h>

#include <string>

using namespace qv;

namespace {

// A field with guard bytes on both sides: any write outside it shows.
template <size_t N> struct Guarded {
    char before[8];
    char field[N];
    char after[8];
    Guarded() { std::memset(this, '#', sizeof *this); }
    bool GuardsIntact() const
    {
        for (char c : before) if (c != '#') return false;
        for (char c : after) if (c != '#') return false;
        return true;
    }
};

} // namespace

TEST(BoundedCopy, FitsAtTheLimitAndCutsOnePast)
{
    Guarded<20> g;
    EXPECT_TRUE(CopyBounded(g.field, std::string(19, 'a').c_str()));
    EXPECT_EQ(std::string(g.field), std::string(19, 'a'));
    EXPECT_FALSE(CopyBounded(g.field, std::string(20, 'b').c_str()));
    EXPECT_EQ(std::string(g.field), std::string(19, 'b'));
    EXPECT_FALSE(CopyBounded(g.field, std::string(5000, 'c').c_str()));
    EXPECT_EQ(g.field[19], 0);
    EXPECT_TRUE(g.GuardsIntact());
}

TEST(BoundedCopy, NullSourceGivesEmptyField)
{
    char field[4] = "abc";
    EXPECT_TRUE(CopyBounded(field, nullptr));
    EXPECT_STREQ(field, "");
}

TEST(BoundedCopy, FieldWithoutTerminatorIsReadOnlyToItsEnd)
{
    char source[8];
    std::memset(source, 'z', sizeof source);  // no NUL anywhere
    Guarded<16> g;
    EXPECT_TRUE(CopyField(g.field, sizeof g.field, source, sizeof source));
    EXPECT_EQ(std::string(g.field), "zzzzzzzz");
    Guarded<5> small;
    EXPECT_FALSE(CopyField(small.field, source));
    EXPECT_EQ(std::string(small.field), "zzzz");
    EXPECT_TRUE(g.GuardsIntact());
    EXPECT_TRUE(small.GuardsIntact());
}

TEST(BoundedCopy, AppendStopsAtTheField)
{
    Guarded<8> g;
    CopyBounded(g.field, "abc");
    EXPECT_TRUE(AppendBounded(g.field, "de"));
    EXPECT_FALSE(AppendBounded(g.field, "fghij"));
    EXPECT_EQ(std::string(g.field), "abcdefg");
    EXPECT_TRUE(g.GuardsIntact());
}

TEST(BoundedCopy, FormatReportsCutting)
{
    Guarded<6> g;
    EXPECT_TRUE(FormatBounded(g.field, sizeof g.field, "%d", 12345));
    EXPECT_FALSE(FormatBounded(g.field, sizeof g.field, "%s-%d", "abcdef", 7));
    EXPECT_EQ(std::string(g.field), "abcde");
    EXPECT_TRUE(g.GuardsIntact());
}

TEST(BoundedCopy, OverlappingCopyIsSafe)
{
    char text[16] = "  hello";
    EXPECT_TRUE(CopyBounded(text, sizeof text, text + 2));
    EXPECT_STREQ(text, "hello");
}
