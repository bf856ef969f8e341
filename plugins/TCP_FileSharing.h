// Plug-ins for peer-to-peer clients: download and search histories, statistics and logs of
// Azureus, eMule, eDonkey 2000, Kazaa, Ares, BitTorrent++, WinMX and WarezP2P.
#pragma once
#include "engine/TC_BasePlugin.h"

namespace tc {

class TTCPAzureusStatistics : public TTCPlugin {
 public:
  TTCPAzureusStatistics();
};

// downloads.txt in the eMule folder, plus config\known.met counted by its size.
class TTCPEMuleDownloadMRU : public TTCPlugin {
 public:
  TTCPEMuleDownloadMRU();
  void Scan() override;
  void Clean() override;
};

// config\AC_SearchStrings.dat: one search term per line.
class TTCPEMuleSearchMRU : public TTCPlugin {
 public:
  TTCPEMuleSearchMRU();
  void Scan() override;
  void Clean() override;
};

class TTCPEMuleStatistics : public TTCPlugin {
 public:
  TTCPEMuleStatistics();
};

class TTCPEDonkey2000DownloadMRU : public TTCPlugin {
 public:
  TTCPEDonkey2000DownloadMRU();
  void Scan() override;
  void Clean() override;
};

class TTCPKazaaSearchMRU : public TTCPlugin {
 public:
  TTCPKazaaSearchMRU();
};

class TTCPKazaaDownloadDB : public TTCPlugin {
 public:
  TTCPKazaaDownloadDB();
};

class TTCPKazaaPlaylists : public TTCPlugin {
 public:
  TTCPKazaaPlaylists();
};

class TTCPKazaaLiteDownloadDB : public TTCPlugin {
 public:
  TTCPKazaaLiteDownloadDB();
};

class TTCPAresSearchlist : public TTCPlugin {
 public:
  TTCPAresSearchlist();
};

class TTCPBitTorrentHistory : public TTCPlugin {
 public:
  TTCPBitTorrentHistory();
};

class TTCPWinMXLogfiles : public TTCPlugin {
 public:
  TTCPWinMXLogfiles();
};

class TTCPWarezP2PSearchlist : public TTCPlugin {
 public:
  TTCPWarezP2PSearchlist();
};

class TTCPWarezP2PVerlauf : public TTCPlugin {
 public:
  TTCPWarezP2PVerlauf();
};

// Client folders found at start-up (with trailing delimiter; empty when not installed).
extern String EMuleFolder;
extern String EDonkeyFolder;
// Set at start-up when Kazaa's database folder names the Lite edition.
extern bool KazaaLite;

// The number of search terms an AC_SearchStrings.dat holds: its lines that are not blank.
// Reads UTF-16LE or UTF-8 text by its byte-order mark, anything else as Windows-1252.
int CountSearchStringLines(const Bytes& data);
// The lines that count, trimmed.
StringList SearchStringLines(const Bytes& data);
// The number of known.met traces for a file of `size` bytes: one per 250 bytes, at least one.
int KnownMetTraceCount(int64_t size);
// The program a command line starts: its quoted head, else the longest blank-separated
// prefix that names an existing file, else the whole trimmed line.
String ProgramOfCommand(const String& command);

void TCP_FileSharing_Initialization();
void TCP_FileSharing_Finalization();

}  // namespace tc
