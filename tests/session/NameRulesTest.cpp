#include "session/NameRules.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

using namespace qv;

namespace {

std::string WithExtension(const char* name, const char* ext, size_t cb = 100)
{
    char buf[300];
    std::strncpy(buf, name, sizeof buf);
    ApplyExtension(buf, cb, ext);
    return buf;
}

int Kind(const char* text)
{
    char buf[64];
    std::strncpy(buf, text, sizeof buf);
    return ClassifyFileName(buf);
}

// A code page where 0x81..0x9F start a double-byte character.
bool ShiftJisLead(unsigned char c)
{
    return c >= 0x81 && c <= 0x9F;
}

std::string Join(const char* folder, const char* name)
{
    char out[260];
    JoinFolderAndName(out, sizeof out, folder, name);
    return out;
}

} // namespace

TEST(NameRules, TrimRemovesOnlyBlanks)
{
    char text[] = "  Tape 1  ";
    EXPECT_TRUE(TrimBlanks(text));
    EXPECT_STREQ(text, "Tape 1");
    char spaces[] = "   ";
    EXPECT_FALSE(TrimBlanks(spaces));
    EXPECT_STREQ(spaces, "");
    char tab[] = "\tx";
    EXPECT_TRUE(TrimBlanks(tab));
    EXPECT_STREQ(tab, "\tx");
}

TEST(NameRules, CaptureExtensionReplacesFromTheFirstDot)
{
    EXPECT_EQ(WithExtension("Tape", ".avi"), "Tape.avi");
    EXPECT_EQ(WithExtension("Tape.mpg", ".avi"), "Tape.avi");
    EXPECT_EQ(WithExtension("Tape.mpeg", ".avi"), "Tape.avi");
    EXPECT_EQ(WithExtension("My.Tape.avi", ".avi"), "My.avi");
    EXPECT_EQ(WithExtension("clip.ts", ".avi"), "clip.avi");
    EXPECT_EQ(WithExtension(".hidden.mov", ".avi"), ".hidden.avi");
    EXPECT_EQ(WithExtension("Tape.", ".avi"), "Tape.avi");
    EXPECT_EQ(WithExtension("", ".avi"), "");
    EXPECT_EQ(WithExtension("Tape.mpg", ""), "Tape.mpg");
}

TEST(NameRules, CaptureExtensionAlwaysFitsTheField)
{
    // 99 characters is the most the capture name holds; the extension wins.
    std::string longName(99, 'n');
    std::string result = WithExtension(longName.c_str(), ".avi", 100);
    EXPECT_EQ(result.size(), 99u);
    EXPECT_EQ(result.substr(95), ".avi");
    EXPECT_EQ(WithExtension(std::string(95, 'n').c_str(), ".avi", 100).size(), 99u);
}

TEST(NameRules, DotInsideADoubleByteCharacterIsNotASeparator)
{
    // "\x81." is one character in the double-byte code page.
    char name[32] = "ab\x81.cd.mpg";
    CutAtFirstExtension(name, ShiftJisLead);
    EXPECT_STREQ(name, "ab\x81.cd");
    char single[32] = "ab\x81.cd.mpg";
    CutAtFirstExtension(single);
    EXPECT_STREQ(single, "ab\x81");
}

TEST(NameRules, FileNameKinds)
{
    EXPECT_EQ(Kind("clip"), FILE_NAME_NO_EXTENSION);
    EXPECT_EQ(Kind("clip.avi"), FILE_NAME_HAS_EXTENSION);
    EXPECT_EQ(Kind("..."), FILE_NAME_NO_EXTENSION);
    EXPECT_EQ(Kind("  "), FILE_NAME_EMPTY);
    EXPECT_EQ(Kind("clip."), FILE_NAME_NO_EXTENSION);
    EXPECT_EQ(Kind("  a.b  "), FILE_NAME_HAS_EXTENSION);
    EXPECT_EQ(Kind("C:\\x\\clip..avi"), FILE_NAME_HAS_EXTENSION);
    EXPECT_EQ(ClassifyFileName(nullptr), FILE_NAME_NULL);
}

TEST(NameRules, JoiningNeverDoublesABackslash)
{
    EXPECT_EQ(Join("D:\\Video", "PSIndex.avi"), "D:\\Video\\PSIndex.avi");
    EXPECT_EQ(Join("D:\\", "PSIndex.avi"), "D:\\PSIndex.avi");
    EXPECT_EQ(Join("", "PSIndex.avi"), "\\PSIndex.avi");
    char out[12];
    EXPECT_FALSE(JoinFolderAndName(out, sizeof out, "D:\\Video", "PSIndex.avi"));
    EXPECT_EQ(std::strlen(out), 11u);
}

TEST(NameRules, TrailingBackslashOfADoubleByteCharacterIsKept)
{
    char path[] = "D:\\\x81\\";  // the last byte is the trail byte of one character
    EXPECT_FALSE(EndsWithBackslash(path, ShiftJisLead));
    EXPECT_TRUE(EndsWithBackslash(path));
    RemoveTrailingBackslash(path, ShiftJisLead);
    EXPECT_STREQ(path, "D:\\\x81\\");
}

TEST(NameRules, SplitKeepsTheFolderBackslash)
{
    char folder[260], name[100];
    SplitPath("D:\\Video\\Tape.avi", folder, sizeof folder, name, sizeof name);
    EXPECT_STREQ(folder, "D:\\Video\\");
    EXPECT_STREQ(name, "Tape.avi");
    SplitPath("Tape.avi", folder, sizeof folder, name, sizeof name);
    EXPECT_STREQ(folder, "");
    EXPECT_STREQ(name, "Tape.avi");
    char small[5];
    SplitPath("D:\\Video\\A-very-long-name.avi", folder, sizeof folder, small, sizeof small);
    EXPECT_STREQ(small, "A-ve");
}
