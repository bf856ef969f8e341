#include "platform/offline/OfflineProtectedStorage.h"

#include <cstdio>

#include "platform/helpers/TextCodec.h"

namespace tc {

String OfflineProtectedStorage::GuidText(const Guid& g) {
  char text[40];
  std::snprintf(text, sizeof text, "%08x-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x",
                static_cast<unsigned>(g.Data1), g.Data2, g.Data3, g.Data4[0], g.Data4[1],
                g.Data4[2], g.Data4[3], g.Data4[4], g.Data4[5], g.Data4[6], g.Data4[7]);
  return FromUtf8(text);
}

// Sub-key of `key` named by the GUID, with or without braces.
String OfflineProtectedStorage::Child(const String& key, const String& guidText) {
  StringList subs;
  registry_->EnumKeys(kHKEY_CURRENT_USER, key, subs, RegView::Default);
  for (const String& s : subs) {
    String bare = s.size() == 38 && s.front() == u'{' && s.back() == u'}' ? s.substr(1, 36) : s;
    if (SameText(bare, guidText)) return key + u"\\" + s;
  }
  return String();
}

String OfflineProtectedStorage::SubtypeKey(const Guid& type, const Guid& subtype) {
  StringList users;
  registry_->EnumKeys(kHKEY_CURRENT_USER, kProviderKey, users, RegView::Default);
  for (const String& user : users) {
    String typeKey = Child(String(kProviderKey) + u"\\" + user + u"\\Data", GuidText(type));
    String subKey = typeKey.empty() ? String() : Child(typeKey, GuidText(subtype));
    if (!subKey.empty()) return subKey;
  }
  return String();
}

String OfflineProtectedStorage::ItemKey(const Guid& type, const Guid& subtype, const String& name) {
  // A name is one key: it never reaches below its item or back up.
  if (name.empty() || name.find(u'\\') != String::npos) return String();
  String key = SubtypeKey(type, subtype);
  return key.empty() ? key : key + u"\\" + name;
}

uint32_t OfflineProtectedStorage::Open() {
  uint32_t rc = registry_->KeyExists(kHKEY_CURRENT_USER, kProviderKey, RegView::Default);
  open_ = rc == ERROR_SUCCESS;
  return rc;
}

uint32_t OfflineProtectedStorage::EnumItems(const Guid& type, const Guid& subtype,
                                            StringList& names) {
  names.clear();
  if (!open_) return ERROR_INVALID_HANDLE;
  String key = SubtypeKey(type, subtype);
  if (key.empty()) return ERROR_FILE_NOT_FOUND;
  return registry_->EnumKeys(kHKEY_CURRENT_USER, key, names, RegView::Default);
}

uint32_t OfflineProtectedStorage::ReadItem(const Guid& type, const Guid& subtype,
                                           const String& name, Bytes& data) {
  data.clear();
  if (!open_) return ERROR_INVALID_HANDLE;
  String key = ItemKey(type, subtype, name);
  if (key.empty() || registry_->KeyExists(kHKEY_CURRENT_USER, key, RegView::Default) != 0)
    return ERROR_FILE_NOT_FOUND;
  RegValue value;
  if (registry_->QueryValue(kHKEY_CURRENT_USER, key, u"Item Data", value, RegView::Default) == 0)
    data = std::move(value.Data);
  return ERROR_SUCCESS;
}

uint32_t OfflineProtectedStorage::DeleteItem(const Guid& type, const Guid& subtype,
                                             const String& name) {
  if (!open_) return ERROR_INVALID_HANDLE;
  String key = ItemKey(type, subtype, name);
  return key.empty() ? ERROR_FILE_NOT_FOUND
                     : registry_->DeleteKeyTree(kHKEY_CURRENT_USER, key, RegView::Default);
}

}  // namespace tc
