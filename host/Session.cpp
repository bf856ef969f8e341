#include "host/Session.h"

#include <stdlib.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "engine/Traces.h"
#include "host/RulesFiles.h"
#include "platform/helpers/TextCodec.h"
#ifdef _WIN32
#include "platform/win32/Win32Platform.h"
#else
#include "platform/offline/OfflineImage.h"
#endif

namespace tc::host {

namespace fs = std::filesystem;

namespace {
std::string liveDemoCopy;  // the copy an exit path must still remove

#ifndef _WIN32
void RemoveLiveDemoCopy() { RemoveDemoCopy(liveDemoCopy); }
#endif
}  // namespace

std::string DemoImageDir() {
  std::error_code ec;
#ifndef _WIN32
  fs::path exe = fs::read_symlink("/proc/self/exe", ec);
  if (!ec) {
    fs::path installed = exe.parent_path().parent_path() / "share" / "tracecleaner" / "demo-image";
    if (fs::is_directory(installed, ec)) return installed.string();
  }
#endif
#ifdef TC_DEMO_IMAGE_DIR
  return TC_DEMO_IMAGE_DIR;
#else
  return "";
#endif
}

std::string CopyDemoImage(std::string& error) {
#ifdef _WIN32
  error = "this build has no demo image";
  return "";
#else
  std::error_code ec;
  fs::path source = DemoImageDir();
  if (source.empty() || !fs::is_directory(source, ec)) {
    error = source.string() + " is missing: build the project first (it generates the demo image)";
    return "";
  }
  std::string tmpl = (fs::temp_directory_path(ec) / "tracecleaner-demo-XXXXXX").string();
  if (!mkdtemp(tmpl.data())) {
    error = "cannot make a temporary folder for the demo image";
    return "";
  }
  static bool registered = false;
  if (!registered) std::atexit(RemoveLiveDemoCopy);
  registered = true;
  liveDemoCopy = tmpl;
  fs::copy(source, tmpl, fs::copy_options::recursive | fs::copy_options::copy_symlinks, ec);
  if (ec) {
    error = "cannot copy the demo image to " + tmpl + ": " + ec.message();
    RemoveDemoCopy(tmpl);
    return "";
  }
  return tmpl;
#endif
}

void RemoveDemoCopy(const std::string& dir) {
  if (dir.empty()) return;
  std::error_code ec;
  fs::remove_all(dir, ec);
  if (dir == liveDemoCopy) liveDemoCopy.clear();
}

std::unique_ptr<Session> Session::Open(const Options& options, bool readOnly,
                                       std::string& error) {
  std::unique_ptr<Session> s(new Session());
  auto waiting = [&options] {
    std::cerr << "tracecleaner: another run is working on "
              << (options.Image.empty() ? std::string("this Windows system") : options.Image)
              << "; waiting for it to finish" << std::endl;
  };
#ifdef _WIN32
  if (!s->lock_.Take("", !readOnly, waiting, error)) return nullptr;
  s->platform_ = MakeWin32Platform();
  s->description_ = "Working on this Windows system.";
#else
  std::string image = options.Image;
  const bool demo = !options.ImageGiven;
  if (demo && readOnly) {
    image = DemoImageDir();  // nothing is written: no copy needed
  } else if (demo) {
    image = CopyDemoImage(error);
    if (image.empty()) return nullptr;
    s->demoCopy_ = image;
  }
  if (!s->lock_.Take(image, !readOnly, waiting, error)) return nullptr;
  std::shared_ptr<OfflineImage> opened =
      OfflineImage::Open({image, options.Drives, options.User}, error);
  if (!opened) return nullptr;  // the destructor removes the copy
  s->warnings_ = opened->Warnings();
  s->platform_ = opened->MakePlatform();
  s->image_ = std::move(opened);
  std::string user = ToUtf8(s->image_->Profile().UserName);
  if (demo && readOnly)
    s->description_ = "No --image given: the demo image (user " + user + ").";
  else if (demo)
    s->description_ = "No --image given: working on a fresh copy of the demo image in " + image +
                      " (user " + user + "), removed at exit.";
  else
    s->description_ = "Working on the offline Windows image " + image + " (user " + user + ").";
#endif
  SetServices(s->platform_);
  Initialize();
  s->started_ = true;
  if (!LoadRulesFiles(options, s->rules_, s->warnings_, error)) return nullptr;
  return s;
}

Session::~Session() {
  if (started_) {
    rules_.reset();  // its plug-ins leave Plugins before the package stops
    Finalize();
    SetServices(nullptr);
  }
  platform_.reset();
  image_.reset();
  RemoveDemoCopy(demoCopy_);
}

std::vector<HiveState> Session::UnwritableHives() const {
  std::vector<HiveState> out;
#ifndef _WIN32
  if (image_)
    for (const auto& h : image_->Registry()->Unreplaceable()) out.push_back({h.Path, false, h.Error});
#endif
  return out;
}

std::vector<std::string> Session::HivesOf(HKEY root, const String& key) const {
#ifndef _WIN32
  if (image_) return image_->Registry()->HiveFilesOf(root, key);
#else
  (void)root;
  (void)key;
#endif
  return {};
}

bool Session::Flush(std::string& error, std::vector<HiveState>& hives) {
  hives.clear();
#ifndef _WIN32
  if (image_) {
    uint32_t rc = image_->Registry()->Flush();
    for (const auto& h : image_->Registry()->LastFlush()) hives.push_back({h.Path, h.Written, h.Error});
    if (rc == ERROR_SUCCESS) return true;
    error = image_->Registry()->FlushError();
    return false;
  }
#endif
  uint32_t rc = platform_->Registry->Flush();
  if (rc == ERROR_SUCCESS) return true;
  error = "the registry could not be saved (error " + std::to_string(rc) + ")";
  return false;
}

}  // namespace tc::host
