#include "platform/win32/Win32ShellItems.h"

#include "platform/helpers/ShellItemList.h"
#include "platform/win32/ComApartment.h"
#include "platform/win32/Win32Text.h"

#include <windows.h>
#include <shlobj.h>
#include <shobjidl.h>

namespace tc {

namespace {

String ShellName(PCIDLIST_ABSOLUTE pidl, SIGDN kind) {
  PWSTR text = nullptr;
  String name;
  if (SUCCEEDED(SHGetNameFromIDList(pidl, kind, &text)) && text) name = FromWide(text);
  CoTaskMemFree(text);
  return name;
}

unsigned U16(const Bytes& b, size_t at) { return b[at] | (b[at + 1] << 8); }

String Utf16At(const Bytes& b, size_t at) {
  String s;
  for (; at + 1 < b.size() && U16(b, at) != 0; at += 2) s.push_back(char16_t(U16(b, at)));
  return s;
}

// The name a file entry item holds itself: the long name of its 0xbeef0004 extension, else
// its primary name. Shells that do not read these items (Wine) stop at the parent's path.
String FileEntryName(const Bytes& item) {
  if (item.size() < 16 || (item[2] & 0x70) != 0x30) return String();
  const size_t ext = U16(item, item.size() - 2);
  if (ext >= 14 && ext + 20 <= item.size() && item[ext + 4] == 0x04 && item[ext + 5] == 0x00 &&
      item[ext + 6] == 0xef && item[ext + 7] == 0xbe) {
    const unsigned version = U16(item, ext + 2);
    size_t at = ext + 18 + (version >= 7 ? 18 : 0) + 2 + (version >= 9 ? 4 : 0) + (version >= 8 ? 4 : 0);
    if (version >= 3 && at < item.size()) {
      String name = Utf16At(item, at);
      if (!name.empty()) return name;
    }
  }
  if (item[2] & 0x04) return Utf16At(item, 14);
  String name;
  for (size_t at = 14; at < item.size() && item[at] != 0; ++at) name.push_back(char16_t(item[at]));
  return name;
}

// A file-system item by the last part of its path (a drive by its root), others as shown.
String LastItemName(PCIDLIST_ABSOLUTE pidl, const Bytes& item, String& parentPath) {
  String path = ShellName(pidl, SIGDN_FILESYSPATH);
  const bool grew = !path.empty() && path != parentPath;
  parentPath = path;
  if (grew) {
    if (path.size() <= 3) return path;
    while (path.size() > 3 && path.back() == u'\\') path.pop_back();
    return path.substr(path.rfind(u'\\') + 1);
  }
  String own = FileEntryName(item);
  if (!own.empty()) return own;
  String shown = ShellName(pidl, SIGDN_NORMALDISPLAY);
  return shown.empty() ? String(u"?") : shown;
}

}  // namespace

uint32_t Win32ShellItems::ItemNames(const Bytes& itemList, StringList& names) {
  names.clear();
  std::vector<Bytes> items;
  if (!SplitItemList(itemList, 0, items)) return ERROR_INVALID_DATA;
  ComApartment com;
  Bytes prefix;
  String parentPath;
  for (const Bytes& item : items) {
    prefix.insert(prefix.end(), item.begin(), item.end());
    Bytes absolute = prefix;
    absolute.insert(absolute.end(), {0, 0});
    names.push_back(LastItemName(reinterpret_cast<PCIDLIST_ABSOLUTE>(absolute.data()), item, parentPath));
  }
  return ERROR_SUCCESS;
}

}  // namespace tc
