// Saved form data: Firefox's Mork "formhistory.dat", the Mozilla/Netscape wallet file.
#include "browsers/MorkReader.h"
#include "browsers/MozillaText.h"
#include "browsers/TC_MozillaBrowser.h"
#include "platform/helpers/Orviregistry.h"

namespace tc {

void ParseSchemaValueText(std::string_view Data, TMozillaFormDataList& List) {
  const StringList lines = AnsiLines(Data);
  int inBlock = 0;
  String name;
  for (size_t i = 1; i < lines.size(); ++i) {  // the first line is the format's
    const String& line = lines[i];
    if (line.empty()) {
      inBlock = 0;
      continue;
    }
    if (++inBlock == 1) name = line;
    else if (inBlock == 2 && line[0] == u'~') List.push_back({name, DecodeBase64Utf8(line.substr(1))});
  }
}

String TMozillaBrowser::FormDataFileName() {
  if (Type_ == MT_Firefox) return u"formhistory.dat";
  String name;
  GetPrefsJsSetting(u"wallet.SchemaValueFileName", u"", name);
  return name;
}

bool TMozillaBrowser::EnumFormData() {
  FormData.clear();
  const String name = FormDataFileName();
  if (name.empty() || !OrviFileExists(Folder_ + name)) return false;
  return Type_ == MT_Firefox ? EnumFormData_Firefox(Folder_ + name)
                             : EnumFormData_MozillaNetscape(Folder_ + name);
}

bool TMozillaBrowser::EnumFormData_Firefox(const String& FileName) {
  std::string data;
  if (GetFileSize64(FileName) < 0 || !ReadProfileFile(FileName, data)) return false;
  for (auto& [name, value] : ReadMorkRows(data, TMorkKind::FormHistory))
    FormData.push_back({std::move(name), std::move(value)});
  return true;
}

bool TMozillaBrowser::EnumFormData_MozillaNetscape(const String& FileName) {
  std::string data;
  if (!ReadProfileFile(FileName, data)) return false;
  ParseSchemaValueText(data, FormData);
  return true;
}

bool TMozillaBrowser::DeleteFormData() {
  const String name = FormDataFileName();
  if (name.empty() || !OrviFileExists(Folder_ + name)) return false;
  return ShredFile(Folder_ + name);
}

}  // namespace tc
