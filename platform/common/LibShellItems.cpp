#include "platform/common/LibShellItems.h"

#include <libfwsi.h>

#include "platform/helpers/ShellItemList.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

constexpr uint32_t kFileEntryExtension = 0xbeef0004;

// Calls one of libfwsi's UTF-16 getters into a buffer large enough for any item.
template <class Getter>
String Utf16(Getter get) {
  uint16_t buffer[1024] = {};
  libfwsi_error_t* error = nullptr;
  if (get(buffer, std::size(buffer), &error) != 1) {
    libfwsi_error_free(&error);
    return String();
  }
  String s;
  for (size_t i = 0; i < std::size(buffer) && buffer[i]; ++i) s += char16_t(buffer[i]);
  return s;
}

String FileEntryName(libfwsi_item_t* item) {
  int blocks = 0;
  libfwsi_error_t* error = nullptr;
  if (libfwsi_item_get_number_of_extension_blocks(item, &blocks, &error) != 1) {
    libfwsi_error_free(&error);
    blocks = 0;
  }
  for (int i = 0; i < blocks; ++i) {
    libfwsi_extension_block_t* block = nullptr;
    uint32_t signature = 0;
    if (libfwsi_item_get_extension_block(item, i, &block, &error) != 1 ||
        libfwsi_extension_block_get_signature(block, &signature, &error) != 1) {
      libfwsi_error_free(&error);
      continue;
    }
    if (signature != kFileEntryExtension) continue;
    String name = Utf16([&](uint16_t* b, size_t n, libfwsi_error_t** e) {
      return libfwsi_file_entry_extension_get_utf16_long_name(block, b, n, e);
    });
    if (!name.empty()) return name;
  }
  return Utf16([&](uint16_t* b, size_t n, libfwsi_error_t** e) {
    return libfwsi_file_entry_get_utf16_name(item, b, n, e);
  });
}

String RootFolderName(libfwsi_item_t* item) {
  uint8_t guid[16] = {};
  libfwsi_error_t* error = nullptr;
  if (libfwsi_root_folder_get_shell_folder_identifier(item, guid, sizeof guid, &error) != 1) {
    libfwsi_error_free(&error);
    return String();
  }
  const char* name = libfwsi_shell_folder_identifier_get_name(guid);
  return name && std::string_view(name) != "Unknown" ? FromUtf8(name) : String();
}

String ItemName(libfwsi_item_t* item) {
  int type = LIBFWSI_ITEM_TYPE_UNKNOWN;
  libfwsi_error_t* error = nullptr;
  if (libfwsi_item_get_type(item, &type, &error) != 1) libfwsi_error_free(&error);
  switch (type) {
    case LIBFWSI_ITEM_TYPE_ROOT_FOLDER: return RootFolderName(item);
    case LIBFWSI_ITEM_TYPE_VOLUME:
      return Utf16([&](uint16_t* b, size_t n, libfwsi_error_t** e) {
        return libfwsi_volume_get_utf16_name(item, b, n, e);
      });
    case LIBFWSI_ITEM_TYPE_FILE_ENTRY: return FileEntryName(item);
    case LIBFWSI_ITEM_TYPE_NETWORK_LOCATION:
      return Utf16([&](uint16_t* b, size_t n, libfwsi_error_t** e) {
        return libfwsi_network_location_get_utf16_location(item, b, n, e);
      });
    default: return String();
  }
}

}  // namespace

uint32_t LibShellItems::ItemNames(const Bytes& itemList, StringList& names) {
  names.clear();
  std::vector<Bytes> items;
  if (!SplitItemList(itemList, 0, items)) return ERROR_INVALID_DATA;
  for (const Bytes& bytes : items) {
    libfwsi_item_t* item = nullptr;
    libfwsi_error_t* error = nullptr;
    String name;
    if (libfwsi_item_initialize(&item, &error) == 1 &&
        libfwsi_item_copy_from_byte_stream(item, bytes.data(), bytes.size(),
                                           LIBFWSI_CODEPAGE_WINDOWS_1252, &error) == 1)
      name = ItemName(item);
    libfwsi_error_free(&error);
    libfwsi_item_free(&item, nullptr);
    names.push_back(name.empty() ? String(u"?") : name);
  }
  return ERROR_SUCCESS;
}

}  // namespace tc
