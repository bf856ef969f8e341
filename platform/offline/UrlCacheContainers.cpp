#include "platform/offline/UrlCacheContainers.h"

#include <algorithm>

#include "platform/helpers/FileContents.h"
#include "platform/helpers/TextCodec.h"
#include "platform/helpers/WinPath.h"

namespace tc {

namespace {

// A plain name of one component: an index never sends a deletion elsewhere.
bool PlainName(const String& name) {
  if (name.empty() || name == u"." || name == u"..") return false;
  return name.find_first_of(u"\\/:*?\"<>|") == String::npos &&
         std::none_of(name.begin(), name.end(), [](char16_t c) { return c < 32; });
}

bool IsRealFile(IFileSystem& files, const String& path, FileInfo& info) {
  return files.GetInfo(path, info) == ERROR_SUCCESS && !info.IsDirectory() &&
         !info.IsReparsePoint();
}

}  // namespace

UrlCacheContainers::~UrlCacheContainers() { Flush(); }

void UrlCacheContainers::Read(ContainerKind kind, const String& indexPath) {
  FileInfo info;
  if (!IsRealFile(*files_, indexPath, info)) return;
  Container c;
  c.Kind = kind;
  c.IndexPath = indexPath;
  if (uint32_t rc = FileContents::Read(*files_, indexPath, c.Data)) {
    c.Readable = false;
    c.Error = "cannot be read (error " + std::to_string(rc) + ")";
  } else {
    IndexDat index;
    c.Readable = ReadIndexDat(c.Data, index, c.Error);
    const String folder = WinPath::Parent(indexPath);
    for (auto& r : index.Records) {
      Entry e;
      e.Record = std::move(r);
      const String dir = e.Record.Directory >= 0 ? index.Directories[e.Record.Directory] : u"";
      if (PlainName(e.Record.FileName) && (dir.empty() || PlainName(dir)))
        e.LocalFile = WinPath::Join(dir.empty() ? folder : WinPath::Join(folder, dir),
                                    e.Record.FileName);
      c.Entries.push_back(std::move(e));
    }
  }
  if (!c.Readable) c.Entries.clear();
  containers_.push_back(std::move(c));
}

std::vector<UrlCacheContainers::Container>& UrlCacheContainers::Load() {
  if (std::any_of(containers_.begin(), containers_.end(), [](const Container& c) { return c.Dirty; }))
    return containers_;
  containers_.clear();
  byUrl_.clear();
  ++generation_;
  String cache, cookies, history;
  if (shell_->GetSpecialFolder(kCSIDL_INTERNET_CACHE, cache) == ERROR_SUCCESS)
    for (const char16_t* sub : {u"Content.IE5\\index.dat", u"Low\\Content.IE5\\index.dat"})
      Read(ContainerKind::Content, WinPath::Join(cache, sub));
  if (shell_->GetSpecialFolder(kCSIDL_COOKIES, cookies) == ERROR_SUCCESS)
    for (const char16_t* sub : {u"index.dat", u"Low\\index.dat"})
      Read(ContainerKind::Cookies, WinPath::Join(cookies, sub));
  StringList historyFolders;
  if (shell_->GetSpecialFolder(kCSIDL_HISTORY, history) == ERROR_SUCCESS) {
    for (const char16_t* sub : {u"History.IE5", u"Low\\History.IE5"}) {
      historyFolders.push_back(WinPath::Join(history, sub));
      Read(ContainerKind::History, WinPath::Join(historyFolders.back(), u"index.dat"));
    }
  }
  // The daily and weekly containers: "MSHist01" followed by the dates they span.
  for (const String& folder : historyFolders) {
    std::vector<FileInfo> subs;
    if (files_->ListFolder(folder, subs) != ERROR_SUCCESS) continue;
    for (const auto& s : subs)
      if (s.IsDirectory() && !s.IsReparsePoint() && SameText(s.Name.substr(0, 6), u"MSHist"))
        Read(ContainerKind::DailyHistory, WinPath::Join(WinPath::Join(folder, s.Name), u"index.dat"));
  }
  for (size_t c = 0; c < containers_.size(); ++c)
    for (size_t e = 0; e < containers_[c].Entries.size(); ++e)
      byUrl_[containers_[c].Entries[e].Record.Url].emplace_back(c, e);
  return containers_;
}

std::vector<std::string> UrlCacheContainers::Damaged() {
  std::vector<std::string> out;
  for (const auto& c : Load())
    if (!c.Readable) out.push_back(ToUtf8(c.IndexPath) + ": " + c.Error);
  return out;
}

std::vector<std::pair<size_t, size_t>> UrlCacheContainers::Find(const String& url) {
  std::vector<std::pair<size_t, size_t>> live;
  auto it = byUrl_.find(url);
  if (it == byUrl_.end()) return live;
  for (auto [c, e] : it->second)
    if (!containers_[c].Entries[e].Freed) live.emplace_back(c, e);
  return live;
}

uint32_t UrlCacheContainers::Shred(const String& path) {
  FileInfo info;
  if (files_->GetInfo(path, info) != ERROR_SUCCESS || info.IsDirectory()) return ERROR_SUCCESS;
  if (!info.IsReparsePoint()) {
    std::unique_ptr<IFileHandle> file;
    uint32_t rc = files_->Open(path, OpenMode::ReadWrite, file);
    if (rc == ERROR_SHARING_VIOLATION || rc == ERROR_LOCK_VIOLATION) return rc;
    if (rc == ERROR_SUCCESS) {
      const Bytes zeros(64 * 1024, 0);
      for (uint64_t at = 0; at < info.Size && rc == ERROR_SUCCESS; at += zeros.size())
        rc = file->Write(at, zeros.data(), std::min<uint64_t>(zeros.size(), info.Size - at));
      if (rc == ERROR_SUCCESS) file->Flush();
      file->SetSize(0);
    }
  }
  uint32_t rc = files_->RemoveFile(path);
  return rc == ERROR_SHARING_VIOLATION || rc == ERROR_LOCK_VIOLATION ? rc : ERROR_SUCCESS;
}

uint32_t UrlCacheContainers::Free(size_t container, size_t entry) {
  Entry& e = containers_[container].Entries[entry];
  if (!e.LocalFile.empty())
    if (uint32_t rc = Shred(e.LocalFile)) return rc;
  e.Freed = true;
  containers_[container].Dirty = true;
  return ERROR_SUCCESS;
}

uint32_t UrlCacheContainers::Flush() {
  uint32_t result = ERROR_SUCCESS;
  for (auto& c : containers_) {
    if (!c.Dirty) continue;
    c.Dirty = false;
    std::vector<uint32_t> offsets;
    for (const auto& e : c.Entries)
      if (e.Freed) offsets.push_back(e.Record.Offset);
    Bytes data = c.Data;
    std::string error;
    uint32_t rc = FreeIndexDatRecords(data, offsets, error)
                      ? FileContents::Replace(*files_, c.IndexPath, data)
                      : ERROR_FILE_CORRUPT;
    if (rc == ERROR_SUCCESS) c.Data.swap(data);
    if (result == ERROR_SUCCESS) result = rc;
  }
  return result;
}

}  // namespace tc
