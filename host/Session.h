// The Windows the command works on: an offline image, a fresh copy of the demo image, or
// (on Windows) the live system; and the engine started on it.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "host/Options.h"
#include "platform/Platform.h"

namespace tc {
class OfflineImage;
}

namespace tc::host {

class Session {
 public:
  // Opens the backend the options name and starts the engine on it. nullptr when the
  // image, a hive or the profile cannot be opened; `error` names the file and the reason.
  static std::unique_ptr<Session> Open(const Options& options, std::string& error);
  ~Session();  // stops the engine

  // What is worked on, in words ("offline image /mnt/win (user Anna)").
  const std::string& Describe() const { return description_; }
  const std::vector<std::string>& Warnings() const { return warnings_; }
  // Makes the registry changes durable (offline: writes the changed hives).
  bool Flush(std::string& error);

 private:
  Session() = default;
  std::shared_ptr<OfflineImage> image_;  // null on the live system
  std::shared_ptr<Platform> platform_;
  std::string description_;
  std::vector<std::string> warnings_;
};

// A fresh copy of the bundled demo image in a new temporary folder; "" on failure.
std::string CopyDemoImage(std::string& error);

}  // namespace tc::host
