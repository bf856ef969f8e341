// Shell folders of an offline profile, read from the user's own registry.
#pragma once
#include <memory>

#include "platform/Registry.h"
#include "platform/Shell.h"

namespace tc {

struct ProfileInfo {
  String UserName;
  String ProfilePath;  // "C:\Users\NAME" or "C:\Documents and Settings\NAME"
  bool VistaLayout = true;  // Users\... (Vista and later) or Documents and Settings (XP)
  String WindowsDir;   // "C:\Windows"
};

// Folders come from User Shell Folders (expanded against the profile), then Shell
// Folders, then the profile layout's defaults; machine-wide folders likewise from
// HKLM. ChangeNotify has no shell to tell and does nothing.
class OfflineShell : public IShell {
 public:
  OfflineShell(std::shared_ptr<IRegistry> registry, ProfileInfo profile)
      : registry_(std::move(registry)), profile_(std::move(profile)) {}
  uint32_t GetSpecialFolder(int csidl, String& path) override;
  // A known folder the user's shell folders name by its id (Downloads), else the table's.
  uint32_t GetKnownFolder(const String& folderId, String& path) override;
  void ChangeNotify(int32_t, uint32_t, const String&) override {}

  // Replaces %NAME% variables the profile defines; unknown ones stay as they are.
  String Expand(const String& text);

 private:
  String Folder(const char16_t* valueName, bool machine, const char16_t* vista,
                const char16_t* xp);
  String EntryFolder(int csidl);
  String Variable(const String& name);
  String ProgramFiles();
  String ProgramFilesX86();

  std::shared_ptr<IRegistry> registry_;
  ProfileInfo profile_;
};

}  // namespace tc
