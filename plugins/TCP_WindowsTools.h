// Recent lists of the Windows accessories (group "Windows-Zubehör").
#pragma once
#include "engine/TC_BasePlugin.h"

namespace tc {

class TTCPWordPad : public TTCPlugin {
 public:
  TTCPWordPad();
};

class TTCPMSPaint : public TTCPlugin {
 public:
  TTCPMSPaint();
};

class TTCPRegedit : public TTCPlugin {
 public:
  TTCPRegedit();
};

class TTCPTermSrvClient : public TTCPlugin {
 public:
  TTCPTermSrvClient();
};

class TTCPMovieMakerMRU : public TTCPlugin {
 public:
  TTCPMovieMakerMRU();
};

void TCP_WindowsTools_Initialization();
void TCP_WindowsTools_Finalization();

}  // namespace tc
