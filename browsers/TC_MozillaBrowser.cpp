#include "browsers/TC_MozillaBrowser.h"

#include "browsers/MorkReader.h"
#include "browsers/MozillaText.h"
#include "platform/helpers/Orvihelper.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/Stringhelper.h"

namespace tc {

TMozillaBrowser::TMozillaBrowser(const String& ProfileFolder, TMozillaType BrowserType)
    : Type_(BrowserType),
      Folder_(IncludeTrailingPathDelimiter(ProfileFolder)),
      Name_(ExtractProfilename(ProfileFolder)) {}

String TMozillaBrowser::ExtractProfilename(const String& Folder) {
  String f = ExcludeTrailingPathDelimiter(Folder);
  size_t slash = f.rfind(u'\\');
  return slash == String::npos ? String() : f.substr(slash + 1);
}

bool TMozillaBrowser::ShredFile(const String& Path) {
  TOrviShredderClass job;
  job.SetMethod(ShredMethod);
  job.SetDeleteRecurrence(ShredRecurrence);
  job.Files.push_back(Path);
  return job.ExecuteShredder();
}

bool TMozillaBrowser::EnumHistory() {
  History.clear();
  const String file = Folder_ + u"history.dat";
  std::string data;
  if (GetFileSize64(file) < 0 || !ReadProfileFile(file, data)) return false;
  for (auto& [url, lastVisit] : ReadMorkRows(data, TMorkKind::History))
    History.push_back({std::move(url), std::move(lastVisit)});
  return true;
}

bool TMozillaBrowser::DeleteHistory() {
  const String file = Folder_ + u"history.dat";
  if (!ShredFile(file)) {
    // Only a file that is there can wait for the next start: never a guessed path.
    if (OrviFileExists(file)) DeleteFileOnReboot(file);
    return false;
  }
  ReplaceProfileFile(file, "");  // the browser finds an empty history in its place
  History.clear();
  return true;
}

}  // namespace tc
