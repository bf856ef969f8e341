#include "platform/helpers/FileContents.h"

#include <random>

namespace tc {

namespace {
constexpr size_t kTempDigits = 6;
}  // namespace

uint32_t FileContents::Read(IFileSystem& files, const String& path, Bytes& data) {
  data.clear();
  std::unique_ptr<IFileHandle> file;
  uint32_t rc = files.Open(path, OpenMode::Read, file);
  if (rc != ERROR_SUCCESS) return rc;
  uint64_t size = 0;
  rc = file->GetSize(size);
  if (rc != ERROR_SUCCESS) return rc;
  data.resize(static_cast<size_t>(size));
  size_t total = 0;
  while (total < data.size()) {
    size_t done = 0;
    rc = file->Read(total, data.data() + total, data.size() - total, done);
    if (rc != ERROR_SUCCESS) return rc;
    if (done == 0) break;  // shrank under us
    total += done;
  }
  data.resize(total);
  return ERROR_SUCCESS;
}

uint32_t FileContents::CreateTemp(IFileSystem& files, const String& path, String& temp,
                                  std::unique_ptr<IFileHandle>& file) {
  static thread_local std::mt19937 rng{std::random_device{}()};
  uint32_t rc = ERROR_FILE_EXISTS;
  for (int attempt = 0; attempt < 8 && rc == ERROR_FILE_EXISTS; ++attempt) {
    temp = path + u".~tc";
    for (size_t i = 0; i < kTempDigits; ++i) temp += static_cast<char16_t>(u'0' + rng() % 10);
    rc = files.Open(temp, OpenMode::CreateNew, file);
  }
  return rc;
}

uint32_t FileContents::Replace(IFileSystem& files, const String& path, const Bytes& data) {
  FileInfo original;
  bool hadOriginal = files.GetInfo(path, original) == ERROR_SUCCESS;
  if (hadOriginal && original.IsDirectory()) return ERROR_ACCESS_DENIED;
  String temp;
  uint32_t rc;
  {
    std::unique_ptr<IFileHandle> file;
    rc = CreateTemp(files, path, temp, file);
    if (rc != ERROR_SUCCESS) return rc;
    if (!data.empty()) rc = file->Write(0, data.data(), data.size());
    if (rc == ERROR_SUCCESS) rc = file->Flush();
  }
  if (rc == ERROR_SUCCESS) rc = files.Rename(temp, path);
  if (rc != ERROR_SUCCESS) {
    files.RemoveFile(temp);
    return rc;
  }
  if (hadOriginal) {
    uint32_t keep = original.Attributes & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
    if (keep != 0) files.SetAttributes(path, keep | FILE_ATTRIBUTE_ARCHIVE);
  }
  return ERROR_SUCCESS;
}

}  // namespace tc
