#include "bench/BenchImage.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <filesystem>

#include "platform/offline/HiveFormat.h"
#include "platform/offline/OfflineImage.h"

namespace fs = std::filesystem;

namespace tc::bench {

TempFolder::TempFolder(const std::string& parent) {
  fs::path base = parent.empty() ? fs::temp_directory_path() : fs::path(parent);
  std::string tmpl = (base / "tc-bench-XXXXXX").string();
  if (mkdtemp(tmpl.data())) path_ = tmpl;
}

TempFolder::~TempFolder() {
  std::error_code ec;
  if (!path_.empty()) fs::remove_all(path_, ec);
}

bool MakeImage(const std::string& dir, std::string& error) {
  fs::path profile = fs::path(dir) / "Users" / kUser;
  std::error_code ec;
  fs::create_directories(profile / "AppData" / "Local", ec);
  if (ec) {
    error = "cannot make " + profile.string() + ": " + ec.message();
    return false;
  }
  if (int err = WriteEmptyHive((profile / "NTUSER.DAT").string(), "ROOT")) {
    error = "cannot write the user hive: " + std::string(strerror(err));
    return false;
  }
  return true;
}

long MakeTree(const std::string& dir, int folders, int files, size_t size) {
  std::string data(size, '\0');
  for (size_t i = 0; i < size; ++i) data[i] = char('a' + i % 26);
  long written = 0;
  auto fill = [&](const std::string& folder) {
    fs::create_directories(folder);
    char name[32];
    for (int i = 0; i < files; ++i) {
      std::snprintf(name, sizeof name, "/f_%06x", i);
      int fd = open((folder + name).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
      if (fd < 0) continue;
      if (write(fd, data.data(), data.size()) == ssize_t(data.size())) ++written;
      close(fd);
    }
  };
  if (folders == 0) {
    fill(dir);
    return written;
  }
  char sub[32];
  for (int d = 0; d < folders; ++d) {
    std::snprintf(sub, sizeof sub, "/%02x", d);
    fill(dir + sub);
  }
  return written;
}

EngineOnImage::EngineOnImage(const std::string& imageDir) {
  image_ = OfflineImage::Open({imageDir, {}, kUser}, error_);
  if (image_) SetServices(image_->MakePlatform());
}

EngineOnImage::~EngineOnImage() {
  if (image_) SetServices(nullptr);
}

std::unique_ptr<BenchPlugin> FilesPlugin(const String& folder, const String& masks,
                                         bool recursive) {
  auto p = std::make_unique<BenchPlugin>();
  p->AddTraceLocation(TLT_FileSystem_Files,
                      new TLD_FileSystem_Files(folder, masks, u"", recursive ? LO_Recursive : 0),
                      TTT_FileName, 0);
  return p;
}

}  // namespace tc::bench
