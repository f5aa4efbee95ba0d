// Name rules on the user's text: trimming, name kinds, the capture
// extension, double-byte code pages included.
#include "session/NameRules.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

using namespace qv;

namespace {

// A code page where 0x81..0x9F start a double-byte character.
bool ShiftJisLead(unsigned char c) { return c >= 0x81 && c <= 0x9F; }

} // namespace

TEST(NameRules, TrimAndKinds)
{
    struct Row { const char* text; const char* trimmed; FileNameKind kind; } rows[] = {
        {"  Tape 1  ", "Tape 1", FILE_NAME_NO_EXTENSION}, {"   ", "", FILE_NAME_EMPTY}, {"\tx", "\tx", FILE_NAME_NO_EXTENSION},
        {"...", "...", FILE_NAME_NO_EXTENSION}, {"clip.", "clip.", FILE_NAME_NO_EXTENSION},
        {"  a.b  ", "a.b", FILE_NAME_HAS_EXTENSION}, {"C:\\x\\clip..avi", "C:\\x\\clip..avi", FILE_NAME_HAS_EXTENSION}};
    for (const Row& r : rows) {
        char text[32];
        EXPECT_EQ(TrimBlanks(std::strcpy(text, r.text)), r.trimmed[0] != 0) << r.text;
        EXPECT_STREQ(text, r.trimmed);
        EXPECT_EQ(ClassifyFileName(std::strcpy(text, r.text)), r.kind) << r.text;
    }
    EXPECT_EQ(ClassifyFileName(nullptr), FILE_NAME_NULL);
}

// The extension replaces everything from the first dot; it wins when the
// name fills its field.
TEST(NameRules, CaptureExtension)
{
    const std::string n95(95, 'n');
    struct Row { std::string name, ext; size_t cb; std::string expected; bool whole; } rows[] = {
        {"Tape", ".avi", 100, "Tape.avi", true}, {"Tape.mpeg", ".avi", 100, "Tape.avi", true},
        {"My.Tape.avi", ".avi", 100, "My.avi", true}, {".hidden.mov", ".avi", 100, ".hidden.avi", true},
        {"Tape.", ".avi", 100, "Tape.avi", true}, {"", ".avi", 100, "", true}, {"Tape.mpg", "", 100, "Tape.mpg", true},
        {n95, ".avi", 100, n95 + ".avi", true},             // exactly fills the field
        {n95 + "nnnn", ".avi", 100, n95 + ".avi", false},   // cut to make room
        {"Tape.mpg", ".avi", 4, "Tape", false}};            // no room for any name: left as cut
    for (const Row& r : rows) {
        char buf[128];
        std::strcpy(buf, r.name.c_str());
        EXPECT_EQ(ApplyExtension(buf, r.cb, r.ext.c_str()), r.whole) << r.name << " " << r.cb;
        EXPECT_EQ(std::string(buf), r.expected) << r.name << " " << r.cb;
    }
}

TEST(NameRules, DoubleByteCharactersAreNeverSplit)
{
    char name[32] = "ab\x81.cd.mpg", single[32] = "ab\x81.cd.mpg";  // "\x81." is one character
    CutAtFirstExtension(name, ShiftJisLead);
    CutAtFirstExtension(single);
    EXPECT_STREQ(name, "ab\x81.cd");
    EXPECT_STREQ(single, "ab\x81");
    char path[] = "D:\\\x81\\";  // the last byte is the trail byte of one character
    EXPECT_FALSE(EndsWithBackslash(path, ShiftJisLead));
    EXPECT_TRUE(EndsWithBackslash(path));
    RemoveTrailingBackslash(path, ShiftJisLead);
    EXPECT_STREQ(path, "D:\\\x81\\");
}
