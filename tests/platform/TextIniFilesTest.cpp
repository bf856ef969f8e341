#include "platform/common/TextIniFiles.h"

#include <gtest/gtest.h>

#include "platform/helpers/TextCodec.h"
#include "tests/support/CrashPointSweep.h"
#include "platform/memory/MemoryPlatform.h"

namespace tc {
namespace {

class TextIniFilesTest : public ::testing::Test {
 protected:
  MemoryWindows mem = MakeMemoryWindows();
  TextIniFiles ini{mem.FileFaults};
  const String file = u"C:\\App\\app.ini";
};

TEST_F(TextIniFilesTest, ReadsTheWayTheSystemDoes) {
  mem.Files->AddFile(file,
                     "top=ignored\r\n"
                     "  [ Main ]  \r\n"
                     "; Plain=comment\r\n"
                     "  Plain =  spaced value  \r\n"
                     "Quoted=\"  kept blanks \"\r\n"
                     "Single='x'\r\n"
                     "Half=\"open\r\n"
                     "noequals\r\n"
                     "plain=second\r\n"
                     "[main]\r\n"
                     "Other=from repeated section\r\n"
                     "[Umlaut]\n"
                     "K=Gr\xfc\xdf" "e\r");  // a lone CR ends the file
  struct Case {
    const char16_t *section, *key, *expected;
  } cases[] = {
      {u"main", u"PLAIN", u"spaced value"},  {u"Main", u"Quoted", u"  kept blanks "},
      {u"Main", u"Single", u"x"},            {u"Main", u"Half", u"\"open"},
      {u"Main", u"noequals", u"<def>"},      {u"Main", u"Other", u"<def>"},
      {u"", u"top", u"<def>"},               {u"Umlaut", u"k", u"Grüße"},
      {u"Missing", u"Plain", u"<def>"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(c.expected, ini.ReadString(file, c.section, c.key, u"<def>"))
        << ToUtf8(c.section) << "/" << ToUtf8(c.key);
  }
  StringList sections, keys;
  ASSERT_EQ(ERROR_SUCCESS, ini.ReadSections(file, sections));
  EXPECT_EQ((StringList{u"Main", u"Umlaut"}), sections);
  ASSERT_EQ(ERROR_SUCCESS, ini.ReadKeys(file, u"MAIN", keys));
  EXPECT_EQ((StringList{u"Plain", u"Quoted", u"Single", u"Half"}), keys);
  EXPECT_EQ(u"d", ini.ReadString(u"C:\\App\\none.ini", u"Main", u"Plain", u"d"));
  EXPECT_EQ(ERROR_FILE_NOT_FOUND, ini.ReadSections(u"C:\\App\\none.ini", sections));
  // A key added after that line ends it with LF: its value does not change.
  ASSERT_EQ(ERROR_SUCCESS, ini.WriteString(file, u"Umlaut", u"New", u"1"));
  EXPECT_EQ(u"Grüße", ini.ReadString(file, u"Umlaut", u"K", u""));
}

TEST_F(TextIniFilesTest, ChangesOnlyTheLinesItTouchesByteForByte) {
  // 0x81 has no Windows-1252 character: a decode/encode round trip would lose it.
  mem.Files->AddFile(file,
                     "; caf\xe9 \x81\r\n"
                     "[A]\n"
                     "Key = old\r\n"
                     "Keep=\x81\r\n"
                     "\r\n"
                     "[B]\r\n"
                     "x=1");
  ASSERT_EQ(ERROR_SUCCESS, ini.WriteString(file, u"a", u"KEY", u"new"));
  ASSERT_EQ(ERROR_SUCCESS, ini.WriteString(file, u"A", u"Added", u"é"));
  ASSERT_EQ(ERROR_SUCCESS, ini.WriteString(file, u"B", u"y", u"2"));
  ASSERT_EQ(ERROR_SUCCESS, ini.WriteString(file, u"C", u"z", u"3"));
  ASSERT_EQ(ERROR_SUCCESS, ini.DeleteKey(file, u"b", u"X"));
  EXPECT_EQ(
      "; caf\xe9 \x81\r\n"
      "[A]\n"
      "Key=new\r\n"
      "Keep=\x81\r\n"
      "Added=\xe9\r\n"
      "\r\n"
      "[B]\r\n"
      "y=2\r\n"
      "[C]\r\n"
      "z=3\r\n",
      mem.Files->Contents(file));
  for (auto [section, key] : {std::pair{u"A", u"Nope"}, {u"Nope", u"x"}}) {
    EXPECT_EQ(ERROR_SUCCESS, ini.DeleteKey(file, section, key));
  }
  EXPECT_EQ(ERROR_SUCCESS, ini.DeleteKey(u"C:\\App\\none.ini", u"A", u"x"));
  EXPECT_FALSE(mem.Files->Exists(u"C:\\App\\none.ini"));
}

TEST_F(TextIniFilesTest, KeepsUtf16AndCreatesAnsiFiles) {
  Bytes utf16 = {0xFF, 0xFE};
  for (char16_t c : std::u16string(u"[S]\r\nName=Grüße\r\n")) {
    utf16.push_back(static_cast<uint8_t>(c));
    utf16.push_back(static_cast<uint8_t>(c >> 8));
  }
  mem.Files->AddFile(file, utf16);
  EXPECT_EQ(u"Grüße", ini.ReadString(file, u"S", u"Name", u""));
  ASSERT_EQ(ERROR_SUCCESS, ini.WriteString(file, u"S", u"Neu", u"€"));
  EXPECT_EQ(u"€", ini.ReadString(file, u"S", u"Neu", u""));
  std::string raw = mem.Files->Contents(file);
  EXPECT_EQ(std::string(utf16.begin(), utf16.end()), raw.substr(0, utf16.size()));
  EXPECT_EQ(std::string("N\0e\0u\0=\0\xac\x20\r\0\n\0", 14), raw.substr(utf16.size()));

  // A UTF-16 file cut after an odd byte: a key added after it reads back.
  const String odd = u"C:\\App\\odd.ini";
  mem.Files->AddFile(odd, std::string("\xFF\xFE[\0S\0]\0\n\0k\0=\0v\0\xFF", 17));
  ASSERT_EQ(ERROR_SUCCESS, ini.WriteString(odd, u"S", u"n", u"1"));
  EXPECT_EQ(u"1", ini.ReadString(odd, u"S", u"n", u""));
  EXPECT_EQ(u"v", ini.ReadString(odd, u"S", u"k", u""));

  // A UTF-8 file whose last line is no valid UTF-8: a key added after it keeps its bytes.
  const String utf8 = u"C:\\App\\utf8.ini";
  mem.Files->AddFile(utf8, "\xEF\xBB\xBF[S]\r\nk=caf\xe9");
  ASSERT_EQ(ERROR_SUCCESS, ini.WriteString(utf8, u"S", u"n", u"1"));
  EXPECT_EQ("\xEF\xBB\xBF[S]\r\nk=caf\xe9\r\nn=1\r\n", mem.Files->Contents(utf8));

  const String fresh = u"C:\\App\\fresh.ini";
  ASSERT_EQ(ERROR_SUCCESS, ini.WriteString(fresh, u"Sec", u"K", u"Grüße"));
  EXPECT_EQ("[Sec]\r\nK=Gr\xfc\xdf" "e\r\n", mem.Files->Contents(fresh));
  EXPECT_EQ(ERROR_PATH_NOT_FOUND, ini.WriteString(u"C:\\NoDir\\x.ini", u"S", u"K", u"v"));
}

TEST_F(TextIniFilesTest, AFailedWriteLeavesTheOriginal) {
  const std::string original = "[S]\r\nK=v\r\nL=w\r\n";
  mem.Files->AddFile(file, original);
  const std::string written = test::SweepCrashPoints(mem, file, [&] {
    ini.WriteString(file, u"S", u"K", u"changed");
  });
  EXPECT_EQ("[S]\r\nK=changed\r\nL=w\r\n", written);
}

}  // namespace
}  // namespace tc
