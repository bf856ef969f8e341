// The recent-file and recent-place lists of Office 2013 to 365 (group "Büroprogramme").
#pragma once
#include "engine/TC_BasePlugin.h"

namespace tc {

class TTCPMSOffice2013Recent : public TTCPlugin {
 public:
  TTCPMSOffice2013Recent();
  // Shows the path behind the '*' of each entry instead of its flags and times.
  void Scan() override;
};

// "[F00000000][T01D1...][O00000000]*C:\x.docx" -> "C:\x.docx"; text without '*' as it is.
String OfficeMRUPath(const String& data);

void TCP_MSOffice2013_Initialization();
void TCP_MSOffice2013_Finalization();

}  // namespace tc
