#include "platform/common/LibJumpListFiles.h"

#define LIBOLECF_HAVE_BFIO
#define LIBLNK_HAVE_BFIO
#include <libbfio.h>
#include <liblnk.h>
#include <libolecf.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>

#include "platform/helpers/ShellItemList.h"

namespace tc {

namespace {

// A read-only bfio handle over bytes the caller keeps alive. Its reads stop at the end of
// the bytes: libbfio's own memory range copies past its end when a damaged link asks for
// more than is left.
struct Range {
  const uint8_t* data;
  size_t size;
  size_t offset = 0;
};

Range* RangeOf(intptr_t* io) { return reinterpret_cast<Range*>(io); }

int FreeRange(intptr_t** io, libbfio_error_t**) {
  delete RangeOf(*io);
  *io = nullptr;
  return 1;
}
int CloneRange(intptr_t** to, intptr_t* from, libbfio_error_t**) {
  *to = reinterpret_cast<intptr_t*>(new Range{RangeOf(from)->data, RangeOf(from)->size});
  return 1;
}
int OpenRange(intptr_t* io, int, libbfio_error_t**) {
  RangeOf(io)->offset = 0;
  return 1;
}
int CloseRange(intptr_t*, libbfio_error_t**) { return 0; }
ssize_t ReadRange(intptr_t* io, uint8_t* buffer, size_t size, libbfio_error_t**) {
  Range& r = *RangeOf(io);
  if (r.offset >= r.size) return 0;
  const size_t n = std::min(size, r.size - r.offset);
  std::memcpy(buffer, r.data + r.offset, n);
  r.offset += n;
  return static_cast<ssize_t>(n);
}
ssize_t WriteRange(intptr_t*, const uint8_t*, size_t, libbfio_error_t**) { return -1; }
off64_t SeekRange(intptr_t* io, off64_t offset, int whence, libbfio_error_t**) {
  Range& r = *RangeOf(io);
  const off64_t base = whence == SEEK_CUR ? off64_t(r.offset) : whence == SEEK_END ? off64_t(r.size) : 0;
  if (whence != SEEK_SET && whence != SEEK_CUR && whence != SEEK_END) return -1;
  if (offset < -base || offset > INT64_MAX - base) return -1;
  r.offset = static_cast<size_t>(base + offset);
  return base + offset;
}
int RangeExists(intptr_t*, libbfio_error_t**) { return 1; }
int RangeIsOpen(intptr_t*, libbfio_error_t**) { return 1; }
int RangeSize(intptr_t* io, size64_t* size, libbfio_error_t**) {
  *size = RangeOf(io)->size;
  return 1;
}

struct MemoryHandle {
  libbfio_handle_t* handle = nullptr;
  explicit MemoryHandle(const Bytes& data) {
    auto* range = new Range{data.data(), data.size()};
    if (libbfio_handle_initialize(&handle, reinterpret_cast<intptr_t*>(range), FreeRange,
                                  CloneRange, OpenRange, CloseRange, ReadRange, WriteRange,
                                  SeekRange, RangeExists, RangeIsOpen, RangeSize,
                                  LIBBFIO_FLAG_IO_HANDLE_MANAGED, nullptr) != 1) {
      delete range;
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

// A stream is never larger than the file that holds it: a damaged directory entry's size
// would have it allocate gigabytes.
bool ReadStream(libolecf_item_t* item, size_t fileSize, NamedStream& out) {
  uint32_t size = 0;
  if (libolecf_item_get_size(item, &size, nullptr) != 1 || size > fileSize) return false;
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

// Whether every part of a shell link fits in its bytes. liblnk allocates what a size field
// says before it reads, so a damaged link would have it ask for gigabytes.
bool LinkFits(const Bytes& link) {
  auto get = [&](size_t at, size_t width) -> uint64_t {
    uint64_t v = 0;
    if (at + width <= link.size()) std::memcpy(&v, link.data() + at, width);
    return v;
  };
  constexpr size_t kHeader = 0x4C;
  if (link.size() < kHeader || get(0, 4) != kHeader) return false;
  const uint64_t flags = get(20, 4);
  uint64_t at = kHeader;
  if (flags & 0x01) at += 2 + get(at, 2);  // the item list of the target
  if (at > link.size()) return false;
  if (flags & 0x02) {  // link information: its size counts itself
    const uint64_t size = get(at, 4);
    if (size < 4 || at + size > link.size()) return false;
    at += size;
  }
  const uint64_t unit = (flags & 0x80) ? 2 : 1;
  for (uint64_t bit = 0x04; bit <= 0x40; bit <<= 1) {  // name, path, folder, arguments, icon
    if (!(flags & bit)) continue;
    if (at + 2 > link.size()) return false;
    at += 2 + unit * get(at, 2);
    if (at > link.size()) return false;
  }
  while (at + 4 <= link.size()) {  // extra blocks, up to one smaller than 4 bytes
    const uint64_t size = get(at, 4);
    if (size < 4) break;
    if (at + size > link.size()) return false;
    at += size;
  }
  return true;
}

// Whether a compound file's table counts fit in its bytes. libolecf sizes its sector tables
// from these counts before it reads them, so a damaged header would have it ask for gigabytes.
bool CompoundFits(const Bytes& file) {
  constexpr size_t kHeader = 512;
  if (file.size() < kHeader) return false;
  auto get = [&](size_t at, size_t width) {
    uint32_t v = 0;
    std::memcpy(&v, file.data() + at, width);
    return v;
  };
  const uint32_t shift = get(0x1E, 2);
  if (shift < 7 || shift > 16) return false;
  const uint64_t sectors = (file.size() >> shift) + 1;
  // Sector allocation table, short-sector table and master table sector counts.
  for (size_t at : {0x2C, 0x40, 0x48})
    if (get(at, 4) > sectors) return false;
  return true;
}

}  // namespace

uint32_t LibJumpListFiles::ReadStreams(const Bytes& compoundFile,
                                       std::vector<NamedStream>& streams) {
  streams.clear();
  if (!CompoundFits(compoundFile)) return ERROR_INVALID_DATA;
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
          if (ReadStream(sub, compoundFile.size(), stream)) streams.push_back(std::move(stream));
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
  if (!LinkFits(link)) return ERROR_INVALID_DATA;
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
