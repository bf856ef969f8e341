#include "plugins/RulesCatalogue.h"

#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/TextCodec.h"
#include "platform/helpers/WinPath.h"

namespace tc {

namespace {

// The section numbers of the rules file, by their usual meaning.
const std::pair<int, const char16_t*> kLangSecRefs[] = {
    {3021, u"Anwendungen"},      {3022, u"Internet"},        {3023, u"Multimedia"},
    {3024, u"Dienstprogramme"},  {3025, u"Windows"},         {3026, u"Firefox"},
    {3027, u"Opera"},            {3028, u"Safari"},          {3029, u"Chromium-Browser"},
    {3030, u"Thunderbird"},      {3031, u"Windows Store"},
};

int WindowsVersion() {
  const String key = u"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";
  uint32_t major = 0, minor = 0;
  if (GetRegDWordValue(HKEY_LOCAL_MACHINE, key, u"CurrentMajorVersionNumber", major, RO_None)) {
    GetRegDWordValue(HKEY_LOCAL_MACHINE, key, u"CurrentMinorVersionNumber", minor, RO_None);
    return int(major * 100 + minor);
  }
  int version;
  String text = GetRegStringValueDef(HKEY_LOCAL_MACHINE, key, u"CurrentVersion", {}, RO_None);
  return ParseRuleVersion(text, version) ? version : -1;
}

bool RemovesEverything(const String& masks) {
  for (int i = 1; i <= ParamXCount(masks, u';'); ++i) {
    String m = Trim(ParamX(masks, u';', i));
    if (m == u"*" || m == u"*.*") return true;
  }
  return false;
}

StringList PatternOf(const TRulePath& path) {
  StringList pattern;
  String key = WinPath::Key(path.Base);
  for (size_t start = 0; start <= key.size();) {
    size_t end = key.find(u'\\', start);
    if (end == String::npos) end = key.size();
    if (end > start) pattern.push_back(key.substr(start, end - start));
    start = end + 1;
  }
  for (const auto& p : path.Parts) pattern.push_back(UpperCase(p));
  return pattern;
}

// Components below the root a whole key must have before a rule may remove it.
size_t KeyDepth(const TRuleRegPlace& place) {
  size_t depth = place.Key.empty() ? 0 : 1;
  for (char16_t c : place.Key) depth += c == u'\\';
  return place.Root == kHKEY_USERS && depth > 0 ? depth - 1 : depth;
}

String RootName(HKEY root) {
  switch (root) {
    case kHKEY_CURRENT_USER: return u"HKCU";
    case kHKEY_LOCAL_MACHINE: return u"HKLM";
    case kHKEY_USERS: return u"HKU";
    default: return u"HKCR";
  }
}

}  // namespace

TRulesCatalogue::TRulesCatalogue()
    : folders_(std::make_unique<TRuleFolders>()), windowsVersion_(WindowsVersion()) {
  for (const TTCPlugin* p : *Plugins) ids_.insert(p->ID);
}

TRulesCatalogue::~TRulesCatalogue() {
  while (!plugins_.empty()) plugins_.pop_back();  // last made first: each leaves Plugins at once
}

String TRulesCatalogue::IdOf(const String& entryName) {
  String id = u"W2_";
  for (char16_t c : entryName) {
    const bool keep = (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9');
    id += keep ? c : u'_';
  }
  return id;
}

String TRulesCatalogue::SectionOf(const TRulesEntry& entry) {
  if (!entry.Section.empty()) return entry.Section;
  for (const auto& [number, caption] : kLangSecRefs)
    if (number == entry.LangSecRef) return caption;
  return u"Anwendungen";
}

bool TRulesCatalogue::Build(const TRulesEntry& e, TTCPRulesEntry& p, String& why, int& line) {
  std::vector<TRulePath> paths;
  String detail;
  auto expand = [&](const String& text, int at) {
    line = at;
    switch (folders_->Expand(text, paths, detail)) {
      case TRuleFolders::Result::Ok: return true;
      case TRuleFolders::Result::UnknownVariable: why = u"unknown variable " + detail; break;
      case TRuleFolders::Result::NotAbsolute: why = u"not a path on a drive: " + detail; break;
    }
    return false;
  };

  p.DetectKeys = e.Detect;
  for (const auto& d : e.DetectFiles) {
    if (!expand(d.Path, d.Line)) return false;
    p.DetectPaths.insert(p.DetectPaths.end(), paths.begin(), paths.end());
  }
  p.HasDetection = !e.Detect.empty() || !e.DetectFiles.empty();
  p.OSMatches = windowsVersion_ < 0 || (e.MinOS <= windowsVersion_ && windowsVersion_ <= e.MaxOS);

  for (const auto& fk : e.FileKeys) {
    if (!expand(fk.Path, fk.Line)) return false;
    for (auto& path : paths) {
      String fixed = path.FixedFolder();
      if ((fk.Recurse || RemovesEverything(fk.Masks)) && folders_->IsProtected(fixed)) {
        why = u"refused: it would remove everything in " + fixed;
        return false;
      }
      TRuleFileSet set;
      set.Folder = std::move(path);
      set.Matcher.AddSearchMask(fk.Masks, 0);
      set.Matcher.AddSearchMask(u"desktop.ini", 1);
      set.Recurse = fk.Recurse;
      set.RemoveSelf = fk.RemoveSelf;
      set.Wide = fk.Recurse || RemovesEverything(fk.Masks);
      p.Files.push_back(std::move(set));
    }
  }
  for (const auto& rk : e.RegKeys) {
    line = rk.Line;
    if (rk.HasValue ? rk.Key.empty() : KeyDepth(rk) < 2) {
      why = u"refused: it would remove all of " + RootName(rk.Root) +
            (rk.Key.empty() ? u"" : u"\\") + rk.Key;
      return false;
    }
    p.RegKeys.push_back(rk);
  }
  for (const auto& ex : e.Excludes) {
    if (ex.What == TRuleExclude::Kind::Reg) {
      p.KeptRegistry.push_back(ex.Reg);
      continue;
    }
    if (!expand(ex.Path, ex.Line)) return false;
    for (const auto& path : paths) {
      TRuleFileExclusion kept;
      kept.Pattern = PatternOf(path);
      kept.Masks.AddSearchMask(ex.Masks, 0);
      kept.Below = ex.What == TRuleExclude::Kind::Path;
      p.KeptFiles.push_back(std::move(kept));
    }
  }
  return true;
}

bool TRulesCatalogue::Load(const String& name, const Bytes& data, StringList& warnings) {
  std::vector<TRulesEntry> entries;
  if (!ParseRulesFile(name, data, entries, warnings)) return false;
  const String fileName = WinPath::Name(name);
  for (const auto& e : entries) {
    auto warn = [&](int line, const String& what) {
      warnings.push_back(name + u":" + IntToStr(line) + u": [" + e.Name + u"] " + what);
    };
    const String id = IdOf(e.Name);
    if (ids_.count(id)) {
      warn(e.Line, u"skipped: its ID " + id + u" is taken by an earlier entry");
      continue;
    }
    auto plugin = std::make_unique<TTCPRulesEntry>(id);
    String why;
    int line = e.Line;
    if (!Build(e, *plugin, why, line)) {
      warn(line, why.rfind(u"refused", 0) == 0 ? why : u"skipped: " + why);
      continue;  // the plug-in leaves Plugins as it goes
    }
    plugin->Section = SectionOf(e);
    plugin->AppCaption = e.Name;
    plugin->Caption = u"Regeln aus " + fileName;
    plugin->Description = u"Eintrag [" + e.Name + u"] der Regeldatei " + name + u", Zeile " +
                          IntToStr(e.Line);
    plugin->Warning = e.Warning;
    plugin->Guard = folders_.get();
    plugin->Active = plugin->Detected();
    ids_.insert(id);
    plugins_.push_back(std::move(plugin));
  }
  return true;
}

}  // namespace tc
