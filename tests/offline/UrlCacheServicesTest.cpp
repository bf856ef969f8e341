// The URL cache, URL history and Protected Storage of an offline image, on the real index
// files of a Windows XP profile.
#include <gtest/gtest.h>

#include "OfflineTestSupport.h"
#include "platform/common/FaultInjection.h"
#include "platform/helpers/FileContents.h"
#include "platform/helpers/TextCodec.h"
#include "platform/offline/IndexDat.h"
#include "platform/offline/OfflineImage.h"
#include "platform/offline/UrlCacheContainers.h"

namespace fs = std::filesystem;

namespace tc {
namespace {

const fs::path kReal = fs::path(TC_REALWORLD_DIR) / "iecache";
const char16_t kContentIndex[] =
    u"C:\\Documents and Settings\\Anna\\Local Settings\\Temporary Internet Files\\Content.IE5\\index.dat";
const char16_t kHistory[] = u"C:\\Documents and Settings\\Anna\\Local Settings\\History\\History.IE5\\";

constexpr char kProtectedStorage[] = R"(Windows Registry Editor Version 5.00

[HKEY_CURRENT_USER\Software\Microsoft\Protected Storage System Provider\S-1-5-21-1-2-3-1003\Data\e161255a-37c3-11d2-bcaa-00c04fd929db\{E161255A-37C3-11D2-BCAA-00C04FD929DB}\q:StringData]
"Item Data"=hex:01,02,03

[HKEY_CURRENT_USER\Software\Microsoft\Protected Storage System Provider\S-1-5-21-1-2-3-1003\Data\e161255a-37c3-11d2-bcaa-00c04fd929db\{E161255A-37C3-11D2-BCAA-00C04FD929DB}\q:StringIndex]
"Item Data"=hex:04
)";

class OfflineUrlServices : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!fs::exists(kReal)) GTEST_SKIP() << kReal << " is not there";
    test::MakeImage(dir_.Path(), "Anna", kProtectedStorage, true, true);
    Put(kContentIndex, Real("iecache/Content.IE5-index.dat"));
    Put(String(kHistory) + u"index.dat", Real("iecache/History.IE5-index.dat"));
    Put(String(kHistory) + u"MSHist012013031020130311\\index.dat", Real("iecache/MSHist01-index.dat"));
    Open();
  }
  void Open() {
    std::string error;
    image_ = OfflineImage::Open({dir_.Str(), {}, ""}, error);
    ASSERT_TRUE(image_) << error;
    platform_ = image_->MakePlatform();
  }
  fs::path Host(const String& windows) {
    std::string path = ToUtf8(windows.substr(3));
    std::replace(path.begin(), path.end(), '\\', '/');
    return dir_.Path() / path;
  }
  static std::string Real(const std::string& relative) {
    return test::ReadBytes(fs::path(TC_REALWORLD_DIR) / relative);
  }
  void Put(const String& windows, const std::string& bytes) {
    fs::create_directories(Host(windows).parent_path());
    test::WriteBytes(Host(windows), bytes);
  }
  IndexDat Read(const String& windows) {
    std::string s = test::ReadBytes(Host(windows)), error;
    IndexDat index;
    EXPECT_TRUE(ReadIndexDat(Bytes(s.begin(), s.end()), index, error)) << error;
    return index;
  }
  std::vector<UrlCacheEntry> Walk() {
    std::vector<UrlCacheEntry> all;
    std::unique_ptr<IUrlCacheFind> find;
    UrlCacheEntry e;
    uint32_t size = 1 << 16;
    for (uint32_t rc = platform_->UrlCache->FindFirst(find, e, size); rc == 0;
         size = 1 << 16, rc = find->Next(e, size))
      all.push_back(e);
    return all;
  }

  test::TempDir dir_;
  std::unique_ptr<OfflineImage> image_;
  std::shared_ptr<Platform> platform_;
};

