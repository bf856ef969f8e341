#include "platform/win32/Win32Registry.h"

#include <algorithm>

#include "platform/helpers/TextCodec.h"
#include "platform/win32/Win32Error.h"
#include "platform/win32/Win32Text.h"

#include <windows.h>

namespace {

// Our root numbers to the system's predefined handles. Kept outside namespace tc, where
// HKEY is the project's 32-bit root number rather than the system's handle type.
struct RootEntry {
  uint32_t number;
  HKEY handle;
};
const RootEntry kRoots[] = {
    {0x80000000u, HKEY_CLASSES_ROOT},
    {0x80000001u, HKEY_CURRENT_USER},
    {0x80000002u, HKEY_LOCAL_MACHINE},
    {0x80000003u, HKEY_USERS},
    {0x80000005u, HKEY_CURRENT_CONFIG},
};

HKEY NativeRoot(uint32_t number) {
  for (const auto& r : kRoots)
    if (r.number == number) return r.handle;
  return nullptr;
}

}  // namespace

namespace tc {

namespace {

using NativeKey = ::HKEY;

// Closes the key on scope exit.
class OpenKey {
 public:
  OpenKey() = default;
  OpenKey(const OpenKey&) = delete;
  OpenKey& operator=(const OpenKey&) = delete;
  ~OpenKey() {
    if (key_) RegCloseKey(key_);
  }
  NativeKey* Out() { return &key_; }
  NativeKey Get() const { return key_; }

 private:
  NativeKey key_ = nullptr;
};

REGSAM ViewFlags(RegView view) {
  // A 64-bit process already sees the 64-bit view; a 32-bit build asks for it.
  return view == RegView::Default ? 0 : KEY_WOW64_64KEY;
}

uint32_t Open(HKEY root, const String& key, REGSAM access, RegView view, OpenKey& out) {
  NativeKey native = NativeRoot(root);
  if (!native) return ERROR_INVALID_HANDLE;
  return MapNativeError(
      RegOpenKeyExW(native, Wide(key), 0, access | ViewFlags(view), out.Out()));
}

bool UpperLess(const String& a, const String& b) { return UpperCase(a) < UpperCase(b); }

uint32_t SubKeyNames(NativeKey key, StringList& names) {
  DWORD count = 0, maxLen = 0;
  LSTATUS rc = RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &count, &maxLen, nullptr,
                                nullptr, nullptr, nullptr, nullptr, nullptr);
  if (rc != ERROR_SUCCESS) return MapNativeError(rc);
  std::vector<wchar_t> buf(maxLen + 1);
  for (DWORD i = 0;; ++i) {
    DWORD len = static_cast<DWORD>(buf.size());
    rc = RegEnumKeyExW(key, i, buf.data(), &len, nullptr, nullptr, nullptr, nullptr);
    if (rc == ERROR_MORE_DATA) {  // a longer name was added meanwhile
      buf.resize(buf.size() * 2 + 256);
      --i;
      continue;
    }
    if (rc == ERROR_NO_MORE_ITEMS) break;
    if (rc != ERROR_SUCCESS) return MapNativeError(rc);
    names.push_back(FromWide(buf.data(), len));
  }
  return ERROR_SUCCESS;
}

uint32_t DeleteTree(NativeKey parent, const String& name, RegView view) {
  {
    OpenKey key;
    LSTATUS rc = RegOpenKeyExW(parent, Wide(name), 0,
                               KEY_ENUMERATE_SUB_KEYS | KEY_QUERY_VALUE | ViewFlags(view),
                               key.Out());
    if (rc != ERROR_SUCCESS) return MapNativeError(rc);
    StringList children;
    if (uint32_t e = SubKeyNames(key.Get(), children)) return e;
    for (const auto& child : children)
      if (uint32_t e = DeleteTree(key.Get(), child, view)) return e;
  }
  return MapNativeError(RegDeleteKeyExW(parent, Wide(name), ViewFlags(view), 0));
}

}  // namespace

uint32_t Win32Registry::KeyExists(HKEY root, const String& key, RegView view) {
  OpenKey k;
  return Open(root, key, KEY_QUERY_VALUE, view, k);
}

uint32_t Win32Registry::CreateKey(HKEY root, const String& key, RegView view) {
  NativeKey native = NativeRoot(root);
  if (!native) return ERROR_INVALID_HANDLE;
  OpenKey k;
  return MapNativeError(RegCreateKeyExW(native, Wide(key), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                        KEY_QUERY_VALUE | ViewFlags(view), nullptr, k.Out(),
                                        nullptr));
}

uint32_t Win32Registry::EnumKeys(HKEY root, const String& key, StringList& names,
                                 RegView view) {
  names.clear();
  OpenKey k;
  if (uint32_t e = Open(root, key, KEY_ENUMERATE_SUB_KEYS | KEY_QUERY_VALUE, view, k)) return e;
  uint32_t e = SubKeyNames(k.Get(), names);
  std::stable_sort(names.begin(), names.end(), UpperLess);
  return e;
}

