// Opera's cookie file through the command: the real Opera 9-12 file is refused with a word
// why, and the same file as Opera 8 writes it loses every cookie but the kept host's.
#include "CommandSupport.h"

namespace tc {
namespace {

using namespace test;

const std::string kProfile = "Users/Anna/AppData/Roaming/Opera/Opera/profile/";

std::string Registry(const std::string& kept) {
  return "Windows Registry Editor Version 5.00\n\n"
         "[HKEY_CURRENT_USER\\Software\\Opera Software]\n"
         "\"Last Directory3\"=\"C:\\\\Users\\\\Anna\\\\Documents\"\n\n"
         "[HKEY_CURRENT_USER\\Software\\TraceCleaner\\Cookies\\OPERA]\n"
         "\"default-" + kept + "\"=dword:00000000\n";
}

TEST(OperaCookiesTest, TheRealFileIsRefusedWithAReasonAndOpera8sLosesAllButTheKeptHost) {
  const fs::path real = fs::path(TC_REALWORLD_DIR) / "opera/cookies4.dat";
  if (!fs::exists(real)) GTEST_SKIP() << "no " << real;
  const std::string original = ReadBytes(real);
  TempDir dir;
  const fs::path image = dir.Path() / "image";
  MakeImage(image, Registry("yahoo.com"));
  const fs::path cookies = image / (kProfile + "cookies4.dat");
  WriteBytes(cookies, original);

  json scan = RunJson("scan --image " + Quote(image.string()) + " --plugins OperaCookies");
  EXPECT_EQ(0, PluginOf(scan, "OperaCookies")["traceCount"]);
  EXPECT_EQ("cookie file version 2001 is not read", PluginOf(scan, "OperaCookies")["note"]);
  std::string text;
  EXPECT_EQ(0, Tracecleaner("scan --image " + Quote(image.string()) + " --plugins OperaCookies", text));
  EXPECT_NE(std::string::npos, text.find("0 traces (cookie file version 2001 is not read)")) << text;
  RunJson("clean --yes --image " + Quote(image.string()) + " --plugins OperaCookies");
  EXPECT_EQ(original, ReadBytes(cookies));

  std::string opera8 = original;
  opera8[7] = 0x00;  // application version 0x2000
  WriteBytes(cookies, opera8);
  scan = RunJson("scan --traces --image " + Quote(image.string()) + " --plugins OperaCookies");
  EXPECT_EQ(12, PluginOf(scan, "OperaCookies")["traceCount"]);
  json clean = RunJson("clean --yes --image " + Quote(image.string()) + " --plugins OperaCookies");
  EXPECT_EQ(1, PluginOf(clean, "OperaCookies")["remaining"]);
  ASSERT_EQ(1u, clean["notCleaned"].size());
  EXPECT_EQ(1, clean["notCleaned"][0]["count"]);

  const std::string after = ReadBytes(cookies);
  const std::string yahooRecord = opera8.substr(0x4E7, 0x42);  // tag 3 up to its closing 0x85
  EXPECT_NE(std::string::npos, after.find(yahooRecord));
  for (const char* gone : {"SRCHUSR", "SRCHUID", "FBB", "_gh_sess", "tracker", "NID", "PREF", "SNID"})
    EXPECT_EQ(std::string::npos, after.find(gone)) << gone;
  json again = RunJson("scan --traces --image " + Quote(image.string()) + " --plugins OperaCookies");
  ASSERT_EQ(1u, PluginOf(again, "OperaCookies")["traces"].size());
  EXPECT_EQ("yahoo.com", PluginOf(again, "OperaCookies")["traces"][0]["data"]);
}

}  // namespace
}  // namespace tc
