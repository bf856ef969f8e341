#include "plugins/RulePlugin.h"

#include "engine/RegShredder.h"
#include "engine/TC_Common.h"
#include "platform/helpers/LastError.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/TextCodec.h"
#include "platform/helpers/WinPath.h"
#include "platform/Platform.h"

namespace tc {

namespace {

bool HasWildcard(const String& s) { return s.find_first_of(u"*?") != String::npos; }

// `key` is `ancestor` or lies below it (case-insensitive, whole components).
bool SameOrBelow(const String& key, const String& ancestor) {
  if (ancestor.empty()) return true;
  if (key.size() < ancestor.size()) return false;
  if (!SameText(std::u16string_view(key).substr(0, ancestor.size()), ancestor)) return false;
  return key.size() == ancestor.size() || key[ancestor.size()] == u'\\';
}

String SubKey(const String& key, const String& name) {
  return key.empty() ? name : key + u"\\" + name;
}

// What a failed registry removal leaves: nothing when the trace was gone already.
bool Gone(uint32_t error) {
  return error == ERROR_SUCCESS || error == ERROR_FILE_NOT_FOUND ||
         error == ERROR_PATH_NOT_FOUND || error == ERROR_KEY_DELETED;
}

}  // namespace

StringList ResolveRulePath(const TRulePath& path, bool lastMayBeFile) {
  if (!DirExists(path.Base)) return {};
  StringList current{path.Base};
  for (size_t i = 0; i < path.Parts.size() && !current.empty(); ++i) {
    const String& part = path.Parts[i];
    const bool files = lastMayBeFile && i + 1 == path.Parts.size();
    StringList next;
    for (const auto& folder : current) {
      if (HasWildcard(part)) {
        std::vector<FileInfo> dirs, found;
        ListFolderEntries(folder, dirs, found, WalkNeeds::KindsUnordered);  // links are left out
        if (files) dirs.insert(dirs.end(), found.begin(), found.end());
        const String mask = UpperCase(part);
        for (const auto& d : dirs)
          if (TWildcardMatcher::MatchMask(d.Name, mask)) next.push_back(WinPath::Join(folder, d.Name));
      } else {
        FileInfo info;
        String child = WinPath::Join(folder, part);
        if (Services().Files->GetInfo(child, info) == ERROR_SUCCESS && !info.IsReparsePoint() &&
            (files || info.IsDirectory()))
          next.push_back(child);
      }
    }
    current = std::move(next);
  }
  return current;
}

TTCPRulesEntry::TTCPRulesEntry(const String& id) : TTCPlugin(u"TTCP" + id) {
  DeactivateIfAbsent = false;  // whether the application is there is the entry's own test
}

bool TTCPRulesEntry::Detected() const {
  if (!OSMatches) return false;
  if (!HasDetection) return true;
  for (const auto& d : DetectKeys) {
    if (d.HasValue ? ValueExists(d.Root, d.Key, d.ValueName, RO_None)
                   : KeyExist(d.Root, d.Key, RO_None))
      return true;
  }
  for (const auto& p : DetectPaths)
    if (!ResolveRulePath(p, true).empty()) return true;
  return false;
}

bool TTCPRulesEntry::FileKept(const String& folder, const String& name) const {
  if (KeptFiles.empty()) return false;
  const String key = WinPath::Key(folder);
  StringList parts;
  for (size_t start = 0; start <= key.size();) {
    size_t end = key.find(u'\\', start);
    if (end == String::npos) end = key.size();
    parts.push_back(key.substr(start, end - start));
    start = end + 1;
  }
  for (const auto& k : KeptFiles) {
    if (parts.size() < k.Pattern.size() || (!k.Below && parts.size() != k.Pattern.size()))
      continue;
    bool match = true;
    for (size_t i = 0; match && i < k.Pattern.size(); ++i)
      match = TWildcardMatcher::MatchMask(parts[i], k.Pattern[i]);
    if (match && k.Masks.Match(name)) return true;
  }
  return false;
}

void TTCPRulesEntry::WalkFiles(const TRuleFileSet& set, const String& folder,
                               const std::function<void(const StringList&)>& visit,
                               const std::function<void(const String&)>& done) {
  Services().UI->ProcessMessages();
  if (StopWorking) return;
  std::vector<FileInfo> dirs, files;
  if (!ListFolderEntries(folder, dirs, files)) return;
  if (set.Recurse)
    for (const auto& d : dirs) WalkFiles(set, WinPath::Join(folder, d.Name), visit, done);
  StringList paths;
  for (const auto& f : files)
    if (set.Matcher.Match(f.Name) && !FileKept(folder, f.Name))
      paths.push_back(WinPath::Join(folder, f.Name));
  visit(paths);
  done(folder);
}

bool TTCPRulesEntry::RegKept(HKEY root, const String& key, const String* value) const {
  for (const auto& k : KeptRegistry) {
    if (k.Root != root || !SameOrBelow(key, k.Key)) continue;
    if (!k.HasValue) return true;
    if (value && SameText(key, k.Key) && SameText(*value, k.ValueName)) return true;
  }
  return false;
}

bool TTCPRulesEntry::HoldsKept(HKEY root, const String& key) const {
  for (const auto& k : KeptRegistry)
    if (k.Root == root && SameOrBelow(k.Key, key)) return true;
  return false;
}

bool TTCPRulesEntry::CoveredByKey(size_t index) const {
  const TRuleRegPlace& p = RegKeys[index];
  for (size_t i = 0; i < RegKeys.size(); ++i) {
    const TRuleRegPlace& k = RegKeys[i];
    if (i == index || k.HasValue || k.Root != p.Root || !SameOrBelow(p.Key, k.Key)) continue;
    // Of two removals of one key, the first counts.
    if (p.HasValue || !SameText(p.Key, k.Key) || i < index) return true;
  }
  return false;
}

void TTCPRulesEntry::WalkKeyExcept(
    HKEY root, const String& key,
    const std::function<void(const TTraceSourceData&, bool isKey)>& visit) {
  StringList names, subs;
  EnumRegValueNames(root, key, names, RO_None);
  for (const auto& n : names)
    if (!RegKept(root, key, &n)) visit({root, key, n, {}}, false);
  EnumRegKeysEx(root, key, subs, RO_None);
  for (const auto& s : subs) {
    String sub = SubKey(key, s);
    if (RegKept(root, sub, nullptr)) continue;
    if (HoldsKept(root, sub)) WalkKeyExcept(root, sub, visit);
    else visit({root, sub, {}, {}}, true);
  }
}

void TTCPRulesEntry::WalkRegistry(
    const std::function<void(const TTraceSourceData&, bool isKey)>& visit) {
  for (size_t i = 0; i < RegKeys.size() && !StopWorking; ++i) {
    const TRuleRegPlace& p = RegKeys[i];
    if (CoveredByKey(i) || RegKept(p.Root, p.Key, p.HasValue ? &p.ValueName : nullptr)) continue;
    if (p.HasValue) {
      if (ValueExists(p.Root, p.Key, p.ValueName, RO_None))
        visit({p.Root, p.Key, p.ValueName, {}}, false);
    } else if (KeyExist(p.Root, p.Key, RO_None)) {
      if (HoldsKept(p.Root, p.Key)) WalkKeyExcept(p.Root, p.Key, visit);
      else visit({p.Root, p.Key, {}, {}}, true);
    }
  }
}

StringList TTCPRulesEntry::FoldersOf(const TRuleFileSet& set) {
  StringList folders = ResolveRulePath(set.Folder, false);
  if (!set.Wide || !Guard) return folders;
  StringList allowed;
  for (auto& f : folders) {
    if (!Guard->IsProtected(f)) allowed.push_back(std::move(f));
    else if (Note.find(f) == String::npos)
      Note += (Note.empty() ? u"" : u"; ") + String(u"left alone: ") + f;
  }
  return allowed;
}

void TTCPRulesEntry::Scan() {
  TraceCount = 0;
  Note.clear();
  std::set<String> seen;  // two keys of one entry may name the same file
  for (const auto& set : Files)
    for (const auto& folder : FoldersOf(set))
      WalkFiles(set, folder, [&](const StringList& paths) {
        for (const auto& path : paths) {
          if (!seen.insert(WinPath::Key(path)).second) continue;
          ReportTrace(TST_FileSystem_File, {kNoRootKey, {}, {}, path}, TTT_FileName, 0, {});
          ++TraceCount;
        }
      }, [](const String&) {});
  WalkRegistry([&](const TTraceSourceData& where, bool isKey) {
    String data = isKey ? String()
                        : GetRegStringValueDef(where.RootKey, where.Key, where.ValueName, {},
                                               RO_None);
    ReportTrace(isKey ? TST_Registry_Key : TST_Registry_Value, where, TTT_Unknown, 0, data);
    ++TraceCount;
  });
}

void TTCPRulesEntry::Clean() {
  TraceCount = 0;
  Note.clear();
  for (const auto& set : Files) {
    for (const auto& top : FoldersOf(set)) {
      WalkFiles(set, top, [&](const StringList& paths) {
        if (!paths.empty()) SecureDeleteFiles(paths);
      }, [&](const String& folder) {
        // Emptied folders go with REMOVESELF; one holding a kept file stays.
        if (set.RemoveSelf) Services().Files->RemoveFolder(folder);
      });
    }
  }
  WalkRegistry([&](const TTraceSourceData& where, bool isKey) {
    SetLastOSError(ERROR_SUCCESS);
    // The value shredder reports success whatever its deletion did: the last error tells.
    if (isKey) DeleteRegKey(where.RootKey, where.Key, RO_None);
    else RegShredderStringValue(where.RootKey, where.Key, where.ValueName, RO_None);
    uint32_t error = GetLastOSError();
    if (!Gone(error))
      AddCleanFailure(isKey ? TST_Registry_Key : TST_Registry_Value, where,
                      isKey ? u"delete key" : u"delete value", error);
  });
}

}  // namespace tc
