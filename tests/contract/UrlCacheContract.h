// What every backend's URL cache must do, and the keep-list rule over it. Each backend
// instantiates the suite with a Traits type:
//
//   struct MyUrlCacheTraits {
//     static std::shared_ptr<Platform> Make();  // a fresh platform for one test
//     // Puts entries into the cache as the browser does, each with a local file; a URL
//     // beginning "Cookie:" is a cookie.
//     static void Seed(const std::shared_ptr<Platform>&, const StringList& urls);
//     // Holds the entry in use; false when the backend cannot (the case is skipped).
//     static bool Lock(const std::shared_ptr<Platform>&, const String& url);
//     static void UnlockAll();
//     static bool StartsEmpty();  // false where other entries may be in the cache
//   };
//   INSTANTIATE_TYPED_TEST_SUITE_P(My, UrlCacheContractTest, MyUrlCacheTraits);
#pragma once
#include <gtest/gtest.h>

#include <map>
#include <memory>

#include "browsers/TC_InternetExplorer.h"
#include "platform/Platform.h"
#include "platform/helpers/TextCodec.h"

namespace tc::contract {

template <typename Traits>
class UrlCacheContractTest : public ::testing::Test {
 protected:
  void SetUp() override {
    platform_ = Traits::Make();
    ASSERT_TRUE(platform_);
    // Hosts of the test's own, so a cache shared with others still tells its entries apart.
    host_ = u"tc-" + LowerCase(FromUtf8(::testing::UnitTest::GetInstance()->current_test_info()->name())) +
            u".test";
  }
  void TearDown() override {
    Traits::UnlockAll();
    if (HasServices()) SetServices(nullptr);
  }

  IUrlCache& Cache() { return *platform_->UrlCache; }
  String Page(const String& path = u"") const { return u"http://" + host_ + u"/" + path; }
  String CookieUrl(const String& sub) const { return u"Cookie:anna@" + sub + host_ + u"/"; }

  // The test's own entries, in walk order, each walked with a buffer grown as asked.
  std::vector<UrlCacheEntry> Walk() {
    std::vector<UrlCacheEntry> out;
    std::unique_ptr<IUrlCacheFind> find;
    UrlCacheEntry e;
    uint32_t size = kUrlCacheRecordHead;
    uint32_t rc = Cache().FindFirst(find, e, size);
    if (rc == ERROR_INSUFFICIENT_BUFFER) rc = Cache().FindFirst(find, e, size);
    while (rc == ERROR_SUCCESS) {
      if (e.SourceUrlName.find(host_) != String::npos) out.push_back(e);
      rc = find->Next(e, size);
      if (rc == ERROR_INSUFFICIENT_BUFFER) rc = find->Next(e, size);
    }
    EXPECT_EQ(uint32_t{ERROR_NO_MORE_ITEMS}, rc);
    return out;
  }
  StringList Urls() {
    StringList urls;
    for (const auto& e : Walk()) urls.push_back(e.SourceUrlName);
    std::sort(urls.begin(), urls.end());
    return urls;
  }
  bool Exists(const String& path) {
    FileInfo info;
    return !path.empty() && platform_->Files->GetInfo(path, info) == ERROR_SUCCESS;
  }

