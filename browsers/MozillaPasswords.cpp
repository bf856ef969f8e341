// Saved passwords: a header, then blocks closed by "." lines; Mozilla/Netscape keep user
// names and passwords as "~" + base64.
#include "browsers/MozillaText.h"
#include "browsers/TC_MozillaBrowser.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

bool ParseSavedPasswordText(std::string_view Data, TMozillaType Type,
                            TMozillaSavedPasswordList& List) {
  List.clear();
  List.Header.clear();
  if (!IsText(Data)) return false;
  bool inHeader = true;
  TMozillaSavedPasswordEntry block;
  String previous;
  for (const String& line : AnsiLines(Data)) {
    if (line == u".") {
      if (!inHeader) List.push_back(std::move(block));
      inHeader = false;
      block = {};
    } else if (inHeader) {
      List.Header += line + u"\n";
    } else {
      if (block.Block.empty()) block.Host = line;
      block.Block += line + u"\n";
      if (Type == MT_MozillaNetscape && !line.empty() && line[0] == u'~') {
        String decoded = DecodeBase64Utf8(line.substr(1));
        if (!previous.empty() && previous[0] == u'*')
          block.Password = std::move(decoded);
        else
          block.UserName = std::move(decoded);
      }
    }
    previous = line;
  }
  return true;
}

std::string FormatSavedPasswordText(const TMozillaSavedPasswordList& List) {
  String text = List.Header + u".\n";
  for (const auto& e : List)
    if (!e.Deleted) text += e.Block + u".\n";
  return ToAnsi(text);
}

String TMozillaBrowser::SavedPasswordsFileName() {
  if (Type_ == MT_Firefox) return u"signons.txt";
  String name;
  GetPrefsJsSetting(u"signon.SignonFileName", u"", name);
  return name;
}

bool TMozillaBrowser::EnumSavedPasswords() {
  SavedPasswords.clear();
  SavedPasswords.Header.clear();
  PasswordError_.clear();
  PasswordsRefused_ = false;
  const String name = SavedPasswordsFileName();
  if (name.empty() || !OrviFileExists(Folder_ + name)) return false;
  std::string data;
  if (!ReadProfileFile(Folder_ + name, data)) {
    PasswordError_ = u"password file cannot be read";
  } else if (!ParseSavedPasswordText(data, Type_, SavedPasswords)) {
    PasswordError_ = u"password file holds binary data";
  } else {
    return true;
  }
  PasswordsRefused_ = true;
  return false;
}

bool TMozillaBrowser::UpdateSavedPasswords() {
  const String name = SavedPasswordsFileName();
  if (name.empty() || PasswordsRefused_) return false;  // an unreadable file stays as it is
  return ReplaceProfileFile(Folder_ + name, FormatSavedPasswordText(SavedPasswords));
}

}  // namespace tc
