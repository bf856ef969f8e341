#include "platform/common/PendingRenameRebootDeleter.h"

#include "platform/helpers/RegData.h"

namespace tc {

namespace {
constexpr char16_t kNtPrefix[] = u"\\??\\";
}  // namespace

PendingRenameRebootDeleter::PendingRenameRebootDeleter(std::shared_ptr<IRegistry> registry)
    : registry_(std::move(registry)) {}

uint32_t PendingRenameRebootDeleter::ReadPairs(std::vector<std::pair<String, String>>& pairs) {
  pairs.clear();
  RegValue value;
  uint32_t rc = registry_->QueryValue(kHKEY_LOCAL_MACHINE, kKey, kValue, value, RegView::Native);
  if (rc == ERROR_FILE_NOT_FOUND) {
    // Missing value is fine; a missing key is reported.
    return registry_->KeyExists(kHKEY_LOCAL_MACHINE, kKey, RegView::Native);
  }
  if (rc != ERROR_SUCCESS) return rc;
  // Empty strings are targets here, so the list is read pairwise; a lone last string is
  // the list terminator.
  StringList strings = RegData::AllStrings(value.Data);
  for (size_t i = 0; i + 1 < strings.size(); i += 2) {
    pairs.emplace_back(std::move(strings[i]), std::move(strings[i + 1]));
  }
  return ERROR_SUCCESS;
}

uint32_t PendingRenameRebootDeleter::Schedule(const String& path) {
  std::vector<std::pair<String, String>> pairs;
  if (uint32_t rc = ReadPairs(pairs)) return rc;
  pairs.emplace_back(kNtPrefix + path, String());
  StringList strings;
  for (auto& [source, target] : pairs) {
    strings.push_back(std::move(source));
    strings.push_back(std::move(target));
  }
  RegValue value;
  value.Type = REG_MULTI_SZ;
  value.Data = RegData::JoinStrings(strings);
  value.Data.push_back(0);  // the list terminator
  value.Data.push_back(0);
  return registry_->SetValue(kHKEY_LOCAL_MACHINE, kKey, kValue, value, RegView::Native);
}

uint32_t PendingRenameRebootDeleter::Pending(StringList& paths) {
  paths.clear();
  std::vector<std::pair<String, String>> pairs;
  if (uint32_t rc = ReadPairs(pairs)) return rc;
  const String prefix = kNtPrefix;
  for (const auto& [source, target] : pairs) {
    if (!target.empty()) continue;
    paths.push_back(source.compare(0, prefix.size(), prefix) == 0 ? source.substr(prefix.size())
                                                                   : source);
  }
  return ERROR_SUCCESS;
}

}  // namespace tc
