// Files in which Windows 7 and later remember what the user opened: jump lists, recent
// items, thumbnail cache and prefetch files (group "Windows").
#pragma once
#include "engine/TC_BasePlugin.h"

namespace tc {

class TTCPJumpLists : public TTCPlugin {
 public:
  TTCPJumpLists();
  // One trace per document a jump list holds, shown as its target.
  void Scan() override;
  // A jump list with pinned entries is kept and reported as not cleaned.
  void Clean() override;
};

class TTCPRecentItems : public TTCPlugin {
 public:
  TTCPRecentItems();
};

class TTCPThumbnailCache : public TTCPlugin {
 public:
  TTCPThumbnailCache();
  // Explorer holds the caches open: each file in use is removed at the next start.
  void Clean() override;
};

class TTCPWindowsTimeline : public TTCPlugin {
 public:
  TTCPWindowsTimeline();
  // One trace per row of each database's Activity table, shown as the activity's text.
  void Scan() override;
  // Deletes the databases with their -wal and -shm; Windows makes new ones.
  void Clean() override;
};

class TTCPWindowsPrefetch : public TTCPlugin {
 public:
  TTCPWindowsPrefetch();
};

// What a jump list entry is shown as: its target, and why a pinned one stays.
String JumpListEntryText(const String& target, bool pinned);

// What a Timeline activity is shown as: the "displayText" of its payload, else its id.
String TimelineActivityText(const std::string& activityId, const std::string& payload);

void TCP_ModernWindowsFiles_Initialization();
void TCP_ModernWindowsFiles_Finalization();

}  // namespace tc
