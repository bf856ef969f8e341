// The registry of an offline Windows installation, assembled from its hive files.
#pragma once
#include <memory>
#include <string>

#include "platform/Registry.h"
#include "platform/offline/Hive.h"

namespace tc {

// The hives of one installation; any but User may be missing (null).
struct OfflineHives {
  std::shared_ptr<Hive> User;      // NTUSER.DAT: HKEY_CURRENT_USER
  std::shared_ptr<Hive> Classes;   // UsrClass.dat: HKCU\Software\Classes, over HKCR
  std::shared_ptr<Hive> Software;  // HKEY_LOCAL_MACHINE\SOFTWARE
  std::shared_ptr<Hive> System;    // HKEY_LOCAL_MACHINE\SYSTEM
};

// HKLM holds SOFTWARE and SYSTEM; a missing machine hive is an empty, read-only branch.
// HKLM\SYSTEM\CurrentControlSet is the control set SYSTEM\Select\Current names.
// HKEY_CLASSES_ROOT merges the user's classes over SOFTWARE\Classes: keys and sub-key
// lists from both, values from the user's key where it exists; new keys go to the
// machine, deletions remove the key or value from both. All registry views are the
// same view here. Changes reach the files only through Flush.
class OfflineRegistry : public IRegistry {
 public:
  explicit OfflineRegistry(OfflineHives hives) : hives_(std::move(hives)) {}

  uint32_t KeyExists(HKEY root, const String& key, RegView view) override;
  uint32_t CreateKey(HKEY root, const String& key, RegView view) override;
  uint32_t EnumKeys(HKEY root, const String& key, StringList& names, RegView view) override;
  uint32_t EnumValues(HKEY root, const String& key, std::vector<RegNamedValue>& values,
                      RegView view) override;
  uint32_t QueryValue(HKEY root, const String& key, const String& name, RegValue& value,
                      RegView view) override;
  uint32_t SetValue(HKEY root, const String& key, const String& name, const RegValue& value,
                    RegView view) override;
  uint32_t DeleteValue(HKEY root, const String& key, const String& name, RegView view) override;
  uint32_t DeleteKeyTree(HKEY root, const String& key, RegView view) override;
  uint32_t Flush() override;

  // Why the last Flush failed, naming the hive file ("" after a good one).
  const std::string& FlushError() const { return flushError_; }
  // What the last Flush did with each hive it had to write.
  struct HiveWrite {
    std::string Path;
    bool Written = false;
    std::string Error;
  };
  const std::vector<HiveWrite>& LastFlush() const { return lastFlush_; }
  // The files of the hives that hold `key` (HKEY_CLASSES_ROOT: the user's and the machine's).
  std::vector<std::string> HiveFilesOf(HKEY root, const String& key);
  // The hives that a Flush could not replace now, with why (Hive::CheckReplaceable).
  std::vector<HiveWrite> Unreplaceable() const;

 private:
  struct Place {
    Hive* hive = nullptr;  // null: a machine hive that is missing
    StringList parts;
  };
  struct Found {
    Hive* hive = nullptr;
    Hive::Node node = 0;  // 0 with a null hive: the empty branch of a missing hive
  };
  uint32_t Places(HKEY root, const String& key, std::vector<Place>& places, bool& machineRoot);
  bool Locate(const Place& place, Found& found);
  // The first place where the key exists.
  uint32_t LocateFirst(HKEY root, const String& key, Found& found, bool& machineRoot);
  String CurrentControlSet();

  OfflineHives hives_;
  std::string flushError_;
  std::vector<HiveWrite> lastFlush_;
};

}  // namespace tc
