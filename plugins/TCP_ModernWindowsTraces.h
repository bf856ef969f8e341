// What Windows 7 to 11 and Office 2007 to 365 leave beside the lists the other units clean:
// typing times, compatibility records, program names, trusted documents, places, streams,
// consoles, network shares and the last link followed from Office.
#pragma once
#include "engine/TC_BasePlugin.h"
#include "plugins/TCP_ModernWindowsExplorer.h"
#include "platform/Registry.h"

namespace tc {

// Every value of its keys that the filter takes is one trace, named after what it records;
// the rest of the key (a language, a purge time) stays.
class TTCPValueNamesPlugin : public TTCPlugin {
 public:
  using TTCPlugin::TTCPlugin;
  void Scan() override;
  void Clean() override;

 protected:
  void AddKey(const String& key, TTraceTargetType target = TTT_FileOrFolderName);
  virtual bool IsTrace(const String& /*name*/, const RegValue& /*value*/) const { return true; }
  virtual String Shown(const String& name, const RegValue& /*value*/) const { return name; }
};

class TTCPIETypedURLsTime : public TTCPValueNamesPlugin {
 public:
  TTCPIETypedURLsTime();

 protected:
  bool IsTrace(const String& name, const RegValue& value) const override;
  String Shown(const String& name, const RegValue& value) const override;
};

class TTCPCompatibilityAssistant : public TTCPValueNamesPlugin {
 public:
  TTCPCompatibilityAssistant();
};

class TTCPShellMuiCache : public TTCPValueNamesPlugin {
 public:
  TTCPShellMuiCache();

 protected:
  // Resource strings ("@shell32.dll,-9216") and "LangID" name no program the user ran.
  bool IsTrace(const String& name, const RegValue& value) const override;
};

class TTCPMSOfficeTrustedDocuments : public TTCPValueNamesPlugin {
 public:
  TTCPMSOfficeTrustedDocuments();

 protected:
  String Shown(const String& name, const RegValue& value) const override;
};

class TTCPMSOffice2007Places : public TTCPlugin {
 public:
  TTCPMSOffice2007Places();
  // Shows the path behind the '*' of each entry.
  void Scan() override;
};

class TTCPExplorerStreamMRU : public TTCPShellMRUList {
 public:
  TTCPExplorerStreamMRU();
  // Shows the folder path the value's shell item list makes.
  void Scan() override;
};

class TTCPMSOfficeHyperlink : public TTCPValueNamesPlugin {
 public:
  TTCPMSOfficeHyperlink();

 protected:
  // Only the address Office wrote; the number some installations set there is a setting.
  bool IsTrace(const String& name, const RegValue& value) const override;
  String Shown(const String& name, const RegValue& value) const override;
};

class TTCPMMCRecentFiles : public TTCPlugin {
 public:
  TTCPMMCRecentFiles();
};

// The "##server#share" keys of MountPoints2; the volumes' keys hold no name and stay.
class TTCPExplorerMountPoints : public TTCPlugin {
 public:
  TTCPExplorerMountPoints();
  // Shows each share as "\\server\share".
  void Scan() override;
  void Clean() override;
};

// A FILETIME value as "2016-10-05 09:47:50" (UTC); empty when it is no time or zero.
String FileTimeText(const Bytes& data);

void TCP_ModernWindowsTraces_Initialization();
void TCP_ModernWindowsTraces_Finalization();

}  // namespace tc
