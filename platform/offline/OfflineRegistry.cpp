#include "platform/offline/OfflineRegistry.h"

#include <algorithm>
#include <cstdio>

#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

StringList SplitKey(const String& key) {
  StringList parts;
  size_t start = 0;
  while (start <= key.size()) {
    size_t end = key.find(u'\\', start);
    if (end == String::npos) end = key.size();
    if (end > start) parts.push_back(key.substr(start, end - start));
    start = end + 1;
  }
  return parts;
}

void SortKeyNames(StringList& names) {
  std::stable_sort(names.begin(), names.end(), [](const String& a, const String& b) {
    return UpperCase(a) < UpperCase(b);
  });
}

}  // namespace

String OfflineRegistry::CurrentControlSet() {
  Hive* system = hives_.System.get();
  if (!system) return String();
  Hive::Node select = system->Child(system->Root(), u"Select");
  const std::vector<RegNamedValue>* values = nullptr;
  if (!select || system->Values(select, values) != ERROR_SUCCESS) return String();
  for (const auto& v : *values) {
    if (SameText(v.Name, u"Current") && v.Value.Type == REG_DWORD && v.Value.Data.size() >= 4) {
      const auto& d = v.Value.Data;
      uint32_t n = uint32_t(d[0]) | uint32_t(d[1]) << 8 | uint32_t(d[2]) << 16 |
                   uint32_t(d[3]) << 24;
      char name[32];
      std::snprintf(name, sizeof name, "ControlSet%03u", n);
      return FromUtf8(name);
    }
  }
  return String();
}

uint32_t OfflineRegistry::Places(HKEY root, const String& key, std::vector<Place>& places,
                                 bool& machineRoot) {
  places.clear();
  machineRoot = false;
  StringList parts = SplitKey(key);
  auto tail = [&](size_t from) { return StringList(parts.begin() + long(from), parts.end()); };
  switch (root) {
    case kHKEY_CURRENT_USER:
      if (hives_.Classes && parts.size() >= 2 && SameText(parts[0], u"Software") &&
          SameText(parts[1], u"Classes"))
        places.push_back({hives_.Classes.get(), tail(2)});
      else
        places.push_back({hives_.User.get(), parts});
      return ERROR_SUCCESS;
    case kHKEY_LOCAL_MACHINE:
      if (parts.empty()) {
        machineRoot = true;
      } else if (SameText(parts[0], u"SOFTWARE")) {
        places.push_back({hives_.Software.get(), tail(1)});
      } else if (SameText(parts[0], u"SYSTEM")) {
        Place p{hives_.System.get(), tail(1)};
        if (!p.parts.empty() && SameText(p.parts[0], u"CurrentControlSet")) {
          String set = CurrentControlSet();
          if (!set.empty()) p.parts[0] = set;
        }
        places.push_back(std::move(p));
      }
      return ERROR_SUCCESS;
    case kHKEY_CLASSES_ROOT: {
      Place user{hives_.Classes.get(), parts};
      if (!user.hive) {
        user.hive = hives_.User.get();
        user.parts.insert(user.parts.begin(), {u"Software", u"Classes"});
      }
      places.push_back(std::move(user));
      Place machine{hives_.Software.get(), parts};
      machine.parts.insert(machine.parts.begin(), u"Classes");
      if (machine.hive) places.push_back(std::move(machine));
      return ERROR_SUCCESS;
    }
    default:
      return ERROR_INVALID_HANDLE;
  }
}

bool OfflineRegistry::Locate(const Place& place, Found& found) {
  found = Found{};
  if (!place.hive) return place.parts.empty();  // the empty branch of a missing hive
  Hive::Node node = place.hive->Root();
  for (const auto& part : place.parts) {
    node = place.hive->Child(node, part);
    if (!node) return false;
  }
  found = Found{place.hive, node};
  return true;
}

