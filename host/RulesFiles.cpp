#include "host/RulesFiles.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/TextCodec.h"

namespace tc::host {

namespace fs = std::filesystem;

std::string DefaultRulesFile() {
#ifdef _WIN32
  String appData = GetAppDataDir();  // the live user's, as the shell knows it
  return appData.empty() ? std::string() : ToUtf8(appData + u"tracecleaner\\winapp2.ini");
#else
  const char* config = std::getenv("XDG_CONFIG_HOME");
  if (config && *config) return std::string(config) + "/tracecleaner/winapp2.ini";
  const char* home = std::getenv("HOME");
  if (home && *home) return std::string(home) + "/.config/tracecleaner/winapp2.ini";
  return std::string();
#endif
}

namespace {

fs::path PathOf(const std::string& utf8) {
#ifdef _WIN32
  String wide = FromUtf8(utf8);
  return fs::path(std::wstring(wide.begin(), wide.end()));
#else
  return fs::path(utf8);
#endif
}

bool ReadWhole(const fs::path& path, Bytes& data) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  data.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  return !in.bad();
}

}  // namespace

bool LoadRulesFiles(const Options& options, std::unique_ptr<TRulesCatalogue>& catalogue,
                    std::vector<std::string>& warnings, std::string& error) {
  std::vector<std::string> files = options.Rules;
  if (files.empty()) {
    std::string fallback = DefaultRulesFile();
    std::error_code ec;
    if (fallback.empty() || !fs::is_regular_file(PathOf(fallback), ec)) return true;
    files.push_back(fallback);
  }
  catalogue = std::make_unique<TRulesCatalogue>();
  for (const auto& file : files) {
    Bytes data;
    std::error_code ec;
    if (fs::is_directory(PathOf(file), ec) || !ReadWhole(PathOf(file), data)) {
      error = "cannot read the rules file " + file;
      return false;
    }
    StringList said;
    const bool text = catalogue->Load(FromUtf8(file), data, said);
    for (const auto& w : said) warnings.push_back(ToUtf8(w));
    if (!text) {
      error = "the rules file " + file + " is not a text file";
      return false;
    }
  }
  return true;
}

}  // namespace tc::host
