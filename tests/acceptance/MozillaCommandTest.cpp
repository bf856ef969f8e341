// Firefox and Netscape 7 profiles through the command on offline images: counts, what a clean
// leaves, and damaged store files.
#include <map>

#include "CommandSupport.h"

namespace tc {
namespace {

using namespace test;

const fs::path kRoaming = "Users/Anna/AppData/Roaming";

std::string Real(const std::string& relative) {
  const fs::path p = fs::path(TC_REALWORLD_DIR) / relative;
  return fs::exists(p) ? ReadBytes(p) : std::string();
}

// Every file of the image but the hives, with its bytes.
std::map<std::string, std::string> Files(const fs::path& image) {
  std::map<std::string, std::string> out;
  for (const auto& e : fs::recursive_directory_iterator(image)) {
    const std::string rel = fs::relative(e.path(), image).generic_string();
    const std::string name = e.path().filename().string();
    if (!e.is_regular_file() || rel.rfind("Windows/System32/config/", 0) == 0 ||
        name == "NTUSER.DAT" || name == "UsrClass.dat")
      continue;
    out[rel] = ReadBytes(e.path());
  }
  return out;
}

const char* kFirefoxReg =
    "Windows Registry Editor Version 5.00\r\n\r\n"
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Mozilla\\Mozilla Firefox 2.0.0.20\\bin]\r\n"
    "\"PathToExe\"=\"C:\\\\Program Files\\\\Mozilla Firefox\\\\firefox.exe\"\r\n";

// Firefox 2 writes a blank action line into each login.
const std::string kLogin = "https://mail.example\r\nuser\r\nanna\r\n*pass\r\ngeheim\r\n\r\n.\r\n";
const std::string kSignons = "#2d\r\n.\r\n" + kLogin;

TEST(MozillaCommandTest, FirefoxProfilesScannedAndCleaned) {
  const std::string cookies = Real("mozilla-suite/cookies.txt"), history = Real("mork/history.dat"),
                    suiteHistory = Real("mozilla-suite/history.dat"),
                    forms = Real("mork/formhistory.dat"), prefs = Real("firefox/prefs-ff44.js"),
                    ini = Real("firefox/profiles.ini");
  if (cookies.empty() || history.empty() || suiteHistory.empty() || forms.empty() || ini.empty())
    GTEST_SKIP() << "the real Mozilla files are not available";
  TempDir dir;
  const fs::path c = dir.Path() / "image";
  MakeImage(c, kFirefoxReg);
  WriteBytes(c / "Program Files/Mozilla Firefox/firefox.exe", "MZ");
  // Firefox's own profiles.ini names the relative profile; a second, absolute one is added.
  const fs::path firefox = c / kRoaming / "Mozilla/Firefox";
  WriteBytes(firefox / "profiles.ini",
             ini + "[Profile1]\r\nName=work\r\nIsRelative=0\r\nPath=C:\\Profiles\\work\r\n");
  const fs::path home = firefox / "Profiles/3luidklz.default", work = c / "Profiles/work";
  WriteBytes(home / "cookies.txt", cookies);
  WriteBytes(home / "history.dat", suiteHistory);
  WriteBytes(home / "formhistory.dat", forms);
  WriteBytes(home / "signons.txt", kSignons + kLogin);
  WriteBytes(home / "prefs.js", prefs);
  WriteBytes(work / "cookies.txt", ReadBytes(fs::path(TC_SOURCE_DIR) / "tests/browsers/data/curl-cookies.txt"));
  WriteBytes(work / "history.dat", history);
  WriteBytes(work / "formhistory.dat", forms);
  WriteBytes(work / "signons.txt", kSignons);
  WriteBytes(work / "bookmarks.html", "<html/>");

  const std::map<std::string, int> counts = {{"FirefoxCookies", 55 + 2},
                                             {"FirefoxHistory", 391 + 1},
                                             {"FirefoxFormData", 1 + 1},
                                             {"FirefoxSavedPasswords", 2 + 1}};
  json scan = RunJson("scan --image " + Quote(c.string()));
  for (const auto& [id, n] : counts) EXPECT_EQ(PluginOf(scan, id)["traceCount"], n) << id;

  auto before = Files(c);
  RunJson("clean --yes --image " + Quote(c.string()) +
          " --plugins FirefoxCookies,FirefoxHistory,FirefoxFormData,FirefoxSavedPasswords");
  auto after = Files(c);
  // Cookies and history stay as empty files, form history goes, the passwords are written
  // back with their entries (line ends now LF); nothing else changes.
  for (const fs::path& p : {home, work}) {
    const std::string rel = fs::relative(p, c).generic_string() + "/";
    EXPECT_EQ(after[rel + "cookies.txt"], "");
    EXPECT_EQ(after[rel + "history.dat"], "");
    EXPECT_FALSE(after.count(rel + "formhistory.dat"));
    before.erase(rel + "formhistory.dat");
    for (const char* name : {"cookies.txt", "history.dat"}) before[rel + name] = "";
    std::string lf = before[rel + "signons.txt"];
    for (size_t at; (at = lf.find('\r')) != std::string::npos;) lf.erase(at, 1);
    before[rel + "signons.txt"] = lf;
  }
  EXPECT_EQ(after, before);
}

// A Mozilla application registry naming `folders` as 16-bit text.
std::string ApplicationRegistry(const std::vector<std::string>& folders) {
  std::string reg = "ADdv";
  for (const auto& f : folders)
    for (char ch : "directory" + std::string(1, '\0') + f + std::string(1, '\0')) reg += {ch, '\0'};
  return reg;
}

TEST(MozillaCommandTest, DamagedFilesAreReportedAndNeverRewritten) {
  TempDir dir;
  const fs::path c = dir.Path() / "image";
  MakeImage(c, std::string(kFirefoxReg) +
                   "\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Mozilla\\Netscape 7.2\\bin]\r\n"
                   "\"PathToExe\"=\"C:\\\\Program Files\\\\Netscape\\\\netscp.exe\"\r\n");
  WriteBytes(c / "Program Files/Netscape/netscp.exe", "MZ");
  WriteBytes(c / "Program Files/Mozilla Firefox/firefox.exe", "MZ");
  const fs::path mozilla = c / kRoaming / "Mozilla";
  const std::string windows = "C:\\Users\\Anna\\AppData\\Roaming\\Mozilla\\Profiles\\";
  WriteBytes(mozilla / "registry.dat",
             ApplicationRegistry({windows + "Anna\\a1.slt", windows + "Ben\\b2.slt"}));
  // Damaged stores: binary cookie and password files, a cut Mork file and wallet file.
  const fs::path anna = mozilla / "Profiles/Anna/a1.slt", ben = mozilla / "Profiles/Ben/b2.slt";
  const std::string binary("\x00\x01\x02\tTRUE\t/\x00", 9);
  WriteBytes(anna / "cookies.txt", binary);
  WriteBytes(anna / "prefs.js", "user_pref(\"signon.SignonFileName\", \"1.s\");\n"
                                "user_pref(\"wallet.SchemaValueFileName\", \"2.w\");\n");
  WriteBytes(anna / "1.s", "#2c\n.\nhost\n~" + binary);
  WriteBytes(anna / "2.w", "~~~\n~");
  WriteBytes(anna / "history.dat", "// <!-- <mdb:mork:z v=\"1.4\"/> -->\n< <(a=c)> (82=U");
  WriteBytes(ben / "cookies.txt", "x.de\tFALSE\t/\tFALSE\t9\tn\tv\n");
  const fs::path firefox = mozilla / "Firefox";
  WriteBytes(firefox / "profiles.ini", "[Profile0]\r\nPath=p\r\nIsRelative=1\r\n");
  WriteBytes(firefox / "p/signons.txt", binary);
  WriteBytes(firefox / "p/formhistory.dat", "[[[(((^^^==)))]]]<<<(=\\");

  json scan = RunJson("scan --image " + Quote(c.string()));
  // The scan says why a file was not read instead of counting nothing in silence.
  std::string notes;
  for (const auto& p : scan["plugins"])
    if (p.contains("note")) notes += p["note"].get<std::string>() + "\n";
  for (const char* file : {"a1.slt\\cookies.txt: cookie file holds binary data",
                           "a1.slt\\1.s: password file holds binary data",
                           "p\\signons.txt: password file holds binary data"})
    EXPECT_NE(notes.find(file), std::string::npos) << file << " in\n" << notes;

  const auto before = Files(c);
  json clean = RunJson("clean --yes --image " + Quote(c.string()));
  EXPECT_TRUE(clean["failures"].empty()) << clean["failures"].dump();
  const auto after = Files(c);
  for (const fs::path& kept : {anna / "cookies.txt", anna / "1.s", firefox / "p/signons.txt"}) {
    const std::string rel = fs::relative(kept, c).generic_string();
    EXPECT_EQ(after.at(rel), before.at(rel)) << rel;
  }
}

}  // namespace
}  // namespace tc