uint32_t OfflineRegistry::LocateFirst(HKEY root, const String& key, Found& found,
                                      bool& machineRoot) {
  std::vector<Place> places;
  uint32_t rc = Places(root, key, places, machineRoot);
  if (rc != ERROR_SUCCESS || machineRoot) return rc;
  for (const auto& p : places)
    if (Locate(p, found)) return ERROR_SUCCESS;
  return ERROR_FILE_NOT_FOUND;
}

uint32_t OfflineRegistry::KeyExists(HKEY root, const String& key, RegView) {
  Found found;
  bool machineRoot;
  return LocateFirst(root, key, found, machineRoot);
}

uint32_t OfflineRegistry::CreateKey(HKEY root, const String& key, RegView view) {
  std::vector<Place> places;
  bool machineRoot;
  uint32_t rc = Places(root, key, places, machineRoot);
  if (rc != ERROR_SUCCESS || machineRoot) return rc;
  if (places.empty()) return ERROR_ACCESS_DENIED;  // HKLM holds only its hives
  if (KeyExists(root, key, view) == ERROR_SUCCESS) return ERROR_SUCCESS;
  const Place& target = places.back();  // for HKCR: the machine's classes, as Windows does
  if (!target.hive) return ERROR_ACCESS_DENIED;
  Hive::Node node = target.hive->Root();
  for (const auto& part : target.parts) {
    Hive::Node child = target.hive->Child(node, part);
    if (!child) {
      rc = target.hive->AddChild(node, part, child);
      if (rc != ERROR_SUCCESS) return rc;
    }
    node = child;
  }
  return ERROR_SUCCESS;
}

uint32_t OfflineRegistry::EnumKeys(HKEY root, const String& key, StringList& names, RegView) {
  names.clear();
  std::vector<Place> places;
  bool machineRoot;
  uint32_t rc = Places(root, key, places, machineRoot);
  if (rc != ERROR_SUCCESS) return rc;
  if (machineRoot) {
    names = {u"SOFTWARE", u"SYSTEM"};
    return ERROR_SUCCESS;
  }
  bool any = false;
  for (const auto& p : places) {
    Found found;
    if (!Locate(p, found)) continue;
    any = true;
    if (!found.hive) continue;
    StringList part;
    rc = found.hive->ChildNames(found.node, part);
    if (rc != ERROR_SUCCESS) return rc;
    if (found.hive == hives_.System.get() && found.node == found.hive->Root()) {
      String set = CurrentControlSet();
      if (!set.empty()) part.push_back(u"CurrentControlSet");
    }
    for (auto& n : part) {
      bool seen = std::any_of(names.begin(), names.end(),
                              [&](const String& have) { return SameText(have, n); });
      if (!seen) names.push_back(std::move(n));
    }
  }
  if (!any) return ERROR_FILE_NOT_FOUND;
  SortKeyNames(names);
  return ERROR_SUCCESS;
}

uint32_t OfflineRegistry::EnumValues(HKEY root, const String& key,
                                     std::vector<RegNamedValue>& values, RegView) {
  values.clear();
  Found found;
  bool machineRoot;
  uint32_t rc = LocateFirst(root, key, found, machineRoot);
  if (rc != ERROR_SUCCESS || machineRoot || !found.hive) return rc;
  const std::vector<RegNamedValue>* stored = nullptr;
  rc = found.hive->Values(found.node, stored);
  if (rc == ERROR_SUCCESS) values = *stored;
  return rc;
}

uint32_t OfflineRegistry::QueryValue(HKEY root, const String& key, const String& name,
                                     RegValue& value, RegView) {
  Found found;
  bool machineRoot;
  uint32_t rc = LocateFirst(root, key, found, machineRoot);
  if (rc != ERROR_SUCCESS) return rc;
  if (machineRoot || !found.hive) return ERROR_FILE_NOT_FOUND;
  const RegValue* stored = nullptr;
  rc = found.hive->FindValue(found.node, name, stored);
  if (rc != ERROR_SUCCESS) return rc;
  if (!stored) return ERROR_FILE_NOT_FOUND;
  value = *stored;
  return ERROR_SUCCESS;
}

