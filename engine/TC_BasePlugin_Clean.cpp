// The generic cleaner and the fixer that repairs numbered lists and MRU order strings.
#include "engine/TC_BasePlugin.h"

#include <algorithm>

#include "engine/RegShredder.h"
#include "engine/TC_Common.h"
#include "platform/helpers/LastError.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/Shell.h"
#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

TMRUListPlace MRUListPlace(const TTraceLocation& Location) {
  if (Location.LocationType == TLT_Registry_MRUListEx) {
    const auto& d = Location.As<TLD_Registry_MRUListEx>();
    return {d.RootKey, d.Key, d.Options};
  }
  const auto& d = Location.As<TLD_Registry_MRUList>();
  return {d.RootKey, d.Key, d.Options};
}

TWildcardMatcher MakeMatcher(const TLD_FileSystem_Files& Files) {
  TWildcardMatcher m;
  m.AddSearchMask(Files.IncludeMasks, 0);
  m.AddSearchMask(Files.ExcludeMasks, 1);
  m.AddSearchMask(u"desktop.ini", 1);
  return m;
}

void TTCPlugin::Clean() {
  TraceCount = 0;
  for (const auto& loc : TraceLocations) {
    if (StopWorking) break;
    CleanLocation(*loc);
  }
}

void TTCPlugin::CheckRegistryStep(bool ok, const TTraceSourceData& Source,
                                  const String& Operation, bool isKey) {
  if (ok) return;
  uint32_t error = GetLastOSError();
  // Gone already is what the clean wanted.
  if (error == ERROR_SUCCESS || error == ERROR_FILE_NOT_FOUND ||
      error == ERROR_PATH_NOT_FOUND || error == ERROR_KEY_DELETED)
    return;
  AddCleanFailure(isKey ? TST_Registry_Key : TST_Registry_Value, Source, Operation, error);
}

void TTCPlugin::CleanLocation(const TTraceLocation& loc) {
  StringList names;
  // The cleaner compares options for equality, unlike the scan.
  // Each item asks first: a stop request leaves the rest as it is.
  auto emptyOrDelete = [&](HKEY root, const String& key, const String& name, uint32_t options) {
    if (!ShowCleanItem(u"delete value", name, false)) return;
    if (options == LO_StringList) Cleaning_EmptyRegValue(root, key, name);
    else CheckRegistryStep(DeleteRegValue(root, key, name, RO_None), {root, key, name, {}},
                           u"delete value");
  };
  auto deleteKey = [&](HKEY root, const String& key) {
    if (!ShowCleanItem(u"delete key", key, false)) return;
    CheckRegistryStep(DeleteRegKey(root, key, RO_None), {root, key, {}, {}}, u"delete key", true);
  };
  switch (loc.LocationType) {
    case TLT_Registry_AllValues: {
      const auto& d = loc.As<TLD_Registry_AllValues>();
      EnumRegValueNames(d.RootKey, d.Key, names, RO_None);
      for (const auto& n : names) emptyOrDelete(d.RootKey, d.Key, n, d.Options);
      break;
    }
    case TLT_Registry_AllKeys: {
      const auto& d = loc.As<TLD_Registry_AllKeys>();
      EnumRegKeysEx(d.RootKey, d.Key, names, RO_None);
      for (const auto& n : names) deleteKey(d.RootKey, IncludeTrailingPathDelimiter(d.Key) + n);
      break;
    }
    case TLT_Registry_NumberedNames: {
      const auto& d = loc.As<TLD_Registry_NumberedNames>();
      EnumRegValueNames(d.RootKey, d.Key, names, RO_None);
      for (const auto& n : names) {
        int64_t number;
        if (IsNumberedName(n, d.NamePrefix, number)) emptyOrDelete(d.RootKey, d.Key, n, d.Options);
      }
      break;
    }
    case TLT_Registry_NumberedKeys: {
      const auto& d = loc.As<TLD_Registry_NumberedKeys>();
      EnumRegKeysEx(d.RootKey, d.Key, names, RO_None);
      for (const auto& n : names) {
        int64_t number;
        if (IsNumberedName(n, d.NamePrefix, number))
          deleteKey(d.RootKey, IncludeTrailingPathDelimiter(d.Key) + n);
      }
      break;
    }
    case TLT_Registry_StringValue: {
      const auto& d = loc.As<TLD_Registry_StringValue>();
      if (GetRegStringValueDef(d.RootKey, d.Key, d.ValueName, {}, RO_None).empty()) break;
      if (d.Options == LO_StringList) {
        Cleaning_EmptyRegValue(d.RootKey, d.Key, d.ValueName);
        break;
      }
      SetLastOSError(ERROR_SUCCESS);
      RegShredderStringValue(d.RootKey, d.Key, d.ValueName, RO_None);
      // The shredder reports success whatever its deletion did: its last call tells.
      CheckRegistryStep(false, {d.RootKey, d.Key, d.ValueName, {}}, u"delete value");
      break;
    }
    case TLT_Registry_MRUList:
    case TLT_Registry_MRUListEx: {
      const bool ex = loc.LocationType == TLT_Registry_MRUListEx;
      const auto [root, key, options] = MRUListPlace(loc);
      EnumRegKeysEx(root, key, names, RO_None);
      for (const auto& n : names) deleteKey(root, key + u"\\" + n);
      EnumRegValueNames(root, key, names, RO_None);
      if (!ex) {
        // The order value stays, emptied, so the application finds an empty list.
        auto it = std::find_if(names.begin(), names.end(),
                               [](const String& n) { return SameText(n, u"MRUList"); });
        if (it != names.end()) {
          Cleaning_EmptyRegValue(root, key, *it);
          names.erase(it);
        }
      }
      for (const auto& n : names) emptyOrDelete(root, key, n, options);
      break;
    }
    case TLT_FileSystem_Files: {
      const auto& d = loc.As<TLD_FileSystem_Files>();
      TWildcardMatcher matcher = MakeMatcher(d);
      if (d.Options == LO_Recursive) {
        DeleteFilesRecurse(d.Folder, matcher);
        break;
      }
      std::vector<FileInfo> dirs;
      SecureDeleteMatching(d.Folder, matcher, dirs);
      break;
    }
  }
}

