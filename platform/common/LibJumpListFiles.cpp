#include "platform/common/LibJumpListFiles.h"

#define LIBOLECF_HAVE_BFIO
#define LIBLNK_HAVE_BFIO
#include <libbfio.h>
#include <liblnk.h>
#include <libolecf.h>

#include "platform/helpers/ShellItemList.h"

namespace tc {

namespace {

// A read-only bfio handle over bytes the caller keeps alive.
struct MemoryHandle {
  libbfio_handle_t* handle = nullptr;
  explicit MemoryHandle(const Bytes& data) {
    if (libbfio_memory_range_initialize(&handle, nullptr) != 1 ||
        libbfio_memory_range_set(handle, const_cast<uint8_t*>(data.data()), data.size(),
                                 nullptr) != 1) {
      libbfio_handle_free(&handle, nullptr);
      handle = nullptr;
    }
  }
  ~MemoryHandle() {
    if (handle) libbfio_handle_free(&handle, nullptr);
  }
  MemoryHandle(const MemoryHandle&) = delete;
  MemoryHandle& operator=(const MemoryHandle&) = delete;
};

String FromUtf16Buffer(const std::vector<uint16_t>& buffer) {
  String s;
  for (uint16_t c : buffer) {
    if (!c) break;
    s += char16_t(c);
  }
  return s;
}

String StreamName(libolecf_item_t* item) {
  size_t size = 0;
  if (libolecf_item_get_utf16_name_size(item, &size, nullptr) != 1 || size == 0) return String();
  std::vector<uint16_t> buffer(size);
  if (libolecf_item_get_utf16_name(item, buffer.data(), size, nullptr) != 1) return String();
  return FromUtf16Buffer(buffer);
}

bool ReadStream(libolecf_item_t* item, NamedStream& out) {
  uint32_t size = 0;
  if (libolecf_item_get_size(item, &size, nullptr) != 1) return false;
  out.Name = StreamName(item);
  out.Data.assign(size, 0);
  return size == 0 ||
         libolecf_stream_read_buffer_at_offset(item, out.Data.data(), size, 0, nullptr) ==
             ssize_t(size);
}

template <class SizeGetter, class Getter>
String LinkText(liblnk_file_t* file, SizeGetter getSize, Getter get) {
  size_t size = 0;
  if (getSize(file, &size, nullptr) != 1 || size == 0) return String();
  std::vector<uint16_t> buffer(size);
  if (get(file, buffer.data(), size, nullptr) != 1) return String();
  return FromUtf16Buffer(buffer);
}

}  // namespace

uint32_t LibJumpListFiles::ReadStreams(const Bytes& compoundFile,
                                       std::vector<NamedStream>& streams) {
  streams.clear();
  MemoryHandle io(compoundFile);
  libolecf_file_t* file = nullptr;
  if (!io.handle || libolecf_file_initialize(&file, nullptr) != 1) return ERROR_NOT_ENOUGH_MEMORY;
  uint32_t rc = ERROR_INVALID_DATA;
  libolecf_item_t* root = nullptr;
  int count = 0;
  if (libolecf_file_open_file_io_handle(file, io.handle, LIBOLECF_OPEN_READ, nullptr) == 1) {
    if (libolecf_file_get_root_item(file, &root, nullptr) == 1 &&
        libolecf_item_get_number_of_sub_items(root, &count, nullptr) == 1) {
      rc = ERROR_SUCCESS;
      for (int i = 0; i < count && rc == ERROR_SUCCESS; ++i) {
        libolecf_item_t* sub = nullptr;
        uint8_t type = 0;
        if (libolecf_item_get_sub_item(root, i, &sub, nullptr) != 1) {
          rc = ERROR_INVALID_DATA;
          break;
        }
        if (libolecf_item_get_type(sub, &type, nullptr) == 1 && type == LIBOLECF_ITEM_TYPE_STREAM) {
          NamedStream stream;
          if (ReadStream(sub, stream)) streams.push_back(std::move(stream));
          else rc = ERROR_INVALID_DATA;
        }
        libolecf_item_free(&sub, nullptr);
      }
    }
    libolecf_item_free(&root, nullptr);
    libolecf_file_close(file, nullptr);
  }
  libolecf_file_free(&file, nullptr);
  if (rc != ERROR_SUCCESS) streams.clear();
  return rc;
}

uint32_t LibJumpListFiles::ReadLink(const Bytes& link, String& target) {
  target.clear();
  MemoryHandle io(link);
  liblnk_file_t* file = nullptr;
  if (!io.handle || liblnk_file_initialize(&file, nullptr) != 1) return ERROR_NOT_ENOUGH_MEMORY;
  uint32_t rc = ERROR_INVALID_DATA;
  if (liblnk_file_open_file_io_handle(file, io.handle, LIBLNK_OPEN_READ, nullptr) == 1) {
    rc = ERROR_SUCCESS;
    target = LinkText(file, liblnk_file_get_utf16_local_path_size, liblnk_file_get_utf16_local_path);
    if (target.empty())
      target = LinkText(file, liblnk_file_get_utf16_network_path_size,
                        liblnk_file_get_utf16_network_path);
    size_t size = 0;
    if (target.empty() && items_ &&
        liblnk_file_get_link_target_identifier_data_size(file, &size, nullptr) == 1 && size > 0) {
      Bytes list(size);
      StringList names;
      if (liblnk_file_copy_link_target_identifier_data(file, list.data(), size, nullptr) == 1 &&
          items_->ItemNames(list, names) == ERROR_SUCCESS)
        target = JoinItemNames(names);
    }
    liblnk_file_close(file, nullptr);
  }
  liblnk_file_free(&file, nullptr);
  return rc;
}

}  // namespace tc
