// The profile's disk cache: one flat folder of cache files, measured and emptied.
#include "browsers/MozillaText.h"
#include "browsers/TC_MozillaBrowser.h"
#include "platform/Platform.h"
#include "platform/helpers/LastError.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/Stringhelper.h"

namespace tc {

namespace {
// Every entry of the folder, sub-folders and links included, without "." and "..".
std::vector<FileInfo> CacheEntries(const String& folder) {
  std::vector<FileInfo> entries;
  if (folder.empty() ||
      Services().Files->ListFolder(ExcludeTrailingPathDelimiter(folder), entries) != ERROR_SUCCESS)
    entries.clear();
  return entries;
}
}  // namespace

String TMozillaBrowser::GetCachefileDirectory() {
  if (DirExists(Folder_ + u"Cache\\")) return Folder_ + u"Cache\\";
  const String local = GetLocalAppDataDir();
  const String firefox = local + u"Mozilla\\Firefox\\Profiles\\" + Name_ + u"\\Cache\\";
  if (!local.empty() && DirExists(firefox)) return firefox;
  return {};
}

int64_t TMozillaBrowser::GetCacheSize() {
  int64_t size = 0;
  for (const auto& e : CacheEntries(GetCachefileDirectory()))
    if (!e.IsDirectory()) size += static_cast<int64_t>(e.Size);
  return size;
}

int TMozillaBrowser::GetCacheFileCount() { return static_cast<int>(GetCacheEntries().size()); }

std::vector<FileInfo> TMozillaBrowser::GetCacheEntries() {
  return CacheEntries(GetCachefileDirectory());
}

bool TMozillaBrowser::DeleteCache(StringList& Failed) {
  Failed.clear();
  const String folder = GetCachefileDirectory();
  if (folder.empty()) return false;
  uint32_t lastError = ERROR_SUCCESS;
  for (const auto& e : CacheEntries(folder)) {
    if (ShredFile(folder + e.Name)) continue;
    lastError = GetLastOSError();
    Failed.push_back(folder + e.Name);  // sub-folders always land here: they stay
  }
  SetLastOSError(lastError);
  return Failed.empty();
}

}  // namespace tc