void TTCPlugin::DeleteFilesRecurse(const String& Folder, const TWildcardMatcher& Matcher) {
  if (StopWorking) return;
  std::vector<FileInfo> dirs;
  SecureDeleteMatching(Folder, Matcher, dirs);
  String base = IncludeTrailingPathDelimiter(Folder);
  for (const auto& d : dirs) DeleteFilesRecurse(base + d.Name, Matcher);
}

void TTCPlugin::SecureDeleteMatching(const String& Folder, const TWildcardMatcher& Matcher,
                                     std::vector<FileInfo>& Dirs) {
  // In batches while the folder is read: the names, full paths and the shredder's look-ups of
  // a folder of 100,000 files are never all held at once. The shredder looks each file up.
  constexpr size_t kBatch = 512;
  const String base = IncludeTrailingPathDelimiter(Folder);
  StringList paths;
  VisitFolderFiles(Folder, Dirs, ListDetail::Kinds, [&](const FileInfo& f) {
    if (Matcher.Match(f.Name)) paths.push_back(base + f.Name);
    if (paths.size() == kBatch) {
      SecureDeleteFiles(paths);
      paths.clear();
    }
    return !StopWorking;
  });
  if (!paths.empty() && !StopWorking) SecureDeleteFiles(paths);
}

void TTCPlugin::Cleaning_EmptyRegValue(HKEY RootKey, const String& Key, const String& ValueName) {
  Bytes bytes;
  uint32_t size, type;
  if (!GetRegValue(RootKey, Key, ValueName, bytes, size, type, RO_None)) return;
  bool ok = true;
  switch (type) {
    case REG_SZ:
      ok = SetRegStringValue(RootKey, Key, ValueName, {}, RO_None);
      break;
    case REG_MULTI_SZ:
      ok = SetRegMultiStringValue(RootKey, Key, ValueName, {}, RO_None);
      break;
    case REG_BINARY:
      ok = SetRegBinaryValue(RootKey, Key, ValueName, {}, RO_None);
      break;
    default:
      break;  // expandable strings, numbers and the rest stay as they are
  }
  CheckRegistryStep(ok, {RootKey, Key, ValueName, {}}, u"empty value");
}

