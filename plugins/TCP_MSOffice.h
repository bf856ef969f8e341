// Plug-ins for Microsoft Office 9.0 to 14.0: the applications' recent-file lists, the
// shortcuts of Office's recent folder, Outlook's address completion file and its secure
// temporary folder.
#pragma once
#include "engine/TC_BasePlugin.h"

namespace tc {

inline const String rsTCPApp_MSOffice = u"Microsoft Office";
inline const String rsTCPApp_Access = u"Microsoft Office Access";
inline const String rsTCPApp_Excel = u"Microsoft Office Excel";
inline const String rsTCPApp_PowerPoint = u"Microsoft Office PowerPoint";
inline const String rsTCPApp_Word = u"Microsoft Office Word";
inline const String rsTCPApp_Outlook = u"Microsoft Office Outlook";

class TTCPMSOfficeRecentResources : public TTCPlugin {
 public:
  TTCPMSOfficeRecentResources();
};

class TTCPMSOfficeAccess : public TTCPlugin {
 public:
  TTCPMSOfficeAccess();
};

class TTCPMSOfficeExcel : public TTCPlugin {
 public:
  TTCPMSOfficeExcel();
};

class TTCPMSOfficePowerPoint : public TTCPlugin {
 public:
  TTCPMSOfficePowerPoint();
};

class TTCPMSOfficeWord : public TTCPlugin {
 public:
  TTCPMSOfficeWord();
};

class TTCPMSOfficeImaging : public TTCPlugin {
 public:
  TTCPMSOfficeImaging();
};

// The first *.NK2 file of the Outlook folder; its addresses are estimated by the '@' signs.
class TTCPOutlookAutoFill : public TTCPlugin {
 public:
  TTCPOutlookAutoFill();
  void Scan() override;
  void Clean() override;

  String OutlookFolder;  // application-data folder + "Microsoft\Outlook\"

 private:
  String FirstNK2File() const;
};

class TTCPOutlookSecurityGlyphs : public TTCPlugin {
 public:
  TTCPOutlookSecurityGlyphs();
};

class TTCPOutlookSecurityFiles : public TTCPlugin {
 public:
  TTCPOutlookSecurityFiles();
};

// Office's recent folder, computed once at start-up (with trailing delimiter, or empty).
extern String OfficeRecentFolder;

// The address estimate of an NK2 file's bytes: the parts its text splits into at '@'.
int CountNK2Addresses(const Bytes& data);

void TCP_MSOffice_Initialization();
void TCP_MSOffice_Finalization();

}  // namespace tc
