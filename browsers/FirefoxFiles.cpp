#include <nlohmann/json.hpp>

#include "browsers/FirefoxStores.h"
#include "platform/Platform.h"
#include "platform/helpers/FileContents.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

using nlohmann::json;

bool ReadJson(const String& path, json& doc, bool& present, String& error) {
  Bytes data;
  uint32_t rc = FileContents::Read(*Services().Files, path, data);
  present = rc == ERROR_SUCCESS;
  if (!present) return rc == ERROR_FILE_NOT_FOUND || rc == ERROR_PATH_NOT_FOUND;
  doc = json::parse(data.begin(), data.end(), nullptr, false);
  if (doc.is_object() && doc.contains("logins") && doc["logins"].is_array()) return true;
  error = path + u": not a login file this program knows";
  return false;
}

void Walk(const String& folder, StringList& out) {
  std::vector<FileInfo> dirs, files;
  if (!ListFolderEntries(folder, dirs, files)) return;
  for (const auto& d : dirs) Walk(folder + d.Name + u"\\", out);
  for (const auto& f : files) out.push_back(folder + f.Name);
}

}  // namespace

StringList FilesBelow(const String& Folder) {
  StringList out;
  Walk(IncludeTrailingPathDelimiter(Folder), out);
  return out;
}

bool ScanFirefoxLogins(const String& Profile, TBrowserTraces& Traces, String& Error) {
  json doc;
  bool present = false;
  const String file = Profile + u"logins.json";
  if (!ReadJson(file, doc, present, Error)) return false;
  if (!present) return true;
  for (const auto& login : doc["logins"]) {
    String host;
    if (login.is_object() && login.contains("hostname") && login["hostname"].is_string())
      host = FromUtf8(login["hostname"].get<std::string>());
    Traces.push_back({host, file, true});
  }
  return true;
}

bool CleanFirefoxLogins(const String& Profile, String& Error) {
  json doc;
  bool present = false;
  const String file = Profile + u"logins.json";
  if (!ReadJson(file, doc, present, Error)) return false;
  if (!present || doc["logins"].empty()) return true;
  doc["logins"] = json::array();
  const std::string text = doc.dump();
  uint32_t rc = FileContents::Replace(*Services().Files, file, Bytes(text.begin(), text.end()));
  if (rc != ERROR_SUCCESS) Error = file + u": cannot be written";
  return rc == ERROR_SUCCESS;
}

String FirefoxCacheFolder(const String& Profile) {
  const String roaming = GetAppDataDir(), local = GetLocalAppDataDir();
  String folder = Profile;
  if (!roaming.empty() && !local.empty() && Profile.size() > roaming.size() &&
      SameText(Profile.substr(0, roaming.size()), roaming))
    folder = local + Profile.substr(roaming.size());
  return folder + u"cache2\\";
}

String ParseFirefoxCacheEntryUrl(std::string_view Entry) {
  // The metadata behind the data starts where the last four bytes (big-endian) point.
  size_t from = 0;
  if (Entry.size() >= 4) {
    const auto* b = reinterpret_cast<const uint8_t*>(Entry.data() + Entry.size() - 4);
    const size_t at = (size_t(b[0]) << 24) | (size_t(b[1]) << 16) | (size_t(b[2]) << 8) | b[3];
    if (at < Entry.size()) from = at;
  }
  // The key ends in ":" + the address ("a,:http://...", "O^partitionKey=...,:https://...").
  for (const char* scheme : {":http://", ":https://", ":ftp://"}) {
    const size_t k = Entry.find(scheme, from);
    if (k == std::string_view::npos) continue;
    const size_t end = Entry.find('\0', k);
    return FromUtf8(Entry.substr(k + 1, end == std::string_view::npos ? end : end - k - 1));
  }
  return {};
}

void ScanFirefoxCache(const String& Profile, TBrowserTraces& Traces) {
  StringList names;
  const String entries = FirefoxCacheFolder(Profile) + u"entries\\";
  if (!EnumFiles(entries, names, u"*")) return;
  for (const String& n : names) {
    Bytes data;
    FileContents::Read(*Services().Files, entries + n, data);
    const String url = ParseFirefoxCacheEntryUrl(
        std::string_view(reinterpret_cast<const char*>(data.data()), data.size()));
    Traces.push_back({JoinTraceText(url, SizeText(data.size())), entries + n, !url.empty()});
  }
}

void ScanFirefoxSessions(const String& Profile, TBrowserTraces& Traces) {
  for (const char16_t* name : {u"sessionstore.jsonlz4", u"sessionstore.js", u"sessionstore.bak"})
    if (OrviFileExists(Profile + name)) Traces.push_back({name, Profile + name});
  for (const String& f : FilesBelow(Profile + u"sessionstore-backups"))
    Traces.push_back({ExtractFileName(f), f});
}

bool IsFirefoxProfileLocked(const String& Profile) {
  FileInfo info;
  const String lock = Profile + u"parent.lock";
  if (Services().Files->GetInfo(lock, info) != ERROR_SUCCESS || info.IsReparsePoint()) return false;
  std::unique_ptr<IFileHandle> file;
  uint32_t rc = Services().Files->Open(lock, OpenMode::ReadWrite, file);
  return rc == ERROR_SHARING_VIOLATION || rc == ERROR_LOCK_VIOLATION;
}

}  // namespace tc