uint32_t OfflineRegistry::SetValue(HKEY root, const String& key, const String& name,
                                   const RegValue& value, RegView) {
  Found found;
  bool machineRoot;
  uint32_t rc = LocateFirst(root, key, found, machineRoot);
  if (rc != ERROR_SUCCESS) return rc;
  if (machineRoot || !found.hive) return ERROR_ACCESS_DENIED;
  return found.hive->SetValue(found.node, name, value);
}

uint32_t OfflineRegistry::DeleteValue(HKEY root, const String& key, const String& name,
                                      RegView) {
  std::vector<Place> places;
  bool machineRoot;
  uint32_t rc = Places(root, key, places, machineRoot);
  if (rc != ERROR_SUCCESS) return rc;
  bool deleted = false;
  for (const auto& p : places) {
    Found found;
    if (!Locate(p, found) || !found.hive) continue;
    rc = found.hive->DeleteValue(found.node, name);
    if (rc == ERROR_FILE_NOT_FOUND) continue;
    if (rc != ERROR_SUCCESS) return rc;
    deleted = true;
  }
  return deleted ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
}

uint32_t OfflineRegistry::DeleteKeyTree(HKEY root, const String& key, RegView) {
  std::vector<Place> places;
  bool machineRoot;
  uint32_t rc = Places(root, key, places, machineRoot);
  if (rc != ERROR_SUCCESS) return rc;
  if (machineRoot || SplitKey(key).empty()) return ERROR_ACCESS_DENIED;
  bool deleted = false, denied = false;
  for (const auto& p : places) {
    Found found;
    if (!Locate(p, found)) continue;
    if (!found.hive) {
      denied = true;
      continue;
    }
    rc = found.hive->DeleteTree(found.node);
    if (rc == ERROR_ACCESS_DENIED) {
      denied = true;
      continue;
    }
    if (rc != ERROR_SUCCESS) return rc;
    deleted = true;
  }
  if (deleted) return ERROR_SUCCESS;
  return denied ? ERROR_ACCESS_DENIED : ERROR_FILE_NOT_FOUND;
}

std::vector<std::string> OfflineRegistry::HiveFilesOf(HKEY root, const String& key) {
  std::vector<Place> places;
  bool machineRoot = false;
  std::vector<std::string> files;
  if (Places(root, key, places, machineRoot) != ERROR_SUCCESS) return files;
  for (const auto& p : places)
    if (p.hive) files.push_back(p.hive->Path());
  return files;
}

std::vector<OfflineRegistry::HiveWrite> OfflineRegistry::Unreplaceable() const {
  std::vector<HiveWrite> refused;
  for (Hive* h : {hives_.User.get(), hives_.Classes.get(), hives_.Software.get(),
                  hives_.System.get()}) {
    std::string error;
    if (h && h->CheckReplaceable(error) != ERROR_SUCCESS) refused.push_back({h->Path(), false, error});
  }
  return refused;
}

uint32_t OfflineRegistry::Flush() {
  flushError_.clear();
  lastFlush_.clear();
  uint32_t first = ERROR_SUCCESS;
  for (Hive* h : {hives_.User.get(), hives_.Classes.get(), hives_.Software.get(),
                  hives_.System.get()}) {
    if (!h) continue;
    std::string error;
    const bool dirty = h->Dirty();
    uint32_t rc = h->Commit(error);
    if (dirty) lastFlush_.push_back({h->Path(), rc == ERROR_SUCCESS, error});
    if (rc != ERROR_SUCCESS && first == ERROR_SUCCESS) {
      first = rc;
      flushError_ = error;
    }
  }
  return first;
}

}  // namespace tc
