// The URL cache contract on an offline image: index.dat files built into a fresh profile.
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <list>

#include "OfflineTestSupport.h"
#include "UrlCacheContract.h"
#include "platform/helpers/FileContents.h"
#include "platform/helpers/WinPath.h"
#include "platform/offline/IndexDat.h"
#include "platform/offline/OfflineImage.h"

namespace tc::contract {
namespace {

std::list<test::TempDir>& Images() {
  static std::list<test::TempDir> images;
  return images;
}
std::vector<int>& Held() {
  static std::vector<int> held;
  return held;
}

void WriteFile(IFileSystem& files, const String& path, const Bytes& data) {
  ASSERT_EQ(0u, files.MakeFolder(WinPath::Parent(path)));
  ASSERT_EQ(0u, FileContents::Replace(files, path, data));
}

struct OfflineUrlCacheTraits {
  static std::shared_ptr<Platform> Make() {
    const test::TempDir& dir = Images().emplace_back();
    test::MakeImage(dir.Path(), "Anna", "Windows Registry Editor Version 5.00\n");
    std::string error;
    std::shared_ptr<OfflineImage> image = OfflineImage::Open({dir.Str(), {}, ""}, error);
    return image ? image->MakePlatform() : nullptr;
  }
  static void Seed(const std::shared_ptr<Platform>& p, const StringList& urls) {
    String cache, cookies;
    p->Shell->GetSpecialFolder(kCSIDL_INTERNET_CACHE, cache);
    p->Shell->GetSpecialFolder(kCSIDL_COOKIES, cookies);
    cache = WinPath::Join(cache, u"Content.IE5");
    std::vector<IndexDatEntry> pages, jar;
    int n = 0;
    for (const String& url : urls) {
      const String name = FromUtf8(std::to_string(++n));
      if (url.rfind(u"Cookie:", 0) == 0) {
        jar.push_back({url, u"", u"anna@" + name + u"[1].txt", 0x00100001, 4});
        WriteFile(*p->Files, WinPath::Join(cookies, jar.back().FileName), {'d', 'a', 't', 'a'});
      } else {
        pages.push_back({url, u"AB12CD34", name + u"[1].htm", 1, 4});
        WriteFile(*p->Files, WinPath::Join(cache, u"AB12CD34\\" + pages.back().FileName),
                  {'d', 'a', 't', 'a'});
      }
    }
    for (const auto& [folder, entries] : {std::pair{cache, pages}, std::pair{cookies, jar}}) {
      Bytes index;
      std::string error;
      ASSERT_TRUE(BuildIndexDat(entries, index, error)) << error;
      WriteFile(*p->Files, WinPath::Join(folder, u"index.dat"), index);
    }
  }
  // Holds the entry's local file open with the advisory lock the volume honours.
  static bool Lock(const std::shared_ptr<Platform>& p, const String& url) {
    std::unique_ptr<IUrlCacheFind> find;
    UrlCacheEntry e;
    uint32_t size = 1 << 16;
    for (uint32_t rc = p->UrlCache->FindFirst(find, e, size); rc == 0;
         size = 1 << 16, rc = find->Next(e, size)) {
      if (e.SourceUrlName != url) continue;
      std::string host;
      auto volume = std::dynamic_pointer_cast<OfflineVolume>(p->Files);
      if (volume->Drives().Resolve(e.LocalFileName, LastLink::NoFollow, false, host) != 0) break;
      int fd = open(host.c_str(), O_RDONLY | O_CLOEXEC);
      if (fd < 0 || flock(fd, LOCK_EX | LOCK_NB) != 0) break;
      Held().push_back(fd);
      return true;
    }
    return false;
  }
  static void UnlockAll() {
    for (int fd : Held()) close(fd);
    Held().clear();
  }
  static bool StartsEmpty() { return true; }
};

}  // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Offline, UrlCacheContractTest, OfflineUrlCacheTraits);

}  // namespace tc::contract
