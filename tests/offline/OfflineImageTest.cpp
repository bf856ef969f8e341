#include <gtest/gtest.h>

#include "OfflineTestSupport.h"
#include "platform/helpers/RegData.h"
#include "platform/helpers/TextCodec.h"
#include "platform/offline/OfflineImage.h"

namespace fs = std::filesystem;

namespace tc {
namespace {

constexpr char kUserReg[] = R"(Windows Registry Editor Version 5.00

[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Applets\Wordpad\Recent File List]
"File1"="C:\\Users\\Anna\\Documents\\Brief.rtf"
"File2"="C:\\Users\\Anna\\Documents\\Liste.rtf"

[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\User Shell Folders]
"AppData"=hex(2):25,00,55,00,53,00,45,00,52,00,50,00,52,00,4f,00,46,00,49,00,4c,00,45,00,\
  25,00,5c,00,52,00,6f,00,61,00,6d,00,00,00
"Personal"="D:\\Dokumente"

[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders]
"Recent"="C:\\Elsewhere\\Recent"

[HKEY_LOCAL_MACHINE\SYSTEM\Select]
"Current"=dword:00000002

[HKEY_LOCAL_MACHINE\SYSTEM\ControlSet002\Control\Session Manager]
"ObjectDirectories"="\\Windows"

[HKEY_LOCAL_MACHINE\SOFTWARE\Classes\.txt]
@="txtfile"

[HKEY_LOCAL_MACHINE\SOFTWARE\Classes\txtfile\shell]
)";

RegValue Query(IRegistry& reg, HKEY root, const String& key, const String& name) {
  RegValue v;
  EXPECT_EQ(0u, reg.QueryValue(root, key, name, v, RegView::Default)) << ToUtf8(key);
  return v;
}

TEST(OfflineImageTest, RegistryBranchesMapToTheirHives) {
  test::TempDir dir;
  test::MakeImage(dir.Path(), "Anna", kUserReg);
  std::string error;
  auto image = OfflineImage::Open({dir.Str(), {}, ""}, error);
  ASSERT_TRUE(image) << error;
  EXPECT_TRUE(image->Warnings().empty());
  IRegistry& reg = *image->Registry();
  EXPECT_EQ(u"\\Windows",
            RegData::Text(Query(reg, kHKEY_LOCAL_MACHINE,
                                u"SYSTEM\\CurrentControlSet\\Control\\Session Manager",
                                u"ObjectDirectories")));
  StringList names;
  ASSERT_EQ(0u, reg.EnumKeys(kHKEY_LOCAL_MACHINE, u"SYSTEM", names, RegView::Default));
  EXPECT_EQ((StringList{u"ControlSet002", u"CurrentControlSet", u"Select"}), names);
  ASSERT_EQ(0u, reg.EnumKeys(kHKEY_LOCAL_MACHINE, u"", names, RegView::Default));
  EXPECT_EQ((StringList{u"SOFTWARE", u"SYSTEM"}), names);
  EXPECT_EQ(ERROR_INVALID_HANDLE, reg.KeyExists(kHKEY_USERS, u"", RegView::Default));

  // HKEY_CLASSES_ROOT: the user's classes over the machine's.
  EXPECT_EQ(u"txtfile", RegData::Text(Query(reg, kHKEY_CLASSES_ROOT, u".TXT", u"")));
  ASSERT_EQ(0u, reg.CreateKey(kHKEY_CURRENT_USER, u"Software\\Classes\\.txt", RegView::Default));
  ASSERT_EQ(0u, reg.SetValue(kHKEY_CURRENT_USER, u"Software\\Classes\\.txt", u"",
                             RegData::Sz(u"mine"), RegView::Default));
  ASSERT_EQ(0u, reg.CreateKey(kHKEY_CURRENT_USER, u"Software\\Classes\\.abc", RegView::Default));
  EXPECT_EQ(u"mine", RegData::Text(Query(reg, kHKEY_CLASSES_ROOT, u".txt", u"")));
  ASSERT_EQ(0u, reg.EnumKeys(kHKEY_CLASSES_ROOT, u"", names, RegView::Default));
  EXPECT_EQ((StringList{u".abc", u".txt", u"txtfile"}), names);
  ASSERT_EQ(0u, reg.DeleteKeyTree(kHKEY_CLASSES_ROOT, u".txt", RegView::Default));
  EXPECT_EQ(ERROR_FILE_NOT_FOUND, reg.KeyExists(kHKEY_CLASSES_ROOT, u".txt", RegView::Default));

  // Changes reach the files with Flush, and only then.
  ASSERT_EQ(0u, reg.DeleteValue(kHKEY_CURRENT_USER,
                                u"Software\\Microsoft\\Windows\\CurrentVersion\\Applets\\"
                                u"Wordpad\\Recent File List",
                                u"file1", RegView::Default));
  fs::path ntuser = dir.Path() / "Users" / "Anna" / "NTUSER.DAT";
  const std::string before = test::ReadBytes(ntuser);
  auto second = OfflineImage::Open({dir.Str(), {}, "anna"}, error);
  ASSERT_TRUE(second) << error;
  EXPECT_EQ(0u, second->Registry()->KeyExists(kHKEY_CLASSES_ROOT, u".txt", RegView::Default));
  ASSERT_EQ(0u, reg.Flush());
  EXPECT_NE(before, test::ReadBytes(ntuser));
  auto third = OfflineImage::Open({dir.Str(), {}, ""}, error);
  std::vector<RegNamedValue> values;
  ASSERT_EQ(0u, third->Registry()->EnumValues(
                    kHKEY_CURRENT_USER,
                    u"Software\\Microsoft\\Windows\\CurrentVersion\\Applets\\Wordpad\\"
                    u"Recent File List",
                    values, RegView::Default));
  ASSERT_EQ(1u, values.size());
  EXPECT_EQ(u"File2", values[0].Name);
  EXPECT_EQ(ERROR_FILE_NOT_FOUND,
            third->Registry()->KeyExists(kHKEY_CLASSES_ROOT, u".txt", RegView::Default));
}

TEST(OfflineImageTest, MissingMachineHiveIsAnEmptyBranchWithAWarning) {
  test::TempDir dir;
  test::MakeImage(dir.Path(), "Anna", "Windows Registry Editor Version 5.00\n", false);
  std::string error;
  auto image = OfflineImage::Open({dir.Str(), {}, ""}, error);
  ASSERT_TRUE(image) << error;
  ASSERT_EQ(2u, image->Warnings().size());
  EXPECT_NE(std::string::npos, image->Warnings()[0].find("HKEY_LOCAL_MACHINE\\SOFTWARE"));
  IRegistry& reg = *image->Registry();
  StringList names;
  EXPECT_EQ(0u, reg.EnumKeys(kHKEY_LOCAL_MACHINE, u"SOFTWARE", names, RegView::Default));
  EXPECT_TRUE(names.empty());
  EXPECT_EQ(ERROR_FILE_NOT_FOUND, reg.KeyExists(kHKEY_LOCAL_MACHINE, u"SOFTWARE\\Microsoft",
                                                RegView::Default));
  EXPECT_EQ(ERROR_ACCESS_DENIED,
            reg.CreateKey(kHKEY_LOCAL_MACHINE, u"SYSTEM\\x", RegView::Default));
  auto platform = image->MakePlatform();
  StringList pending;
  EXPECT_NE(0u, platform->RebootDeleter->Schedule(u"C:\\x.tmp"));
  EXPECT_EQ(ERROR_NOT_SUPPORTED, platform->EventLogs->ListLogs(pending));
}

TEST(OfflineImageTest, ProfileIsTheOnlyOneOrTheNamedOne) {
  test::TempDir dir;
  const std::string empty = "Windows Registry Editor Version 5.00\n";
  test::MakeImage(dir.Path(), "Anna", empty);
  fs::create_directories(dir.Path() / "Users" / "Default");
  test::WriteBytes(dir.Path() / "Users" / "Default" / "NTUSER.DAT", "template, never opened");
  fs::create_directories(dir.Path() / "Users" / "NoHive");
  std::string error;
  EXPECT_TRUE(OfflineImage::Open({dir.Str(), {}, ""}, error)) << error;
  test::MakeImage(dir.Path(), "Bert", empty);
  struct Case {
    const char* user;
    bool opens;
    const char* message;
  };
  const Case cases[] = {
      {"", false, "several user profiles (Anna, Bert); choose one with --user"},
      {"bert", true, ""},
      {"Carl", false, "no user profile Carl (profiles: Anna, Bert)"},
  };
  for (const auto& c : cases) {
    auto image = OfflineImage::Open({dir.Str(), {}, c.user}, error);
    EXPECT_EQ(c.opens, image != nullptr) << c.user;
    if (!c.opens) {
      EXPECT_NE(std::string::npos, error.find(c.message)) << error;
    }
  }
  test::TempDir none;
  EXPECT_FALSE(OfflineImage::Open({none.Str(), {}, ""}, error));
  EXPECT_NE(std::string::npos, error.find("has no user profile")) << error;
}

TEST(OfflineImageTest, ShellFoldersComeFromTheUsersRegistryThenTheLayout) {
  struct Case {
    bool xp;
    int csidl;
    const char16_t* expected;
  };
  const Case cases[] = {
      {false, kCSIDL_APPDATA, u"C:\\Users\\Anna\\Roam"},   // User Shell Folders, expanded
      {false, kCSIDL_PERSONAL, u"D:\\Dokumente"},
      {false, kCSIDL_RECENT, u"C:\\Elsewhere\\Recent"},   // Shell Folders as fallback
      {false, kCSIDL_COOKIES, u"C:\\Users\\Anna\\Roam\\Microsoft\\Windows\\Cookies"},
      {false, kCSIDL_LOCAL_APPDATA, u"C:\\Users\\Anna\\AppData\\Local"},
      {false, kCSIDL_WINDOWS, u"C:\\Windows"},
      {false, kCSIDL_PROFILE, u"C:\\Users\\Anna"},
      {true, kCSIDL_LOCAL_APPDATA,
       u"C:\\Documents and Settings\\Anna\\Local Settings\\Application Data"},
      {true, kCSIDL_HISTORY, u"C:\\Documents and Settings\\Anna\\Local Settings\\History"},
      {true, kCSIDL_WINDOWS, u"C:\\WINDOWS"},
      {true, 0x23, u"C:\\Documents and Settings\\All Users\\Application Data"},
  };
  for (bool xp : {false, true}) {
    test::TempDir dir;
    test::MakeImage(dir.Path(), "Anna", kUserReg, true, xp);
    std::string error;
    auto image = OfflineImage::Open({dir.Str(), {}, ""}, error);
    ASSERT_TRUE(image) << error;
    auto platform = image->MakePlatform();
    for (const auto& c : cases) {
      if (c.xp != xp) continue;
      String path;
      EXPECT_EQ(0u, platform->Shell->GetSpecialFolder(c.csidl, path));
      EXPECT_EQ(String(c.expected), path) << "csidl " << c.csidl << (xp ? " (XP)" : "");
    }
  }
}

}  // namespace
}  // namespace tc
