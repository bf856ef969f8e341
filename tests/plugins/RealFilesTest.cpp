// Stores on files that the applications themselves wrote (../shared/realworld), counted as
// their sources describe them.
#include "AppPluginFixture.h"

namespace tc {
namespace {

using RealFilesTest = AppPluginFixture;

TEST_F(RealFilesTest, CountsOfKnownMetNK2AndWinampIni) {
  const String emule = u"C:\\Program Files\\eMule\\", winamp = u"C:\\Program Files\\Winamp\\";
  const struct {
    const char* real;
    String path;
    const char16_t* plugin;
    int traces;
    bool removed;  // by the clean; else kept byte for byte
  } cases[] = {
      {"filesharing/amule/known.met", emule + u"config\\known.met", u"EMuleDownloadMRU", 2, true},
      {"windows/outlook/Outlook.NK2", kAppData + u"Microsoft\\Outlook\\Outlook.NK2",
       u"OutlookAutoFill", 64, true},  // 63 at signs: 64 parts
      {"players/winamp.ini", winamp + u"Winamp.ini", u"WinampRecentURLs", 0, false},
      {"players/winamp.ini", winamp + u"Winamp.ini", u"WinampRecentFolder", 0, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.real);
    TC_REAL_FILE(bytes, c.real);
    Reset();
    File(emule + u"emule.exe");
    Str(HKEY_CURRENT_USER, u"Software\\Classes\\ed2k\\shell\\open\\command", u"",
        u"\"" + emule + u"emule.exe\" \"%1\"");
    File(c.path, bytes);
    Start();
    Plugin(c.plugin).Active = true;
    EXPECT_EQ(Scan(c.plugin), c.traces);
    CleanAndFix({c.plugin});
    EXPECT_EQ(mem.Files->Contents(c.path), c.removed ? "" : bytes);
    EXPECT_EQ(Exists(c.path), !c.removed);
  }
}

// The real file with its folder set: cleared, it is the real file again, byte for byte.
TEST_F(RealFilesTest, WinampIniLosesItsFolderAndNothingElse) {
  TC_REAL_FILE(real, "players/winamp.ini");
  std::string used = real;
  const size_t at = used.find("\ncwd=\n");
  ASSERT_NE(at, std::string::npos);
  used.insert(at + 5, "C:\\Musik\\Neu");
  const String file = u"C:\\Program Files\\Winamp\\Winamp.ini";
  File(file, used);
  Start();
  EXPECT_EQ(Scan(u"WinampRecentFolder"), 1);
  CleanAndFix({u"WinampRecentFolder"});
  EXPECT_EQ(mem.Files->Contents(file), real);
}

}  // namespace
}  // namespace tc