  std::shared_ptr<Platform> platform_;
  String host_;
};

TYPED_TEST_SUITE_P(UrlCacheContractTest);

TYPED_TEST_P(UrlCacheContractTest, WalkGivesEveryEntryWithItsLocalFile) {
  const String longPage = this->Page(u"?" + String(6000, u'q'));
  TypeParam::Seed(this->platform_, {this->Page(), this->CookieUrl(u""), longPage});
  std::map<String, UrlCacheEntry> byUrl;
  for (const auto& e : this->Walk()) EXPECT_TRUE(byUrl.emplace(e.SourceUrlName, e).second);
  ASSERT_EQ(3u, byUrl.size());
  ASSERT_TRUE(byUrl.count(longPage));
  const auto& cookie = byUrl[this->CookieUrl(u"")];
  EXPECT_NE(String::npos, cookie.LocalFileName.find(u"Cookie"));
  EXPECT_EQ(String::npos, byUrl[this->Page()].LocalFileName.find(u"Cookie"));
  for (const auto& [url, e] : byUrl) EXPECT_TRUE(this->Exists(e.LocalFileName)) << ToUtf8(url);
}

TYPED_TEST_P(UrlCacheContractTest, TooSmallABufferAnswers122AndTheWalkStaysPut) {
  const StringList seeded = {this->Page(u"a"), this->Page(u"b"), this->Page(u"c")};
  TypeParam::Seed(this->platform_, seeded);
  std::unique_ptr<IUrlCacheFind> find;
  UrlCacheEntry e;
  uint32_t size = 40;
  ASSERT_EQ(uint32_t{ERROR_INSUFFICIENT_BUFFER}, this->Cache().FindFirst(find, e, size));
  EXPECT_FALSE(find);
  EXPECT_GT(size, 40u);
  ASSERT_EQ(0u, this->Cache().FindFirst(find, e, size));
  std::map<String, int> seen{{e.SourceUrlName, 1}};
  for (;;) {
    uint32_t small = 40;
    uint32_t rc = find->Next(e, small);
    if (rc == ERROR_NO_MORE_ITEMS) break;
    ASSERT_EQ(uint32_t{ERROR_INSUFFICIENT_BUFFER}, rc);
    ASSERT_GT(small, 40u);
    ASSERT_EQ(0u, find->Next(e, small));
    ++seen[e.SourceUrlName];
  }
  for (const auto& url : seeded) EXPECT_EQ(1, seen[url]) << ToUtf8(url);
}

TYPED_TEST_P(UrlCacheContractTest, EntriesDeletedDuringTheWalkAreGoneWithTheirFiles) {
  TypeParam::Seed(this->platform_, {this->CookieUrl(u""), this->Page(), this->CookieUrl(u"sub.")});
  std::vector<UrlCacheEntry> deleted;
  {
    std::unique_ptr<IUrlCacheFind> find;
    UrlCacheEntry e;
    uint32_t size = 1 << 16;
    uint32_t rc = this->Cache().FindFirst(find, e, size);
    while (rc == ERROR_SUCCESS) {
      if (e.SourceUrlName.rfind(u"Cookie:", 0) == 0 && e.SourceUrlName.find(this->host_) != String::npos) {
        EXPECT_EQ(0u, this->Cache().DeleteEntry(e.SourceUrlName));
        deleted.push_back(e);
      }
      size = 1 << 16;  // the last call left the size its entry needed
      rc = find->Next(e, size);
    }
  }
  ASSERT_EQ(2u, deleted.size());
  EXPECT_EQ(StringList{this->Page()}, this->Urls());
  for (const auto& e : deleted) {
    EXPECT_FALSE(this->Exists(e.LocalFileName)) << ToUtf8(e.LocalFileName);
    EXPECT_EQ(uint32_t{ERROR_FILE_NOT_FOUND}, this->Cache().DeleteEntry(e.SourceUrlName));
  }
  // Outside a walk a deletion holds at once.
  EXPECT_EQ(0u, this->Cache().DeleteEntry(this->Page()));
  EXPECT_TRUE(this->Urls().empty());
}

TYPED_TEST_P(UrlCacheContractTest, AnEntryInUseStays) {
  TypeParam::Seed(this->platform_, {this->CookieUrl(u"")});
  if (!TypeParam::Lock(this->platform_, this->CookieUrl(u"")))
    GTEST_SKIP() << "this backend cannot hold an entry in use";
  EXPECT_EQ(uint32_t{ERROR_SHARING_VIOLATION}, this->Cache().DeleteEntry(this->CookieUrl(u"")));
  EXPECT_EQ(StringList{this->CookieUrl(u"")}, this->Urls());
}

TYPED_TEST_P(UrlCacheContractTest, KeepListDecidesWhichCookiesTheCleanDeletes) {
  TypeParam::Seed(this->platform_, {this->CookieUrl(u"www.keep."), this->Page(),
                                    this->CookieUrl(u"gone."), this->CookieUrl(u"keep.")});
  SetServices(this->platform_);
  ASSERT_EQ(0u, this->platform_->ProductSettings->WriteBool(kIECookieSection, u"keep." + this->host_,
                                                            false));
  EXPECT_EQ(2, EnumIECacheFiles(true, true, true));
  EXPECT_EQ((StringList{this->CookieUrl(u"keep."), this->CookieUrl(u"www.keep."), this->Page()}),
            this->Urls());
  this->platform_->ProductSettings->WriteBool(kIECookieSection, u"keep." + this->host_, true);
}

TYPED_TEST_P(UrlCacheContractTest, AnEmptyCacheHasNoFirstEntry) {
  if (!TypeParam::StartsEmpty()) GTEST_SKIP() << "this cache holds entries of others";
  std::unique_ptr<IUrlCacheFind> find;
  UrlCacheEntry e;
  uint32_t size = kUrlCacheRecordHead;
  EXPECT_EQ(uint32_t{ERROR_NO_MORE_ITEMS}, this->Cache().FindFirst(find, e, size));
  EXPECT_EQ(uint32_t{ERROR_FILE_NOT_FOUND}, this->Cache().DeleteEntry(this->Page()));
}

REGISTER_TYPED_TEST_SUITE_P(UrlCacheContractTest, WalkGivesEveryEntryWithItsLocalFile,
                            TooSmallABufferAnswers122AndTheWalkStaysPut,
                            EntriesDeletedDuringTheWalkAreGoneWithTheirFiles, AnEntryInUseStays,
                            KeepListDecidesWhichCookiesTheCleanDeletes, AnEmptyCacheHasNoFirstEntry);

}  // namespace tc::contract
