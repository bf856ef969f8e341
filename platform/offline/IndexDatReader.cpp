#include <libmsiecf.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>

#include "platform/helpers/TextCodec.h"
#include "platform/offline/IndexDat.h"
#include "platform/offline/IndexDatLayout.h"

namespace tc {

namespace {

using namespace indexdat;

// libmsiecf opens files by name: the bytes go to an anonymous in-memory file first, so the
// reader sees exactly what the caller holds and nothing on disk is opened twice.
class MemoryFile {
 public:
  explicit MemoryFile(const Bytes& data) : fd_(memfd_create("index.dat", MFD_CLOEXEC)) {
    size_t done = 0;
    while (fd_ >= 0 && done < data.size()) {
      ssize_t n = write(fd_, data.data() + done, data.size() - done);
      if (n <= 0) {
        close(fd_);
        fd_ = -1;
      } else {
        done += static_cast<size_t>(n);
      }
    }
  }
  ~MemoryFile() {
    if (fd_ >= 0) close(fd_);
  }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  bool Ok() const { return fd_ >= 0; }
  std::string Path() const { return "/proc/self/fd/" + std::to_string(fd_); }

 private:
  int fd_;
};

// Owns libmsiecf's handles and error, freeing them on every way out.
struct Library {
  libmsiecf_error_t* error = nullptr;
  libmsiecf_file_t* file = nullptr;
  bool open = false;
  ~Library() {
    if (open) libmsiecf_file_close(file, nullptr);
    if (file) libmsiecf_file_free(&file, nullptr);
    if (error) libmsiecf_error_free(&error);
  }
  std::string Message(const char* what) {
    char text[512] = {};
    if (error) libmsiecf_error_sprint(error, text, sizeof text);
    return std::string(what) + (text[0] ? ": " : "") + text;
  }
};

struct Item {
  libmsiecf_item_t* item = nullptr;
  ~Item() {
    if (item) libmsiecf_item_free(&item, nullptr);
  }
};

String Utf16Of(libmsiecf_item_t* item,
               int (*size)(libmsiecf_item_t*, size_t*, libmsiecf_error_t**),
               int (*get)(libmsiecf_item_t*, uint16_t*, size_t, libmsiecf_error_t**)) {
  size_t n = 0;
  if (size(item, &n, nullptr) != 1 || n == 0) return String();
  std::u16string text(n, u'\0');
  if (get(item, reinterpret_cast<uint16_t*>(text.data()), n, nullptr) != 1) return String();
  text.resize(text.find(u'\0') == String::npos ? n : text.find(u'\0'));
  return text;
}

bool ReadRecord(libmsiecf_item_t* item, const Bytes& data, IndexDatRecord& r) {
  off64_t offset = 0;
  size64_t size = 0;
  if (libmsiecf_item_get_offset_range(item, &offset, &size, nullptr) != 1 || offset < 0 ||
      static_cast<uint64_t>(offset) + size > data.size())
    return false;
  r.Offset = static_cast<uint32_t>(offset);
  r.Size = static_cast<uint32_t>(size);
  r.EntryType = Get32(data, r.Offset + kRecordEntryTypeAt);
  r.Directory = kNoDirectory;
  // libmsiecf allocates the header data from its size field before checking it against the
  // record: a record whose data reaches past its end is read as one with unreadable values.
  if (uint64_t(Get32(data, r.Offset + kRecordDataAt)) + Get32(data, r.Offset + kRecordDataSizeAt) >
      size)
    return true;
  // Values libmsiecf cannot read fail every getter alike, and each failed read leaks inside it.
  size_t probe = 0;
  if (libmsiecf_url_get_utf16_location_size(item, &probe, nullptr) != 1) return true;
  r.Url = Utf16Of(item, libmsiecf_url_get_utf16_location_size, libmsiecf_url_get_utf16_location);
  r.FileName =
      Utf16Of(item, libmsiecf_url_get_utf16_filename_size, libmsiecf_url_get_utf16_filename);
  uint8_t dir = kNoDirectory;
  libmsiecf_url_get_cache_directory_index(item, &dir, nullptr);
  r.Directory = dir;
  libmsiecf_url_get_cached_file_size(item, &r.FileSize, nullptr);
  return true;
}

}  // namespace

bool ReadIndexDat(const Bytes& data, IndexDat& index, std::string& error) {
  index = IndexDat();
  if (data.size() < sizeof kSignature ||
      std::memcmp(data.data(), kSignature, sizeof kSignature) != 0) {
    error = "not an index of version 5.2 (\"Client UrlCache MMF Ver 5.2\")";
    return false;
  }
  // libmsiecf sizes its folder table from this field before it checks it: a count larger
  // than the header's table has room for would have it ask for gigabytes.
  constexpr uint32_t kFolderRoom = (kBitmapAt - kDirectoriesAt) / 12;
  if (Get32(data, kDirectoryCountAt) > kFolderRoom) {
    error = "the header names " + std::to_string(Get32(data, kDirectoryCountAt)) +
            " cache folders; its table has room for " + std::to_string(kFolderRoom);
    return false;
  }
  // libmsiecf walks every block the bitmap marks, one growing table entry each: marks past the
  // index's last block are damage that would keep it busy for minutes.
  const uint64_t inData = data.size() > kFirstBlock ? (data.size() - kFirstBlock) / kBlockSize : 0;
  const uint64_t blocks = std::min<uint64_t>(Get32(data, kTotalBlocksAt), inData);
  for (uint64_t bit = blocks; bit < kMaxBlocks && kBitmapAt + bit / 8 < data.size(); ++bit) {
    if (data[kBitmapAt + bit / 8] & (1u << (bit % 8))) {
      error = "the allocation bitmap marks block " + std::to_string(bit) +
              ", past the index's last block (" + std::to_string(blocks) + ")";
      return false;
    }
  }
  // libmsiecf's record scan steps by a record's size in 32 bits: a record of no blocks, or of
  // so many that their size wraps round, would have it append the same record for ever.
  for (uint64_t at = kFirstBlock; at + kRecordBlocksAt + 4 <= data.size(); at += kBlockSize) {
    static constexpr const char* kRecordSignatures[] = {"URL ", "REDR", "LEAK", "HASH"};
    const uint64_t count = Get32(data, at + kRecordBlocksAt);
    for (const char* signature : kRecordSignatures) {
      if (std::memcmp(data.data() + at, signature, 4) == 0 &&
          (count == 0 || at + count * kBlockSize > data.size())) {
        error = "the record at offset " + std::to_string(at) + " claims " + std::to_string(count) +
                " blocks; the index ends after " + std::to_string(data.size()) + " bytes";
        return false;
      }
    }
  }
  MemoryFile copy(data);
  if (!copy.Ok()) {
    error = "no memory for a copy of the index";
    return false;
  }
  Library lib;
  if (libmsiecf_file_initialize(&lib.file, &lib.error) != 1) {
    error = lib.Message("libmsiecf cannot start");
    return false;
  }
  lib.open = libmsiecf_file_open(lib.file, copy.Path().c_str(), LIBMSIECF_OPEN_READ,
                                 &lib.error) == 1;
  int dirs = 0, items = 0;
  if (!lib.open ||
      libmsiecf_file_get_number_of_cache_directories(lib.file, &dirs, &lib.error) != 1 ||
      libmsiecf_file_get_number_of_items(lib.file, &items, &lib.error) != 1 ||
      libmsiecf_file_get_number_of_recovered_items(lib.file, &index.Recovered, &lib.error) != 1) {
    error = lib.Message("libmsiecf cannot read the index");
    return false;
  }
  for (int i = 0; i < dirs; ++i) {
    char name[16] = {};
    if (libmsiecf_file_get_cache_directory_name(lib.file, i, name, sizeof name, nullptr) != 1)
      name[0] = '\0';
    index.Directories.push_back(FromAnsi(name));
  }
  for (int i = 0; i < items; ++i) {
    Item item;
    IndexDatRecord r;
    uint8_t type = 0;
    // A record libmsiecf cannot make sense of is no entry anyone can use; it stays as it is.
    if (libmsiecf_file_get_item_by_index(lib.file, i, &item.item, nullptr) != 1 ||
        libmsiecf_item_get_type(item.item, &type, nullptr) != 1)
      continue;
    if (type == LIBMSIECF_ITEM_TYPE_REDIRECTED) ++index.Redirects;
    if (type != LIBMSIECF_ITEM_TYPE_URL || !ReadRecord(item.item, data, r)) continue;
    if (r.Directory >= dirs) r.Directory = -1;
    index.Records.push_back(std::move(r));
  }
  return true;
}

}  // namespace tc