TEST_F(OfflineUrlServices, HistoryHoldsEveryAddressOnceAndLosesItFromEveryIndex) {
  std::vector<UrlHistoryEntry> entries;
  ASSERT_EQ(0u, platform_->UrlHistory->Enumerate(entries));
  EXPECT_EQ(15u + 14u, entries.size());
  EXPECT_EQ(u"http://www.msn.com/?ocid=iehp", entries[0].Url);
  EXPECT_EQ(2, entries[0].Kind);

  // Google's only address takes its host entry along; Bing keeps its host with another address.
  for (const char16_t* url : {u"http://www.google.com", u"http://www.bing.com/search?q=libmsiecf&src=IE-SearchBox",
                              u"http://www.msn.com/?ocid=iehp"})
    EXPECT_EQ(0u, platform_->UrlHistory->DeleteUrl(url)) << ToUtf8(url);
  EXPECT_EQ(uint32_t{ERROR_FILE_NOT_FOUND}, platform_->UrlHistory->DeleteUrl(u"http://www.google.com"));
  ASSERT_EQ(0u, platform_->UrlHistory->Commit());
  const String daily = String(kHistory) + u"MSHist012013031020130311\\index.dat";
  EXPECT_EQ(23u - 3u, Read(daily).Records.size());
  EXPECT_EQ(14u, Read(String(kHistory) + u"index.dat").Records.size());
  const std::string bytes = test::ReadBytes(Host(daily));
  EXPECT_EQ(std::string::npos, bytes.find("www.google.com"));
  EXPECT_NE(std::string::npos, bytes.find(":Host: www.bing.com"));
  ASSERT_EQ(0u, platform_->UrlHistory->Enumerate(entries));
  EXPECT_EQ(26u, entries.size());
}

TEST_F(OfflineUrlServices, ADamagedIndexIsNamedAtOpenAndLeftAlone) {
  std::string damaged = test::ReadBytes(kReal / "Content.IE5-index.dat");
  damaged.resize(20000);
  test::WriteBytes(Host(kContentIndex), damaged);
  Open();
  ASSERT_EQ(1u, image_->Warnings().size());
  EXPECT_NE(std::string::npos, image_->Warnings()[0].find("Content.IE5\\index.dat"));
  for (const auto& e : Walk()) platform_->UrlCache->DeleteEntry(e.SourceUrlName);
  EXPECT_EQ(damaged, test::ReadBytes(Host(kContentIndex)));
  EXPECT_TRUE(Walk().empty());
}

TEST_F(OfflineUrlServices, AFailedRewriteLeavesTheIndexAsItWas) {
  const std::string before = test::ReadBytes(Host(kContentIndex));
  auto faults = std::make_shared<FaultyFileSystem>(platform_->Files);
  UrlCacheContainers containers(faults, platform_->Shell);
  auto& all = containers.Load();
  ASSERT_EQ(0u, containers.Free(0, 0));
  faults->SetFreeSpace(1000);
  EXPECT_NE(0u, containers.Flush());
  EXPECT_EQ(before, test::ReadBytes(Host(kContentIndex)));
  EXPECT_EQ(21u, all[0].Entries.size());
}

TEST_F(OfflineUrlServices, ProtectedStorageItemsAreListedReadAsStoredAndDeleted) {
  IProtectedStorage& store = *platform_->ProtectedStorage;
  const Guid form{0xe161255a, 0x37c3, 0x11d2, {0xbc, 0xaa, 0x00, 0xc0, 0x4f, 0xd9, 0x29, 0xdb}};
  ASSERT_EQ(0u, store.Open());
  StringList names;
  ASSERT_EQ(0u, store.EnumItems(form, form, names));
  EXPECT_EQ((StringList{u"q:StringData", u"q:StringIndex"}), names);
  Bytes data;
  ASSERT_EQ(0u, store.ReadItem(form, form, u"q:StringData", data));
  EXPECT_EQ((Bytes{1, 2, 3}), data);  // as stored, still encrypted
  EXPECT_EQ(uint32_t{ERROR_FILE_NOT_FOUND}, store.EnumItems(form, Guid{}, names));
  EXPECT_EQ(0u, store.DeleteItem(form, form, u"q:StringData"));
  EXPECT_EQ(uint32_t{ERROR_FILE_NOT_FOUND}, store.DeleteItem(form, form, u"..\\q:StringIndex"));
  ASSERT_EQ(0u, store.EnumItems(form, form, names));
  EXPECT_EQ(StringList{u"q:StringIndex"}, names);
}

}  // namespace
}  // namespace tc
