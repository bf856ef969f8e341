// Plug-ins for media players: the recent lists of QuickTime, RealPlayer, Winamp and Windows
// Media Player.
#pragma once
#include "engine/TC_BasePlugin.h"

namespace tc {

class TTCPQuickTimeRecentMovies : public TTCPlugin {
 public:
  TTCPQuickTimeRecentMovies();
};

class TTCPRealPlayerRecentFiles : public TTCPlugin {
 public:
  TTCPRealPlayerRecentFiles();
};

// "RecentURL1" to "RecentURL16" of section "Winamp" in Winamp.ini.
class TTCPWinampRecentURLs : public TTCPlugin {
 public:
  TTCPWinampRecentURLs();
  void Scan() override;
  void Clean() override;
};

class TTCPWinampDefaultPlaylist : public TTCPlugin {
 public:
  TTCPWinampDefaultPlaylist();
};

// "cwd" of section "Winamp" in Winamp.ini.
class TTCPWinampRecentFolder : public TTCPlugin {
 public:
  TTCPWinampRecentFolder();
  void Scan() override;
  void Clean() override;
};

class TTCPWMPlayerRecentFiles : public TTCPlugin {
 public:
  TTCPWMPlayerRecentFiles();
};

// Winamp's program folder, computed once at start-up (with trailing delimiter); empty when
// it holds no Winamp.ini.
extern String WinampFolder;

void TCP_Player_Initialization();
void TCP_Player_Finalization();

}  // namespace tc
