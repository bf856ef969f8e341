// Offline images, folder trees and registry keys the benchmarks and the driver work on.
#pragma once
#include <memory>
#include <string>

#include "engine/TC_BasePlugin.h"
#include "platform/Platform.h"

namespace tc {
class OfflineImage;
}

namespace tc::bench {

// A new folder under `parent` (the system's temporary folder when empty), removed with
// everything in it.
class TempFolder {
 public:
  explicit TempFolder(const std::string& parent = "");
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

// The profile every bench image has, and the Windows folder its cache tree lives in.
inline constexpr char kUser[] = "Bench";
inline constexpr char16_t kCacheFolder[] = u"C:\\Users\\Bench\\AppData\\Local\\Cache";
inline constexpr char kCacheHostPath[] = "Users/Bench/AppData/Local/Cache";

// Makes `dir` a minimal offline image: one profile with an empty NTUSER.DAT (no machine
// hives). False with `error` set when it cannot.
bool MakeImage(const std::string& dir, std::string& error);

// Writes `folders` sub-folders of `files` files of `size` bytes each under `dir` (or the
// files directly into `dir` when `folders` is 0). Returns the number of files written.
long MakeTree(const std::string& dir, int folders, int files, size_t size);

// Opens an image and makes it the engine's platform until destroyed.
class EngineOnImage {
 public:
  explicit EngineOnImage(const std::string& imageDir);
  ~EngineOnImage();
  EngineOnImage(const EngineOnImage&) = delete;
  EngineOnImage& operator=(const EngineOnImage&) = delete;
  bool Ok() const { return image_ != nullptr; }
  const std::string& Error() const { return error_; }
  OfflineImage& Image() { return *image_; }

 private:
  std::string error_;
  std::unique_ptr<OfflineImage> image_;
};

// A declarative plug-in built by hand, outside the plug-in list.
class BenchPlugin : public TTCPlugin {
 public:
  BenchPlugin() : TTCPlugin(u"TTCPBench") {}
};

// One file location over `folder` with include masks `masks`, recursive or not.
std::unique_ptr<BenchPlugin> FilesPlugin(const String& folder, const String& masks,
                                         bool recursive);

}  // namespace tc::bench
