// Explorer's lists of Windows 7 and later: program starts, shell dialogs, search box,
// address bar and the folders it opened (group "Windows").
#pragma once
#include "engine/TC_BasePlugin.h"

namespace tc {

class TTCPExplorerUserAssist : public TTCPlugin {
 public:
  TTCPExplorerUserAssist();
  // Every value is reported, its name decoded, not only the program paths of Windows XP.
  void Scan() override;
};

// MRUListEx lists whose order value the shell expects to find: it is emptied, not deleted.
class TTCPShellMRUList : public TTCPlugin {
 public:
  using TTCPlugin::TTCPlugin;
  void Clean() override;
};

class TTCPComDlgPidlMRU : public TTCPShellMRUList {
 public:
  TTCPComDlgPidlMRU();
  // Shows the file or folder the value's shell item list names instead of its bytes.
  void Scan() override;
};

class TTCPExplorerSearchTerms : public TTCPShellMRUList {
 public:
  TTCPExplorerSearchTerms();
};

class TTCPExplorerTypedPaths : public TTCPlugin {
 public:
  TTCPExplorerTypedPaths();
};

class TTCPExplorerShellBags : public TTCPlugin {
 public:
  TTCPExplorerShellBags();
  // One trace per folder of the BagMRU trees, shown as the path its items make.
  void Scan() override;
  // Removes the BagMRU and Bags keys whole.
  void Clean() override;
};

// The preview of a ComDlg32 list value: the item list's last name, behind the program's
// name where the value starts with one.
String ComDlgValueName(const String& key, const Bytes& data);

void TCP_ModernWindowsExplorer_Initialization();
void TCP_ModernWindowsExplorer_Finalization();

}  // namespace tc
