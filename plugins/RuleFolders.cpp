#include "plugins/RuleFolders.h"

#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/TextCodec.h"
#include "platform/helpers/WinPath.h"
#include "platform/Platform.h"

namespace tc {

namespace {

// Variables the rules use, by the known folders that hold them (several: each one found).
struct TKnownFolderVar {
  const char16_t* name;
  const char16_t* ids[3];
};
const TKnownFolderVar kKnownFolderVars[] = {
    {u"APPDATA", {u"{3EB685DB-65F9-4CF6-A03A-E3EF65729F3D}"}},
    {u"LOCALAPPDATA", {u"{F1B32785-6FBA-4FCF-9D55-7B8E7F157091}"}},
    {u"LOCALLOWAPPDATA", {u"{A520A1A4-1780-4FF6-BD18-167343C5AF16}"}},
    {u"PROGRAMDATA", {u"{62AB5D82-FDC1-4DC3-A9DD-070D1D495D97}"}},
    {u"COMMONAPPDATA", {u"{62AB5D82-FDC1-4DC3-A9DD-070D1D495D97}"}},
    {u"PROGRAMFILES",
     {u"{6D809377-6AF0-444B-8957-A3773F02200E}", u"{905E63B6-C1BF-494E-B29C-65B732D3D21A}",
      u"{7C5A40EF-A0FB-4BFC-874A-C0F2E0B9FA8E}"}},
    {u"COMMONPROGRAMFILES",
     {u"{6365D5A7-0F0D-45E5-87F6-0DA56B6A4F7D}", u"{F7F1ED05-9F6D-47A2-AAAE-29D317C6F066}",
      u"{DE974D24-D9C6-4D3E-BF91-F4455120B917}"}},
    {u"USERPROFILE", {u"{5E6C858F-0E22-4760-9AFE-EA3317B67173}"}},
    {u"DOCUMENTS", {u"{FDD39AD0-238F-46AF-ADB4-6C85480369C7}"}},
    {u"PUBLIC", {u"{DFDF76A2-C82A-4D63-906A-5644AC457385}"}},
    {u"DESKTOP", {u"{B4BFCC3A-DB2C-424C-B029-7FE99A87C641}"}},
    {u"PICTURES", {u"{33E28130-4E1E-4676-835A-98395C3BC3BB}"}},
    {u"MUSIC", {u"{4BD8D571-6D19-48D3-BE97-422220080E43}"}},
    {u"VIDEO", {u"{18989B1D-99B5-455B-841C-AB7C74E4DDFC}"}},
};

bool HasWildcard(const String& s) { return s.find_first_of(u"*?") != String::npos; }

bool ValidPart(const String& part) {
  if (part == u"." || part == u"..") return false;
  for (char16_t c : part)
    if (c < 0x20 || c == u'<' || c == u'>' || c == u':' || c == u'"' || c == u'|') return false;
  return true;
}

StringList SplitParts(const String& s) {
  StringList parts;
  size_t start = 0;
  while (start < s.size()) {
    size_t end = s.find_first_of(u"\\/", start);
    if (end == String::npos) end = s.size();
    if (end > start) parts.push_back(s.substr(start, end - start));
    start = end + 1;
  }
  return parts;
}

}  // namespace

String TRulePath::FixedFolder() const {
  String folder = Base;
  for (const auto& p : Parts) {
    if (HasWildcard(p)) break;
    folder = WinPath::Join(folder, p);
  }
  return folder;
}

String TRulePath::Text() const {
  String s = Base;
  for (const auto& p : Parts) s = WinPath::Join(s, p);
  return s;
}

void TRuleFolders::Add(const char16_t* name, const String& folder) {
  String f = ExcludeTrailingPathDelimiter(folder);
  if (f.size() == 2 && f[1] == u':') f += u'\\';
  if (f.empty()) return;
  StringList& list = values_[name];
  for (const auto& known : list)
    if (WinPath::Key(known) == WinPath::Key(f)) return;
  list.push_back(f);
}

TRuleFolders::TRuleFolders() {
  IShell& shell = *Services().Shell;
  for (const auto& [name, ids] : kKnownFolderVars) {
    values_[name];  // known even where the system has no such folder
    for (const char16_t* id : ids) {
      if (!id) break;
      String path;
      if (shell.GetKnownFolder(id, path) == ERROR_SUCCESS) Add(name, path);
    }
  }
  Add(u"FAVORITES", GetFolderLocStr(kCSIDL_FAVORITES));
  const String windows = ExcludeTrailingPathDelimiter(GetWinDir());
  Add(u"WINDIR", windows);
  Add(u"SYSTEMROOT", windows);
  if (windows.size() >= 2) Add(u"SYSTEMDRIVE", windows.substr(0, 2));
  values_[u"USERNAME"];
  // The user's name as the running system has it, else the name of the profile folder.
  String user = GetRegStringValueDef(HKEY_CURRENT_USER, u"Volatile Environment", u"USERNAME", {},
                                     RO_None);
  const StringList& profile = values_[u"USERPROFILE"];
  if (user.empty() && !profile.empty()) user = WinPath::Name(profile.front());
  if (!user.empty()) values_[u"USERNAME"].push_back(user);
  // %Temp% is the user's environment variable, written in terms of the others.
  values_[u"TEMP"];
  String temp = GetRegStringValueDef(HKEY_CURRENT_USER, u"Environment", u"TEMP", {}, RO_None);
  std::vector<TRulePath> expanded;
  String detail;
  if (!temp.empty() && Expand(temp, expanded, detail) == Result::Ok && expanded.size() == 1)
    Add(u"TEMP", expanded.front().Text());
  else if (!values_[u"LOCALAPPDATA"].empty())
    Add(u"TEMP", values_[u"LOCALAPPDATA"].front() + u"\\Temp");
  values_[u"TMP"] = values_[u"TEMP"];

  for (const auto& [name, folders] : values_) {
    if (name == u"TEMP" || name == u"TMP" || name == u"USERNAME") continue;
    for (const auto& f : folders) protected_.insert(WinPath::Key(f));
  }
  for (const auto& f : profile) protected_.insert(WinPath::Key(WinPath::Parent(f)));
  for (int csidl : {kCSIDL_SYSTEM, kCSIDL_SYSTEMX86}) {
    String f = GetFolderLocStr(csidl);
    if (!f.empty()) protected_.insert(WinPath::Key(f));
  }
}

TRuleFolders::Result TRuleFolders::Expand(const String& text, std::vector<TRulePath>& out,
                                          String& detail) const {
  out.clear();
  detail.clear();
  // Each %NAME% in turn multiplies the texts by its folders.
  std::vector<std::pair<String, String>> texts{{String(), String()}};  // base, rest
  size_t pos = 0;
  while (pos < text.size()) {
    size_t open = text.find(u'%', pos);
    size_t close = open == String::npos ? String::npos : text.find(u'%', open + 1);
    String literal = text.substr(pos, close == String::npos ? String::npos : open - pos);
    for (auto& [base, rest] : texts) rest += literal;
    if (close == String::npos) break;
    String name = text.substr(open + 1, close - open - 1);
    auto it = values_.find(UpperCase(name));
    if (it == values_.end()) {
      detail = u"%" + name + u"%";
      return Result::UnknownVariable;
    }
    std::vector<std::pair<String, String>> next;
    for (const auto& [base, rest] : texts)
      for (const auto& folder : it->second) {
        // A variable at the very start is the system's folder; later ones are text.
        if (open == 0) next.emplace_back(folder, String());
        else next.emplace_back(base, rest + folder);
      }
    texts = std::move(next);
    pos = close + 1;
  }
  for (const auto& [base, rest] : texts) {
    TRulePath p;
    StringList parts = SplitParts(rest);
    if (base.empty()) {
      // No leading variable: the path must name its drive.
      if (parts.empty() || parts[0].size() != 2 || parts[0][1] != u':' ||
          !((parts[0][0] | 0x20) >= u'a' && (parts[0][0] | 0x20) <= u'z') || rest[0] == u'\\' ||
          rest[0] == u'/' || (rest.size() > 2 && rest[2] != u'\\' && rest[2] != u'/')) {
        detail = text;
        return Result::NotAbsolute;
      }
      p.Base = String(1, UpCaseAscii(parts[0][0])) + u":\\";
      parts.erase(parts.begin());
    } else {
      p.Base = base;
    }
    for (const auto& part : parts)
      if (!ValidPart(part)) {
        detail = text;
        return Result::NotAbsolute;
      }
    p.Parts = std::move(parts);
    out.push_back(std::move(p));
  }
  return Result::Ok;
}

bool TRuleFolders::IsProtected(const String& folder) const {
  String key = WinPath::Key(folder);
  return key.size() <= 2 || protected_.count(key) > 0;
}

}  // namespace tc
