// "cookies.txt": seven tab-separated columns per cookie, comment lines at the head.
#include "browsers/MozillaText.h"
#include "browsers/TC_MozillaBrowser.h"
#include "platform/Platform.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

constexpr int64_t kTwoYears = 63072000;
constexpr int64_t kFileTimeOf1970 = 116444736000000000;

int64_t ExpiryInTwoYears() {
  return (Services().Clock->Now() - kFileTimeOf1970) / 10000000 + kTwoYears;
}

// Columns 1 to 6 end at the first six tabs; the seventh is the rest, tabs included.
TMozillaCookieEntry CookieOfLine(std::string_view line) {
  std::string_view cols[7];
  int col = 0;
  for (; col < 6; ++col) {
    size_t tab = line.find('\t');
    if (tab == std::string_view::npos) break;
    cols[col] = line.substr(0, tab);
    line.remove_prefix(tab + 1);
  }
  cols[col] = line;
  TMozillaCookieEntry e;
  e.Domain = FromAnsi(cols[0]);
  e.DomainFlag = cols[1] == "TRUE";
  e.Path = FromAnsi(cols[2]);
  e.Secure = cols[3] == "TRUE";
  e.Expiry = StrToInt64Def(FromAnsi(cols[4]), 0);
  e.Name = FromAnsi(cols[5]);
  e.Value = FromAnsi(cols[6]);
  return e;
}

const char* Flag(bool b) { return b ? "TRUE" : "FALSE"; }

}  // namespace

bool ParseCookieText(std::string_view Data, TMozillaCookieList& List) {
  List.clear();
  List.Header.clear();
  if (!IsText(Data)) return false;
  ForEachLine(Data, [&](std::string_view line) {
    if (line.empty() || line[0] == '#') {
      if (List.empty()) List.Header += FromAnsi(line) + u"\n";  // later comments are dropped
    } else {
      List.push_back(CookieOfLine(line));
    }
  });
  return true;
}

std::string FormatCookieText(const TMozillaCookieList& List) {
  std::string text = ToAnsi(List.Header);
  for (const auto& e : List) {
    if (e.Deleted) continue;
    ((((text += ToAnsi(e.Domain)) += '\t') += Flag(e.DomainFlag)) += '\t') += ToAnsi(e.Path);
    (((text += '\t') += Flag(e.Secure)) += '\t') += std::to_string(e.Expiry);
    ((((text += '\t') += ToAnsi(e.Name)) += '\t') += ToAnsi(e.Value)) += '\n';
  }
  return text;
}

bool TMozillaBrowser::EnumCookies() {
  CookieGroups.clear();
  Cookies.clear();
  Cookies.Header.clear();
  CookieError_.clear();
  CookiesRefused_ = false;
  const String file = Folder_ + u"cookies.txt";
  if (!OrviFileExists(file)) return false;
  std::string data;
  if (!ReadProfileFile(file, data)) {
    CookieError_ = u"cookie file cannot be read";
  } else if (!ParseCookieText(data, Cookies)) {
    CookieError_ = u"cookie file holds binary data";
  } else {
    return true;
  }
  CookiesRefused_ = true;
  return false;
}

TMozillaCookieEntry* TMozillaBrowser::GetCookieEntry(const String& Domain, const String& Name,
                                                     const String& /*Path*/) {
  for (auto& e : Cookies)
    if (e.Domain == Domain && e.Name == Name) return &e;
  return nullptr;
}

String TMozillaBrowser::GetCookie(const String& Domain, const String& Name, const String& Path) {
  const TMozillaCookieEntry* e = GetCookieEntry(Domain, Name, Path);
  return e ? e->Value : String();
}

bool TMozillaBrowser::CookieExists(const String& Domain, const String& Name) {
  for (const auto& e : Cookies)
    if (SameText(e.Domain, Domain) && e.Name == Name) return true;
  return false;
}

void TMozillaBrowser::SetCookie(const String& Domain, bool DomainFlag, const String& Path,
                                const String& Name, const String& Value) {
  for (auto& e : Cookies) {
    if (e.Domain == Domain && e.Name == Name && e.Path == Path) {
      e.DomainFlag = DomainFlag;
      e.Expiry = ExpiryInTwoYears();
      e.Value = Value;
      return;
    }
  }
  TMozillaCookieEntry e;
  e.Domain = Domain;
  e.DomainFlag = DomainFlag;
  e.Path = Path.empty() ? u"/" : Path;
  e.Expiry = ExpiryInTwoYears();
  e.Name = Name;
  e.Value = Value;
  Cookies.push_back(std::move(e));
}

bool TMozillaBrowser::UpdateCookies() {
  if (CookiesRefused_) return false;  // a file we could not read is never rewritten
  return ReplaceProfileFile(Folder_ + u"cookies.txt", FormatCookieText(Cookies));
}

}  // namespace tc
