#include "browsers/ChromiumCache.h"

#include "browsers/ChromiumStores.h"
#include "platform/Platform.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

constexpr uint64_t kSimpleMagic = 0xfcfb6d1ba7725c30ull;
constexpr uint32_t kBlockfileMagic = 0xC103CAC3u;
constexpr size_t kSimpleHeader = 24;  // magic, version, key length, key hash, padding
const char16_t* const kCacheFolders[] = {u"Cache", u"Code Cache", u"GPUCache"};

uint64_t Le(std::string_view b, size_t at, size_t n) {
  uint64_t v = 0;
  for (size_t i = 0; i < n; ++i) v |= uint64_t(uint8_t(b[at + i])) << (8 * i);
  return v;
}

std::string ReadHead(const String& path, size_t size) {
  std::unique_ptr<IFileHandle> file;
  std::string head(size, '\0');
  size_t done = 0;
  if (Services().Files->Open(path, OpenMode::Read, file) != ERROR_SUCCESS ||
      file->Read(0, head.data(), head.size(), done) != ERROR_SUCCESS)
    done = 0;
  head.resize(done);
  return head;
}

// Every file below `folder`, links left alone.
void Walk(const String& folder, const std::function<void(const String&, const FileInfo&)>& visit) {
  std::vector<FileInfo> dirs, files;
  if (!ListFolderEntries(folder, dirs, files)) return;
  for (const auto& d : dirs) Walk(folder + d.Name + u"\\", visit);
  for (const auto& f : files) visit(folder + f.Name, f);
}

bool IsSimpleEntryName(const String& name) {
  return name.size() == 18 && name.compare(16, 2, u"_0") == 0;
}

}  // namespace

bool ParseSimpleCacheEntryUrl(std::string_view Head, String& Url) {
  if (Head.size() < kSimpleHeader || Le(Head, 0, 8) != kSimpleMagic) return false;
  const uint64_t length = Le(Head, 12, 4);
  std::string_view key = Head.substr(kSimpleHeader);
  if (length < key.size()) key = key.substr(0, size_t(length));
  // A partitioned key is "1/0/_dk_<site> <frame site> <url>": the address comes last.
  size_t space = key.rfind(' ');
  if (space != std::string_view::npos) key = key.substr(space + 1);
  Url = FromUtf8(key);
  return true;
}

int ParseBlockfileIndexCount(std::string_view Head) {
  if (Head.size() < 12 || Le(Head, 0, 4) != kBlockfileMagic) return -1;
  const int64_t count = int32_t(uint32_t(Le(Head, 8, 4)));
  return count < 0 ? -1 : int(count);
}

void ScanChromiumCache(const String& Profile, TChromiumTraces& Traces) {
  for (const char16_t* name : kCacheFolders) {
    Walk(Profile + name + u"\\", [&](const String& path, const FileInfo& info) {
      String url;
      if (IsSimpleEntryName(info.Name)) {
        ParseSimpleCacheEntryUrl(ReadHead(path, kSimpleHeader + 4096), url);
        Traces.push_back({JoinTraceText(url, SizeText(info.Size)), path, !url.empty()});
      } else if (SameText(info.Name, u"index")) {
        int count = ParseBlockfileIndexCount(ReadHead(path, 16));
        for (int i = 0; i < count; ++i) Traces.push_back({u"", path});
      }
    });
  }
}

StringList ChromiumCacheFiles(const String& Profile) {
  StringList files;
  for (const char16_t* name : kCacheFolders)
    Walk(Profile + name + u"\\", [&](const String& path, const FileInfo&) { files.push_back(path); });
  return files;
}

}  // namespace tc
