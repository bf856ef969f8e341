// The Windows the command works on: an offline image, a fresh copy of the demo image, or
// (on Windows) the live system; and the engine started on it.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "host/Options.h"
#include "host/RunLock.h"
#include "platform/Platform.h"

namespace tc {
class OfflineImage;
class TRulesCatalogue;
}

namespace tc::host {

// A hive file and what became of it, or why it cannot be written.
struct HiveState {
  std::string Path;
  bool Written = false;
  std::string Error;
};

class Session {
 public:
  // Opens the backend the options name and starts the engine on it, once no other run works
  // on that Windows (saying so on stderr while it waits). nullptr when the image, a hive or
  // the profile cannot be opened; `error` names the file and the reason.
  // `readOnly`: the run changes nothing, so the bundled demo image is opened in place.
  static std::unique_ptr<Session> Open(const Options& options, bool readOnly, std::string& error);
  ~Session();  // stops the engine, removes a demo copy

  // What is worked on, in words ("offline image /mnt/win (user Anna)").
  const std::string& Describe() const { return description_; }
  const std::vector<std::string>& Warnings() const { return warnings_; }
  bool Offline() const { return image_ != nullptr; }
  // The hives that could not be replaced now (offline only).
  std::vector<HiveState> UnwritableHives() const;
  // The hive files holding a key ("" entries never; empty on the live system).
  std::vector<std::string> HivesOf(HKEY root, const String& key) const;
  // Makes the registry changes durable (offline: writes the changed hives). `hives` says
  // what happened to each hive that had changes.
  bool Flush(std::string& error, std::vector<HiveState>& hives);

 private:
  Session() = default;
  RunLock lock_;  // held from before the first hive is read until the last is written
  std::shared_ptr<OfflineImage> image_;  // null on the live system
  std::shared_ptr<Platform> platform_;
  std::string description_;
  std::vector<std::string> warnings_;
  std::unique_ptr<TRulesCatalogue> rules_;  // plug-ins of the rules files, if any
  std::string demoCopy_;  // removed with the session
  bool started_ = false;
};

// The bundled demo image: installed beside the command, or generated in the build tree.
std::string DemoImageDir();
// A fresh copy of the demo image in a new temporary folder; "" on failure.
std::string CopyDemoImage(std::string& error);
// Removes a demo copy; safe to call again. Also called at exit for a copy still there.
void RemoveDemoCopy(const std::string& dir);

}  // namespace tc::host
