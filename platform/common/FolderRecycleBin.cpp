#include "platform/common/FolderRecycleBin.h"

#include <algorithm>

#include "platform/helpers/TextCodec.h"
#include "platform/helpers/WinPath.h"

namespace tc {

namespace {

bool StartsWithNoCase(const String& s, std::u16string_view prefix) {
  return s.size() >= prefix.size() && SameText(std::u16string_view(s).substr(0, prefix.size()), prefix);
}

}  // namespace

FolderRecycleBin::FolderRecycleBin(std::shared_ptr<IFileSystem> files, StringList driveRoots)
    : files_(std::move(files)), roots_(std::move(driveRoots)) {}

StringList FolderRecycleBin::Roots() {
  if (!roots_.empty()) return roots_;
  StringList roots;
  for (char16_t letter = u'A'; letter <= u'Z'; ++letter) {
    String root = String(1, letter) + u":\\";
    if (files_->DriveType(root) == kDriveFixed) roots.push_back(root);
  }
  return roots;
}

std::vector<FolderRecycleBin::Bin> FolderRecycleBin::Bins() {
  std::vector<Bin> bins;
  for (const String& root : Roots()) {
    std::vector<FileInfo> sids;
    Style kind = Style::Vista;
    String base = WinPath::Join(root, u"$Recycle.Bin");
    if (files_->ListFolder(base, sids) != ERROR_SUCCESS) {
      kind = Style::Xp;
      base = WinPath::Join(root, u"RECYCLER");
      if (files_->ListFolder(base, sids) != ERROR_SUCCESS) continue;
    }
    for (const FileInfo& sid : sids) {
      if (sid.IsDirectory() && !sid.IsReparsePoint()) {
        bins.push_back({WinPath::Join(base, sid.Name), kind});
      }
    }
  }
  return bins;
}

bool FolderRecycleBin::IsItem(const FileInfo& entry, Style kind) {
  if (entry.IsDevice()) return false;  // a pipe was never deleted into the bin
  if (kind == Style::Vista) return StartsWithNoCase(entry.Name, u"$R");
  return !SameText(entry.Name, u"INFO2") && !SameText(entry.Name, u"desktop.ini");
}

uint64_t FolderRecycleBin::TreeSize(const String& folder) {
  std::vector<FileInfo> entries;
  if (files_->ListFolder(folder, entries) != ERROR_SUCCESS) return 0;
  uint64_t total = 0;
  for (const FileInfo& e : entries) {
    if (e.IsReparsePoint()) continue;
    total += e.IsDirectory() ? TreeSize(WinPath::Join(folder, e.Name)) : e.Size;
  }
  return total;
}

uint32_t FolderRecycleBin::Query(uint64_t& items, uint64_t& bytes) {
  items = 0;
  bytes = 0;
  for (const Bin& bin : Bins()) {
    std::vector<FileInfo> entries;
    if (files_->ListFolder(bin.Folder, entries) != ERROR_SUCCESS) continue;
    for (const FileInfo& e : entries) {
      if (!IsItem(e, bin.Kind)) continue;
      ++items;
      if (e.IsReparsePoint()) continue;
      bytes += e.IsDirectory() ? TreeSize(WinPath::Join(bin.Folder, e.Name)) : e.Size;
    }
  }
  return ERROR_SUCCESS;
}

uint32_t FolderRecycleBin::RemoveTree(const String& path, const FileInfo& info) {
  uint32_t first = ERROR_SUCCESS;
  auto keep = [&first](uint32_t rc) {
    if (rc != ERROR_SUCCESS && first == ERROR_SUCCESS) first = rc;
  };
  if (info.Attributes & FILE_ATTRIBUTE_READONLY) {
    files_->SetAttributes(path, info.Attributes & ~FILE_ATTRIBUTE_READONLY);
  }
  if (info.IsReparsePoint()) {
    // The link goes, never what it points at.
    uint32_t rc = files_->RemoveFile(path);
    if (rc != ERROR_SUCCESS && info.IsDirectory()) rc = files_->RemoveFolder(path);
    keep(rc);
  } else if (info.IsDirectory()) {
    std::vector<FileInfo> entries;
    keep(files_->ListFolder(path, entries));
    for (const FileInfo& e : entries) keep(RemoveTree(WinPath::Join(path, e.Name), e));
    keep(files_->RemoveFolder(path));
  } else {
    keep(files_->RemoveFile(path));
  }
  return first;
}

uint32_t FolderRecycleBin::Empty() {
  uint32_t first = ERROR_SUCCESS;
  auto keep = [&first](uint32_t rc) {
    if (rc != ERROR_SUCCESS && first == ERROR_SUCCESS) first = rc;
  };
  for (const Bin& bin : Bins()) {
    std::vector<FileInfo> entries;
    if (files_->ListFolder(bin.Folder, entries) != ERROR_SUCCESS) continue;
    if (bin.Kind == Style::Xp) {
      for (const FileInfo& e : entries) {
        if (!SameText(e.Name, u"desktop.ini") && !e.IsDevice()) keep(RemoveTree(WinPath::Join(bin.Folder, e.Name), e));
      }
      continue;
    }
    // "$R<id>" holds the item, "$I<id>" its original name: an index entry goes only with
    // its item, so a locked item stays listed in the bin.
    std::vector<String> kept;
    for (const FileInfo& e : entries) {
      if (!IsItem(e, bin.Kind)) continue;
      uint32_t rc = RemoveTree(WinPath::Join(bin.Folder, e.Name), e);
      keep(rc);
      if (rc != ERROR_SUCCESS) kept.push_back(UpperCase(e.Name.substr(2)));
    }
    for (const FileInfo& e : entries) {
      if (!StartsWithNoCase(e.Name, u"$I")) continue;
      const String id = UpperCase(e.Name.substr(2));
      if (std::find(kept.begin(), kept.end(), id) != kept.end()) continue;
      keep(RemoveTree(WinPath::Join(bin.Folder, e.Name), e));
    }
  }
  return first;
}

}  // namespace tc
