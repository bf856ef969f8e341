#include "platform/helpers/Orviregistry.h"

#include <algorithm>

#include "platform/Platform.h"
#include "platform/helpers/LastError.h"
#include "platform/helpers/RegData.h"
#include "platform/Shell.h"
#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/TextCodec.h"
#include "platform/helpers/WildcardMatcher.h"

namespace tc {

namespace {

RegView ViewOf(TRegOptions options) {
  if (options & RO_Key64) return RegView::Key64;
  if (options & RO_Native) return RegView::Native;
  return RegView::Default;
}

IRegistry& Reg() { return *Services().Registry; }
IFileSystem& Fs() { return *Services().Files; }

String Hex(const Bytes& data) {
  static const char16_t* digits = u"0123456789ABCDEF";
  String out;
  for (size_t i = 0; i < data.size(); ++i) {
    if (i) out += u' ';
    out += digits[data[i] >> 4];
    out += digits[data[i] & 15];
  }
  return out;
}

bool LooksLikeUtf16Text(const Bytes& d) {
  return d.size() >= 2 && d[1] == 0 && d[0] >= 0x20;
}

// Leaves the code as the last error, as the Windows registry functions do.
bool Done(uint32_t rc) {
  SetLastOSError(rc);
  return rc == ERROR_SUCCESS;
}

bool Set(HKEY root, const String& key, const String& name, const RegValue& v,
         TRegOptions options) {
  RegView view = ViewOf(options);
  if (Reg().KeyExists(root, key, view) != ERROR_SUCCESS) {
    if (!Done(Reg().CreateKey(root, key, view))) return false;
  }
  return Done(Reg().SetValue(root, key, name, v, view));
}

}  // namespace

String RegValueToText(const RegValue& v) {
  switch (v.Type) {
    case REG_SZ:
    case REG_EXPAND_SZ:
    case REG_LINK:
      return RegData::Text(v);
    case REG_MULTI_SZ: {
      String out;
      for (const auto& line : RegData::Lines(v)) {
        if (!out.empty()) out += u"; ";
        out += line;
      }
      return out;
    }
    case REG_DWORD: {
      uint32_t n;
      return RegData::Number(v, n) ? IntToStr(n) : Hex(v.Data);
    }
    case REG_QWORD:
      if (v.Data.size() >= 8) {
        uint64_t q = 0;
        for (int i = 7; i >= 0; --i) q = q << 8 | v.Data[i];
        return FromUtf8(std::to_string(q));
      }
      return Hex(v.Data);
    default:
      if (LooksLikeUtf16Text(v.Data)) return RegData::Text(v);
      return Hex(v.Data);
  }
}

bool EnumRegValuesEx(HKEY root, const String& key, StringList& names, StringList& datas,
                     TRegOptions options) {
  names.clear();
  datas.clear();
  std::vector<RegNamedValue> values;
  if (Reg().EnumValues(root, key, values, ViewOf(options)) != ERROR_SUCCESS) return false;
  names.reserve(values.size());
  datas.reserve(values.size());
  for (const auto& v : values) {
    names.push_back(v.Name);
    datas.push_back(RegValueToText(v.Value));
  }
  return true;
}

bool EnumRegValueNames(HKEY root, const String& key, StringList& names, TRegOptions options) {
  StringList datas;
  return EnumRegValuesEx(root, key, names, datas, options);
}

bool EnumRegKeysEx(HKEY root, const String& key, StringList& names, TRegOptions options) {
  names.clear();
  return Reg().EnumKeys(root, key, names, ViewOf(options)) == ERROR_SUCCESS;
}

bool KeyExist(HKEY root, const String& key, TRegOptions options) {
  return Reg().KeyExists(root, key, ViewOf(options)) == ERROR_SUCCESS;
}

bool ValueExists(HKEY root, const String& key, const String& valueName, TRegOptions options) {
  RegValue v;
  return Reg().QueryValue(root, key, valueName, v, ViewOf(options)) == ERROR_SUCCESS;
}

String GetRegStringValueDef(HKEY root, const String& key, const String& valueName,
                            const String& def, TRegOptions options) {
  RegValue v;
  if (Reg().QueryValue(root, key, valueName, v, ViewOf(options)) != ERROR_SUCCESS) return def;
  return RegValueToText(v);
}

uint32_t GetRegMultiStringValue(HKEY root, const String& key, const String& valueName,
                                StringList& lines, TRegOptions options) {
  lines.clear();
  RegValue v;
  uint32_t rc = Reg().QueryValue(root, key, valueName, v, ViewOf(options));
  if (rc != ERROR_SUCCESS) return rc;
  if (v.Type == REG_MULTI_SZ) {
    lines = RegData::Lines(v);
    return ERROR_SUCCESS;
  }
  if (v.Type == REG_SZ || v.Type == REG_EXPAND_SZ) {
    String s = RegData::Text(v);
    if (!s.empty()) lines.push_back(s);
    return ERROR_SUCCESS;
  }
  return ERROR_DATATYPE_MISMATCH;
}

bool GetRegValue(HKEY root, const String& key, const String& valueName, Bytes& bytes,
                 uint32_t& size, uint32_t& type, TRegOptions options) {
  RegValue v;
  if (Reg().QueryValue(root, key, valueName, v, ViewOf(options)) != ERROR_SUCCESS) {
    bytes.clear();
    size = 0;
    return false;
  }
  bytes = std::move(v.Data);
  size = static_cast<uint32_t>(bytes.size());
  type = v.Type;
  return true;
}

bool GetRegValue(HKEY root, const String& key, const String& valueName, Bytes& bytes,
                 uint32_t& size, TRegOptions options) {
  uint32_t type;
  return GetRegValue(root, key, valueName, bytes, size, type, options);
}

bool GetRegDWordValue(HKEY root, const String& key, const String& valueName, uint32_t& value,
                      TRegOptions options) {
  RegValue v;
  return Reg().QueryValue(root, key, valueName, v, ViewOf(options)) == ERROR_SUCCESS &&
         v.Type == REG_DWORD && RegData::Number(v, value);
}

bool SetRegStringValue(HKEY root, const String& key, const String& valueName,
                       const String& value, TRegOptions options) {
  return Set(root, key, valueName, RegData::Sz(value), options);
}

bool SetRegMultiStringValue(HKEY root, const String& key, const String& valueName,
                            const StringList& lines, TRegOptions options) {
  return Set(root, key, valueName, RegData::MultiSz(lines), options);
}

bool SetRegBinaryValue(HKEY root, const String& key, const String& valueName, const Bytes& data,
                       TRegOptions options) {
  return Set(root, key, valueName, RegData::Binary(data), options);
}

bool SetRegDWordValue(HKEY root, const String& key, const String& valueName, uint32_t value,
                      TRegOptions options) {
  return Set(root, key, valueName, RegData::Dword(value), options);
}

bool DeleteRegValue(HKEY root, const String& key, const String& valueName, TRegOptions options) {
  return Done(Reg().DeleteValue(root, key, valueName, ViewOf(options)));
}

bool DeleteRegKey(HKEY root, const String& keyPath, TRegOptions options) {
  if (keyPath.empty()) return false;  // never the whole root
  return Done(Reg().DeleteKeyTree(root, keyPath, ViewOf(options)));
}

bool RenameRegValue(HKEY root, const String& key, const String& oldName, const String& newName,
                    TRegOptions options) {
  RegView view = ViewOf(options);
  RegValue v;
  if (!Done(Reg().QueryValue(root, key, oldName, v, view))) return false;
  if (!SameText(oldName, newName)) {
    RegValue existing;
    if (Reg().QueryValue(root, key, newName, existing, view) == ERROR_SUCCESS)
      return Done(ERROR_ALREADY_EXISTS);
  }
  if (!Done(Reg().DeleteValue(root, key, oldName, view))) return false;
  if (uint32_t rc = Reg().SetValue(root, key, newName, v, view); rc != ERROR_SUCCESS) {
    Reg().SetValue(root, key, oldName, v, view);  // put the data back under its old name
    return Done(rc);
  }
  return true;
}

String GetFolderLocStr(int csidl) {
  String path;
  if (Services().Shell->GetSpecialFolder(csidl, path) != ERROR_SUCCESS) return {};
  return ExcludeTrailingPathDelimiter(path);
}

String GetAppDataDir() {
  String p = GetFolderLocStr(kCSIDL_APPDATA);
  return p.empty() ? p : IncludeTrailingPathDelimiter(p);
}

String GetLocalAppDataDir() {
  String p = GetFolderLocStr(kCSIDL_LOCAL_APPDATA);
  return p.empty() ? p : IncludeTrailingPathDelimiter(p);
}

String GetWinDir() {
  String p = GetFolderLocStr(kCSIDL_WINDOWS);
  return p.empty() ? p : IncludeTrailingPathDelimiter(p);
}

bool OrviFileExists(const String& path) {
  FileInfo info;
  return Fs().GetInfo(ExcludeTrailingPathDelimiter(path), info) == ERROR_SUCCESS &&
         !info.IsDirectory();
}

bool DirExists(const String& path) {
  FileInfo info;
  String p = ExcludeTrailingPathDelimiter(path);
  if (p.size() == 2 && p[1] == u':') p += kPathDelim;  // a drive root
  return Fs().GetInfo(p, info) == ERROR_SUCCESS && info.IsDirectory();
}

bool FileOrDirExists(const String& path) {
  FileInfo info;
  return Fs().GetInfo(ExcludeTrailingPathDelimiter(path), info) == ERROR_SUCCESS;
}

bool IsDirectory(const String& path) { return DirExists(path); }

bool FileIsOnFixedDrive(const String& path, bool acceptUnc) {
  if (path.size() >= 2 && path[0] == u'\\' && path[1] == u'\\') return acceptUnc;
  if (path.size() < 2 || path[1] != u':') return false;
  return Fs().DriveType(path.substr(0, 2) + u"\\") == kDriveFixed;
}

int64_t GetFileSize64(const String& path) {
  FileInfo info;
  if (Fs().GetInfo(path, info) != ERROR_SUCCESS || info.IsDirectory()) return -1;
  return static_cast<int64_t>(info.Size);
}

void SortByUpperCasedName(std::vector<FileInfo>& entries) {
  std::vector<std::pair<String, size_t>> keys;
  keys.reserve(entries.size());
  for (size_t i = 0; i < entries.size(); ++i) keys.emplace_back(UpperCase(entries[i].Name), i);
  std::sort(keys.begin(), keys.end());
  std::vector<FileInfo> sorted;
  sorted.reserve(entries.size());
  for (auto& k : keys) sorted.push_back(std::move(entries[k.second]));
  entries = std::move(sorted);
}


namespace {
// The folder as the backend lists it: "C:" means the drive's root; empty when there is none.
String ListableFolder(const String& folder) {
  String f = ExcludeTrailingPathDelimiter(folder);
  if (f.size() == 2 && f[1] == u':') f += kPathDelim;
  return f;
}
bool IsWalkedFolder(const FileInfo& e) { return e.IsDirectory() && !e.IsReparsePoint(); }
}  // namespace

bool ListFolderEntries(const String& folder, std::vector<FileInfo>& dirs,
                       std::vector<FileInfo>& files, WalkNeeds needs) {
  dirs.clear();
  files.clear();
  std::vector<FileInfo> entries;
  String f = ListableFolder(folder);
  if (f.empty()) return false;
  uint32_t rc = needs == WalkNeeds::Everything
                    ? Fs().ListFolder(f, entries)
                    : Fs().ListFolderNames(
                          f, entries, needs == WalkNeeds::Sizes ? ListDetail::Sizes : ListDetail::Kinds);
  if (rc != ERROR_SUCCESS) return false;
  if (needs == WalkNeeds::Kinds || needs == WalkNeeds::Sizes) SortByUpperCasedName(entries);
  // Split in place: a folder of 100,000 files is not held twice.
  for (auto& e : entries)
    if (IsWalkedFolder(e)) dirs.push_back(std::move(e));
  // A link is a name in this folder, never a way into another; a device is no file: opening a
  // pipe could wait forever.
  entries.erase(std::remove_if(entries.begin(), entries.end(),
                               [&](const FileInfo& e) { return e.IsDevice() || IsWalkedFolder(e); }),
                entries.end());
  files = std::move(entries);
  return true;
}

bool VisitFolderFiles(const String& folder, std::vector<FileInfo>& dirs, ListDetail detail,
                      const std::function<bool(FileInfo&)>& file) {
  dirs.clear();
  String f = ListableFolder(folder);
  if (f.empty()) return false;
  return Fs().VisitFolderNames(f, detail, [&](FileInfo& e) {
    if (IsWalkedFolder(e)) dirs.push_back(std::move(e));
    else if (!e.IsDevice()) return file(e);
    return true;
  }) == ERROR_SUCCESS;
}

bool EnumFiles(const String& folder, StringList& names, const String& mask) {
  names.clear();
  std::vector<FileInfo> dirs, files;
  if (!ListFolderEntries(folder, dirs, files)) return false;
  String m = UpperCase(mask);
  for (auto& f : files) {
    if (!f.IsReparsePoint() && TWildcardMatcher::MatchMask(f.Name, m))
      names.push_back(std::move(f.Name));
  }
  return true;
}

bool EnumDirectories(const String& folder, StringList& names) {
  names.clear();
  std::vector<FileInfo> dirs, files;
  if (!ListFolderEntries(folder, dirs, files)) return false;
  for (auto& d : dirs) names.push_back(std::move(d.Name));
  return true;
}

String GetPPString(const String& section, const String& key, const String& def,
                   const String& fileName) {
  return Services().IniFiles->ReadString(fileName, section, key, def);
}

bool WritePPString(const String& section, const String& key, const String& value,
                   const String& fileName) {
  return Services().IniFiles->WriteString(fileName, section, key, value) == ERROR_SUCCESS;
}

bool GetProductRegSetting(const String& section, const String& name, bool def, int /*flags*/) {
  return Services().ProductSettings->ReadBool(section, name, def);
}

}  // namespace tc