void TTCPlugin::Fix() {
  for (const auto& loc : TraceLocations) {
    if (HasFlag(loc->Flags, TF_Needs_Fix_After_Cleaning)) FixTraceLocation(*loc);
  }
}

void TTCPlugin::FixTraceLocation(TTraceLocation& Location) {
  if (Location.LocationType == TLT_Registry_NumberedNames) FixNumberedNames(Location);
  else if (Location.LocationType == TLT_Registry_MRUList) FixMRUList(Location);
}

void TTCPlugin::FixNumberedNames(const TTraceLocation& loc) {
  const auto& d = loc.As<TLD_Registry_NumberedNames>();
  StringList names;
  EnumRegValueNames(d.RootKey, d.Key, names, RO_None);
  std::vector<std::pair<int64_t, String>> work;
  for (auto it = names.rbegin(); it != names.rend(); ++it) {
    int64_t n;
    if (IsNumberedName(*it, d.NamePrefix, n)) work.emplace_back(n, *it);
  }
  std::stable_sort(work.begin(), work.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  int64_t next = HasFlag(loc.Flags, TF_Zero_Based) ? 0 : 1;
  for (const auto& [number, name] : work) {
    String wanted = d.NamePrefix + IntToStr(next);
    if (SameText(name, wanted)) {
      ++next;
    } else if (next > number) {
      // A number already taken below stays where it is.
    } else {
      RenameRegValue(d.RootKey, d.Key, name, wanted, RO_None);
      ++next;
    }
  }
}

void TTCPlugin::FixMRUList(const TTraceLocation& loc) {
  const auto& d = loc.As<TLD_Registry_MRUList>();
  StringList keys{d.Key}, subs, names;
  EnumRegKeysEx(d.RootKey, d.Key, subs, RO_None);
  for (const auto& s : subs) keys.push_back(d.Key + u"\\" + s);
  for (const auto& k : keys) {
    String order = GetRegStringValueDef(d.RootKey, k, u"MRUList", {}, RO_None);
    if (order.empty()) continue;
    EnumRegValueNames(d.RootKey, k, names, RO_None);
    String fixed;
    for (char16_t c : order) {
      String letter(1, c);
      if (std::any_of(names.begin(), names.end(),
                      [&](const String& n) { return SameText(n, letter); }))
        fixed += c;
    }
    if (fixed != order) SetRegStringValue(d.RootKey, k, u"MRUList", fixed, RO_None);
  }
}

uint8_t TTCPlugin::ScanForSystemfolder(const String& Folder) {
  static const int kProtected[] = {kCSIDL_DESKTOP,       kCSIDL_FONTS,     kCSIDL_PROGRAMS,
                                   kCSIDL_PROGRAM_FILES, kCSIDL_STARTMENU, kCSIDL_FAVORITES,
                                   kCSIDL_APPDATA,       kCSIDL_FAVORITES};
  StringList protectedFolders;
  for (int csidl : kProtected)
    protectedFolders.push_back(UpperCase(ExcludeTrailingPathDelimiter(GetFolderLocStr(csidl))));
  protectedFolders.push_back(UpperCase(ExcludeTrailingPathDelimiter(GetWinDir())));
  String p = UpperCase(ExcludeTrailingPathDelimiter(ExtractFilePath(Folder)));
  if (p.size() <= 3) return 2;
  if (std::find(protectedFolders.begin(), protectedFolders.end(), p) != protectedFolders.end())
    return 2;
  String own = UpperCase(OwnFolder);
  if (!own.empty() && p.find(own) != String::npos) return 0;
  return 1;
}

void TTCPlugin::SetNewCleaningfolder(const String& Folder) {
  CleaningFolderKind = ScanForSystemfolder(Folder);
  CleaningFolder = Folder.size() < 4 ? Folder : ExcludeTrailingPathDelimiter(Folder);
}

}  // namespace tc
