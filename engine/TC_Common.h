// What the host and all plug-ins share besides the plug-in model: the stop request, run
// status, section captions and the weighted progress manager.
#pragma once
#include <map>
#include <memory>

#include "platform/WinTypes.h"

namespace tc {

// Set by the host to abort a run; the engine never resets it.
extern bool StopWorking;
// Set by the host when the user insists (a second stop request): the file being shredded
// is removed without its remaining passes, and nothing further starts.
extern bool StopAtOnce;

enum TRCStatus : uint8_t {
  RCS_NotScannedYet,
  RCS_WaitingForUser,
  RCS_Scanning,
  RCS_ScanAborted,
  RCS_Cleaning
};

inline const String rsTCPSection_Archiver = u"Komprimierungsprogramme";
inline const String rsTCPSection_Browser = u"Browser";
inline const String rsTCPSection_FileSharing = u"Tauschbörsen-Programme";
inline const String rsTCPSection_Office = u"Büroprogramme";
inline const String rsTCPSection_Player = u"Medien-Abspielprogramme";
inline const String rsTCPSection_Windows = u"Windows";
inline const String rsTCPSection_WindowsTools = u"Windows-Zubehör";
inline const String rsTCPSection_Toolbars = u"Browsererweiterungen";
inline const String rsTCPSection_Messenger = u"Chatprogramme";
inline const String rsTCPSection_Tools = u"Tools & Programme";

// Turns the progress of weighted work items into one overall promille value and keeps a
// timing log per item.
class TProgressManager {
 public:
  struct Item {
    int32_t Count = 0;
    int32_t Weight = 0;
    int32_t Progress = 0;  // promille
  };

  TProgressManager() = default;
  ~TProgressManager();
  TProgressManager(const TProgressManager&) = delete;
  TProgressManager& operator=(const TProgressManager&) = delete;

  void AddItem(const String& Name, int Count, int Weight);
  void SetProgress(const String& Name, int Promille);
  // Drops every item; TotalItems keeps counting across clears.
  void Clear();
  void BeginItem(const String& Name);
  void EndItem(const String& Name);

  int TotalItems() const { return TotalItems_; }
  int DoneItems() const;
  int TotalProgress() const;
  const StringList& Log() const { return Log_; }

 private:
  std::vector<std::unique_ptr<Item>> Items_;
  std::map<String, Item*> ItemsByName_;
  int TotalItems_ = 0;
  int64_t TotalWeight_ = 0;
  StringList Log_;
  uint32_t StartTicks_ = 0;
};

// Round half to even, as the floating-point unit does by default.
int64_t RoundHalfEven(long double v);

}  // namespace tc
