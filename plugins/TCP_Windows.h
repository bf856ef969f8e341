// Whole system stores: the recycle bin, the paging files and three event logs (group
// "Windows"). They count traces but list no single items.
#pragma once
#include "engine/TC_BasePlugin.h"

namespace tc {

class TTCPRecycleBin : public TTCPlugin {
 public:
  TTCPRecycleBin();
  ~TTCPRecycleBin() override;
  void Scan() override;
  void Clean() override;
};

class TTCPPagingFile : public TTCPlugin {
 public:
  TTCPPagingFile();
  ~TTCPPagingFile() override;
  void Scan() override;
  void Clean() override;
  // The paging files Windows is set up to use that exist, by path alone.
  static void EnumPagingFiles(StringList& Files);
};

// The event-log plug-ins choose their log by its position in the component's list:
// application 0, security 1, system 2.
class TTCPWindowsEventApps : public TTCPlugin {
 public:
  TTCPWindowsEventApps();
  void Scan() override;
  void Clean() override;
};

class TTCPWindowsEventSecurity : public TTCPlugin {
 public:
  TTCPWindowsEventSecurity();
  void Scan() override;
  void Clean() override;
};

class TTCPWindowsEventSystem : public TTCPlugin {
 public:
  TTCPWindowsEventSystem();
  void Scan() override;
  void Clean() override;
};

void TCP_Windows_Initialization();
void TCP_Windows_Finalization();

}  // namespace tc