uint32_t Win32Registry::EnumValues(HKEY root, const String& key,
                                   std::vector<RegNamedValue>& values, RegView view) {
  values.clear();
  OpenKey k;
  if (uint32_t e = Open(root, key, KEY_QUERY_VALUE, view, k)) return e;
  DWORD maxName = 0, maxData = 0;
  LSTATUS rc = RegQueryInfoKeyW(k.Get(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                nullptr, &maxName, &maxData, nullptr, nullptr);
  if (rc != ERROR_SUCCESS) return MapNativeError(rc);
  std::vector<wchar_t> name(maxName + 1);
  Bytes data(maxData);
  for (DWORD i = 0;; ++i) {
    DWORD nameLen = static_cast<DWORD>(name.size());
    DWORD dataLen = static_cast<DWORD>(data.size());
    DWORD type = REG_NONE;
    rc = RegEnumValueW(k.Get(), i, name.data(), &nameLen, nullptr, &type,
                       data.empty() ? nullptr : data.data(), &dataLen);
    if (rc == ERROR_MORE_DATA) {  // grown since the size query: ask again for this index
      name.resize(name.size() * 2 + 256);
      data.resize(std::max<size_t>(data.size() * 2, dataLen) + 256);
      --i;
      continue;
    }
    if (rc == ERROR_NO_MORE_ITEMS) break;
    if (rc != ERROR_SUCCESS) return MapNativeError(rc);
    RegNamedValue v;
    v.Name = FromWide(name.data(), nameLen);
    v.Value.Type = type;
    v.Value.Data.assign(data.begin(), data.begin() + dataLen);
    values.push_back(std::move(v));
  }
  return ERROR_SUCCESS;
}

uint32_t Win32Registry::QueryValue(HKEY root, const String& key, const String& name,
                                   RegValue& value, RegView view) {
  OpenKey k;
  if (uint32_t e = Open(root, key, KEY_QUERY_VALUE, view, k)) return e;
  DWORD size = 0, type = REG_NONE;
  LSTATUS rc = RegQueryValueExW(k.Get(), Wide(name), nullptr, &type, nullptr, &size);
  Bytes data;
  while (rc == ERROR_SUCCESS || rc == ERROR_MORE_DATA) {
    data.resize(size);
    rc = RegQueryValueExW(k.Get(), Wide(name), nullptr, &type, data.empty() ? nullptr : data.data(),
                          &size);
    if (rc == ERROR_SUCCESS) {
      data.resize(size);
      value.Type = type;
      value.Data = std::move(data);
      return ERROR_SUCCESS;
    }
  }
  return MapNativeError(rc);
}

uint32_t Win32Registry::SetValue(HKEY root, const String& key, const String& name,
                                 const RegValue& value, RegView view) {
  OpenKey k;
  if (uint32_t e = Open(root, key, KEY_SET_VALUE, view, k)) return e;
  // Windows adds a terminator to string data that lacks one when the character behind the
  // data happens to be NUL; a non-NUL guard behind a copy keeps the bytes exactly as given.
  Bytes data = value.Data;
  if (value.Type == REG_SZ || value.Type == REG_EXPAND_SZ || value.Type == REG_MULTI_SZ)
    data.insert(data.end(), {0xFF, 0xFF});
  return MapNativeError(RegSetValueExW(k.Get(), Wide(name), 0, value.Type,
                                       data.empty() ? nullptr : data.data(),
                                       static_cast<DWORD>(value.Data.size())));
}

uint32_t Win32Registry::DeleteValue(HKEY root, const String& key, const String& name,
                                    RegView view) {
  OpenKey k;
  if (uint32_t e = Open(root, key, KEY_SET_VALUE, view, k)) return e;
  return MapNativeError(RegDeleteValueW(k.Get(), Wide(name)));
}

uint32_t Win32Registry::DeleteKeyTree(HKEY root, const String& key, RegView view) {
  if (!NativeRoot(root)) return ERROR_INVALID_HANDLE;
  String path = key;
  while (!path.empty() && path.back() == kPathDelim) path.pop_back();
  if (path.empty()) return ERROR_ACCESS_DENIED;
  const size_t cut = path.rfind(kPathDelim);
  const String parentPath = cut == String::npos ? String() : path.substr(0, cut);
  const String name = cut == String::npos ? path : path.substr(cut + 1);
  OpenKey parent;
  if (uint32_t e = Open(root, parentPath, KEY_ENUMERATE_SUB_KEYS | KEY_QUERY_VALUE, view, parent))
    return e;
  return DeleteTree(parent.Get(), name, view);
}

uint32_t Win32Registry::Flush() {
  // The system writes its hives itself; flushing the current user's makes the changes
  // durable before the command returns.
  return MapNativeError(RegFlushKey(NativeRoot(kHKEY_CURRENT_USER)));
}

}  // namespace tc
