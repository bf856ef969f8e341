// Shell folders from a table, and a record of the change notifications sent.
#pragma once
#include <map>

#include "platform/Shell.h"

namespace tc {

struct ShellNotification {
  int32_t EventId = 0;
  uint32_t Flags = 0;
  String Path;
};

class MemoryShell : public IShell {
 public:
  // The user profile folder the default table is built on.
  static constexpr char16_t kDefaultProfile[] = u"C:\\Users\\Tester";

  // Starts with the folders of a Vista-style profile for user "Tester" on C:.
  MemoryShell();

  uint32_t GetSpecialFolder(int csidl, String& path) override;
  uint32_t GetKnownFolder(const String& folderId, String& path) override;
  void ChangeNotify(int32_t eventId, uint32_t flags, const String& path) override;

  void SetFolder(int csidl, const String& path);
  void RemoveFolder(int csidl);
  const std::map<int, String>& Folders() const { return folders_; }
  const std::vector<ShellNotification>& Notifications() const { return notifications_; }

 private:
  std::map<int, String> folders_;
  std::vector<ShellNotification> notifications_;
};

}  // namespace tc
