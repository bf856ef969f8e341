#include "host/Session.h"

#include <stdlib.h>

#include <filesystem>

#include "engine/Traces.h"
#include "platform/TextCodec.h"
#ifdef _WIN32
#include "platform/win32/Win32Platform.h"
#else
#include "platform/offline/OfflineImage.h"
#endif

namespace tc::host {

namespace fs = std::filesystem;

std::string CopyDemoImage(std::string& error) {
#ifdef TC_DEMO_IMAGE_DIR
  std::error_code ec;
  fs::path source = TC_DEMO_IMAGE_DIR;
  if (!fs::is_directory(source, ec)) {
    error = source.string() + " is missing: build the project first (it generates the demo image)";
    return "";
  }
  std::string tmpl = (fs::temp_directory_path(ec) / "tracecleaner-demo-XXXXXX").string();
  if (!mkdtemp(tmpl.data())) {
    error = "cannot make a temporary folder for the demo image";
    return "";
  }
  fs::copy(source, tmpl, fs::copy_options::recursive | fs::copy_options::copy_symlinks, ec);
  if (ec) {
    error = "cannot copy the demo image to " + tmpl + ": " + ec.message();
    return "";
  }
  return tmpl;
#else
  error = "this build has no demo image";
  return "";
#endif
}

std::unique_ptr<Session> Session::Open(const Options& options, std::string& error) {
  std::unique_ptr<Session> s(new Session());
  std::string image = options.Image;
#ifdef _WIN32
  if (!image.empty()) {
    error = "--image: offline images are opened by the Linux build of tracecleaner";
    return nullptr;
  }
  s->platform_ = MakeWin32Platform();
  s->description_ = "Working on this Windows system.";
#else
  bool demo = image.empty();
  if (demo) {
    image = CopyDemoImage(error);
    if (image.empty()) return nullptr;
  }
  std::shared_ptr<OfflineImage> opened =
      OfflineImage::Open({image, options.Drives, options.User}, error);
  if (!opened) return nullptr;
  s->warnings_ = opened->Warnings();
  s->platform_ = opened->MakePlatform();
  s->image_ = std::move(opened);
  std::string user = ToUtf8(s->image_->Profile().UserName);
  s->description_ = demo ? "No --image given: working on a fresh copy of the demo image in " +
                               image + " (user " + user + ")."
                         : "Working on the offline Windows image " + image + " (user " +
                               user + ").";
#endif
  SetServices(s->platform_);
  Initialize();
  return s;
}

Session::~Session() {
  Finalize();
  SetServices(nullptr);
}

bool Session::Flush(std::string& error) {
#ifndef _WIN32
  if (image_) {
    if (image_->Registry()->Flush() == ERROR_SUCCESS) return true;
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
