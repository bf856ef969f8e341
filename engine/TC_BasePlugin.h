// The trace model: what a usage trace is, where traces live, the plug-in base class and the
// global registry of plug-ins.
#pragma once
#include <functional>
#include <memory>

#include "platform/helpers/Orvishredderclass.h"
#include "platform/helpers/Timer.h"
#include "platform/helpers/WildcardMatcher.h"
#include "platform/WinTypes.h"

namespace tc {

class TTCPlugin;

enum TTraceLocationType : uint8_t {
  TLT_Registry_AllValues,
  TLT_Registry_AllKeys,
  TLT_Registry_NumberedNames,
  TLT_Registry_NumberedKeys,
  TLT_Registry_StringValue,
  TLT_Registry_MRUList,
  TLT_Registry_MRUListEx,
  TLT_FileSystem_Files
};

enum TTraceTargetType : uint8_t {
  TTT_Unknown,
  TTT_FileName,
  TTT_ParamFileName,
  TTT_FileOrFolderName,
  TTT_RunCMD,
  TTT_UserAssist,
  TTT_URL
};

enum TTraceFlag : uint8_t {
  TF_Clearable_Per_Item,
  TF_Deletable_Per_Item,
  TF_Needs_Fix_After_Cleaning,
  TF_Zero_Based,
  TF_StartMenu_SubFolder,
  TF_Consider_Dropping_Last_Directory,
  TF_RegKey64,
  TF_RegNative
};

// A set of TTraceFlag: bit n stands for flag n (6 = Deletable + Needs fix).
using TTraceFlags = uint8_t;
constexpr TTraceFlags FlagOf(TTraceFlag f) { return static_cast<TTraceFlags>(1u << f); }
constexpr bool HasFlag(TTraceFlags set, TTraceFlag f) { return (set & FlagOf(f)) != 0; }

enum TTraceSourceType : uint8_t {
  TST_Unknown,
  TST_Registry_Value,
  TST_Registry_Key,
  TST_FileSystem_File
};

enum TTraceLocationWarning : uint8_t { TLW_None, TLW_Warn, TLW_Critical };

// Location options; the scan tests contained bits, the cleaner tests equality.
inline constexpr uint32_t LO_CountEmptyValues = 0x10001;
inline constexpr uint32_t LO_MultiString = 0x40001;
inline constexpr uint32_t LO_BinaryText = 0x16001;
inline constexpr uint32_t LO_StringList = 0x20001;
inline constexpr uint32_t LO_NonEmptyFilesOnly = 0x32001;
inline constexpr uint32_t LO_Recursive = 0x80001;

struct TTraceSourceData {
  HKEY RootKey = kNoRootKey;
  String Key;
  String ValueName;
  String FileName;
};

struct TNotDeletedTraces {
  String PluginID;
  String PluginCaption;
  int32_t Count = 0;
  TTCPlugin* Plugin = nullptr;  // not owned
};

// One trace a clean meant to remove and could not. Kept apart from TNotDeletedTraces,
// which counts the traces kept on purpose (cookies on a keep-list).
struct TCleanFailure {
  String PluginID;
  TTCPlugin* Plugin = nullptr;  // not owned
  TTraceSourceType SourceType = TST_Unknown;
  TTraceSourceData Source;      // where the trace is, as the scan reports it
  String Operation;             // what failed: "overwrite file", "remove file", "delete value", ...
  uint32_t ErrorCode = 0;       // the system's reason, as a Windows error code
  String Reason;                // that code in words
  bool Scheduled = false;       // registered instead for removal at the next start of Windows
};

// How a plug-in's clean ended.
enum TCleanOutcome : uint8_t {
  CO_Cleaned,        // nothing left that was meant to go
  CO_PartlyCleaned,  // some traces removed, some left
  CO_Failed,         // nothing removed, or the clean raised before removing anything
  CO_Skipped         // not cleaned at all (not chosen, nothing found, or stopped before it)
};

// `Before`: traces the scan found; `Left`: traces that should have gone and are still there
// (failures not scheduled for the next start, or a later scan's count beyond the kept ones).
TCleanOutcome CleanOutcome(bool Ran, bool Raised, int Before, int Left);

using TScanProgressEvent =
    std::function<void(TTCPlugin* Sender, int Promille, const String& DisplayString,
                       bool MustDisplay)>;
using TScanTraceFoundEvent = std::function<void(
    TTCPlugin* Sender, TTraceSourceType TraceSourceType, const TTraceSourceData& TraceSourceData,
    TTraceTargetType TraceTargetType, TTraceFlags TraceFlags, const String& TraceTargetData)>;
using TCleanProgressEvent =
    std::function<void(TTCPlugin* Sender, int Promille, const String& ActionCaption,
                       const String& SubCaption, bool MustDisplay)>;
using TOnSecureDeleteEvent = std::function<void(TTCPlugin* Sender, int Percent)>;
// A trace the scan counts without raising OnScanTraceFound for it (walked sub-folders,
// counted keys and list items, records of an application's file), so that a host can still
// show every trace a clean would remove. `Size` is a file's size, -1 where unknown.
using TPreviewTraceEvent = std::function<void(
    TTCPlugin* Sender, TTraceSourceType TraceSourceType, const TTraceSourceData& TraceSourceData,
    TTraceTargetType TraceTargetType, TTraceFlags TraceFlags, const String& TraceTargetData,
    int64_t Size)>;

// Common base of the descriptors, only so a location can own any of them.
struct TLD_Base {
  virtual ~TLD_Base() = default;
};

struct TLD_Registry_AllValues : TLD_Base {
  TLD_Registry_AllValues(HKEY RootKey, String Key, uint32_t Options)
      : RootKey(RootKey), Key(std::move(Key)), Options(Options) {}
  const HKEY RootKey;
  const String Key;
  const uint32_t Options;
};

struct TLD_Registry_AllKeys : TLD_Base {
  TLD_Registry_AllKeys(HKEY RootKey, String Key, uint32_t Options)
      : RootKey(RootKey), Key(std::move(Key)), Options(Options) {}
  const HKEY RootKey;
  const String Key;
  const uint32_t Options;
};

struct TLD_Registry_NumberedNames : TLD_Base {
  TLD_Registry_NumberedNames(HKEY RootKey, String Key, String NamePrefix, uint32_t Options)
      : RootKey(RootKey), Key(std::move(Key)), NamePrefix(std::move(NamePrefix)), Options(Options) {}
  const HKEY RootKey;
  const String Key;
  const String NamePrefix;
  const uint32_t Options;
};

struct TLD_Registry_NumberedKeys : TLD_Base {
  TLD_Registry_NumberedKeys(HKEY RootKey, String Key, String NamePrefix, uint32_t Options)
      : RootKey(RootKey), Key(std::move(Key)), NamePrefix(std::move(NamePrefix)), Options(Options) {}
  const HKEY RootKey;
  const String Key;
  const String NamePrefix;
  const uint32_t Options;
};

struct TLD_Registry_StringValue : TLD_Base {
  TLD_Registry_StringValue(HKEY RootKey, String Key, String ValueName, String Separator,
                           uint32_t Options)
      : RootKey(RootKey),
        Key(std::move(Key)),
        ValueName(std::move(ValueName)),
        Separator(std::move(Separator)),
        Options(Options) {}
  const HKEY RootKey;
  const String Key;
  const String ValueName;
  const String Separator;
  const uint32_t Options;
};

struct TLD_Registry_MRUList : TLD_Base {
  TLD_Registry_MRUList(HKEY RootKey, String Key, uint32_t Options)
      : RootKey(RootKey), Key(std::move(Key)), Options(Options) {}
  const HKEY RootKey;
  const String Key;
  const uint32_t Options;
};

struct TLD_Registry_MRUListEx : TLD_Base {
  TLD_Registry_MRUListEx(HKEY RootKey, String Key, uint32_t Options)
      : RootKey(RootKey), Key(std::move(Key)), Options(Options) {}
  const HKEY RootKey;
  const String Key;
  const uint32_t Options;
};

struct TLD_FileSystem_Files : TLD_Base {
  TLD_FileSystem_Files(String Folder, String IncludeMasks, String ExcludeMasks, uint32_t Options)
      : Folder(std::move(Folder)),
        IncludeMasks(std::move(IncludeMasks)),
        ExcludeMasks(std::move(ExcludeMasks)),
        Options(Options) {}
  const String Folder;
  const String IncludeMasks;
  const String ExcludeMasks;
  const uint32_t Options;
};

class TTraceLocation {
 public:
  TTraceLocationType LocationType = TLT_Registry_AllValues;
  std::unique_ptr<TLD_Base> Data;  // owned
  TTraceTargetType TargetType = TTT_Unknown;
  TTraceFlags Flags = 0;

  // The descriptor as the class its location type names.
  template <class T>
  const T& As() const {
    return static_cast<const T&>(*Data);
  }
};

class TTCPlugin {
 public:
  // `className` is the plug-in's class name ("TTCPWordPad"); its ID drops the first four
  // characters. Constructing a plug-in appends it to Plugins.
  explicit TTCPlugin(const String& className);
  virtual ~TTCPlugin();
  TTCPlugin(const TTCPlugin&) = delete;
  TTCPlugin& operator=(const TTCPlugin&) = delete;

  TScanProgressEvent OnScanProgress;
  TScanTraceFoundEvent OnScanTraceFound;
  TCleanProgressEvent OnCleanProgress;
  TOnSecureDeleteEvent OnSecureDelete;
  // Assigned by a host that previews traces; walks then also read file sizes.
  TPreviewTraceEvent OnPreviewTrace;
  int ScanPosition = 0;
  int CleanPosition = 0;
  double ProgressFactor = 0;
  bool Active = true;
  bool Selectable = true;
  String ID;
  String Section;
  String AppCaption;
  String IconFile;
  String Caption;
  String Description;
  int TraceCount = 0;
  int Reserved1 = 0;
  int Reserved2 = 0;
  int SortOrder = 0;
  uint8_t CleaningFolderKind = 0;
  String CleaningFolder;
  String OwnFolder;
  bool DeactivateIfAbsent = true;
  std::vector<std::unique_ptr<TTraceLocation>> TraceLocations;
  bool RebootRequired = false;
  // Asks the host to tell the user something after cleaning; nothing in the package reads it.
  bool HostNotice = false;
  // Why the last scan or clean left something alone (a file it does not read), in words for
  // the host's report; empty when there is nothing to say. The plug-in that sets it clears it.
  String Note;
  // What the user must read before this plug-in cleans (shown with the confirmation).
  String Warning;
  // What the cleans so far removed through the shredder: how many, and the names of the first
  // kRemovedNamesKept (a report of what changed needs no list of a million names).
  static constexpr size_t kRemovedNamesKept = 1000;
  StringList RemovedFiles;
  int64_t RemovedFileCount = 0;
  int64_t RemovedBytes = 0;
  int64_t ShredTotalSize = 0;
  bool ShredTimerElapsed = false;
  TTimer ShredTimer;
  TDeleteMethod ShredMethod = TDeleteMethod::dmZeros;
  int ShredRecurrence = 1;

  virtual void FixTraceLocation(TTraceLocation& Location);
  virtual void Scan();
  virtual void InitClean() {}
  virtual void Clean();
  virtual void Fix();
  virtual void PrepareToClean(const String& /*Folder*/) {}

  // The recipe's text steps in their order: section, application, icon, caption, description.
  void Describe(const String& Section, const String& App, int IconId, const String& Caption,
                const String& Description);
  // Takes ownership of `Data`.
  void AddTraceLocation(TTraceLocationType LocationType, TLD_Base* Data,
                        TTraceTargetType TargetType, TTraceFlags Flags);
  TTraceLocation& GetTraceLocation(int Index) { return *TraceLocations.at(Index); }
  int GetTraceLocationCount() const { return static_cast<int>(TraceLocations.size()); }
  void IncTraceCount(int N) { TraceCount += N; }
  bool ShowScanItem(const String& DisplayString, bool MustDisplay);
  bool ShowCleanItem(const String& ActionCaption, const String& SubCaption, bool MustDisplay);
  // Records a trace this plug-in's clean could not remove in Plugins->CleanFailures.
  // Raises OnPreviewTrace: for traces a scan counts without reporting them.
  void PreviewTrace(TTraceSourceType type, const TTraceSourceData& source,
                    TTraceTargetType target, TTraceFlags flags, const String& data,
                    int64_t size = -1);
  // Previews `Count` traces held in one file (or place) that the scan counts but cannot name
  // one by one: "entry 1 of 3", ...
  void PreviewEntries(const String& FileName, int Count, int64_t Size = -1);
  void AddCleanFailure(TTraceSourceType SourceType, const TTraceSourceData& Source,
                       const String& Operation, uint32_t ErrorCode, bool Scheduled = false);
  void AddFileCleanFailure(const String& FileName, const String& Operation, uint32_t ErrorCode,
                           bool Scheduled = false);

  // False when a stop request ended the walk.
  bool TraceFilesRecurse(const String& Folder, const TWildcardMatcher& Matcher);
  void DeleteFilesRecurse(const String& Folder, const TWildcardMatcher& Matcher);
  // Shreds the files of one folder that the matcher takes; its sub-folders are left in Dirs.
  void SecureDeleteMatching(const String& Folder, const TWildcardMatcher& Matcher,
                            std::vector<FileInfo>& Dirs);
  void Cleaning_EmptyRegValue(HKEY RootKey, const String& Key, const String& ValueName);
  uint8_t ScanForSystemfolder(const String& Folder);
  void SetNewCleaningfolder(const String& Folder);

  bool SecureDeleteFiles(const StringList& Files);
  bool SecureDeleteFile(const String& FileName);
  void OnSecureDeletingFile(void* Sender, int Percent, int A, int B);
  void OnTimer();

 protected:
  // Raises OnScanTraceFound when a handler is assigned.
  void ReportTrace(TTraceSourceType type, const TTraceSourceData& source,
                   TTraceTargetType target, TTraceFlags flags, const String& data);

 private:
  // False when a stop request ended the scan.
  bool ScanLocation(const TTraceLocation& loc, int& registryFound, int& filesFound,
                    String& lastUserAssistPath);
  void CleanLocation(const TTraceLocation& loc);
  void FixNumberedNames(const TTraceLocation& loc);
  void FixMRUList(const TTraceLocation& loc);
  bool RunShredJob(TOrviShredderClass& job);
  // Books what a finished job removed and what it left; `inUseScheduled` marks files in
  // use that were registered for the next start.
  void BookShredJob(const TOrviShredderClass& job, bool inUseScheduled);
  // Records a failed registry change of the clean (the last error says why).
  void CheckRegistryStep(bool ok, const TTraceSourceData& Source, const String& Operation,
                         bool isKey = false);
};

// `Name` is `Prefix` (locale-aware, case-insensitive) followed by an integer of 0 or more;
// the number comes back in `Number` (-1 when the rest is no integer).
bool IsNumberedName(const String& Name, const String& Prefix, int64_t& Number);

// Root, key and options of an MRUList or MRUListEx location.
struct TMRUListPlace {
  HKEY RootKey;
  const String& Key;
  uint32_t Options;
};
TMRUListPlace MRUListPlace(const TTraceLocation& Location);

// The matcher a file location scans and cleans with: its masks, and never "desktop.ini".
TWildcardMatcher MakeMatcher(const TLD_FileSystem_Files& Files);

// Decodes a UserAssist value name into the program path and the flags it adds.
String DecodeUserAssistName(const String& ValueName, TTraceFlags& ExtraFlags);

class TPluginList {
 public:
  std::vector<TNotDeletedTraces> NotCleanedTraces;
  // Traces the cleans meant to remove and could not, in the order met.
  std::vector<TCleanFailure> CleanFailures;

  int Count() const { return static_cast<int>(Items_.size()); }
  TTCPlugin* Get(int Index) const { return Items_.at(Index); }
  void Put(int Index, TTCPlugin* Plugin) { Items_.at(Index) = Plugin; }
  TTCPlugin* operator[](int Index) const { return Get(Index); }
  void Add(TTCPlugin* Plugin) { Items_.push_back(Plugin); }
  void Remove(TTCPlugin* Plugin);
  int IndexOf(const TTCPlugin* Plugin) const;
  auto begin() const { return Items_.begin(); }
  auto end() const { return Items_.end(); }

  void AddNotCleanedTrace(TTCPlugin* Plugin, int Count);
  int CountNotCleanedTraces(const TTCPlugin* Plugin) const;
  // Failures of this plug-in object; with `unscheduledOnly`, those left until a next clean.
  int CountCleanFailures(const TTCPlugin* Plugin, bool unscheduledOnly = false) const;
  void Sort();
  void SortAppCaption();

 private:
  std::vector<TTCPlugin*> Items_;  // not owned
};

class TPluginGroupList {
 public:
  int Count() const { return static_cast<int>(Items_.size()); }
  TPluginList* Get(int Index) const { return Items_.at(Index); }
  void Put(int Index, TPluginList* List) { Items_.at(Index) = List; }
  void Add(TPluginList* List) { Items_.push_back(List); }

 private:
  std::vector<TPluginList*> Items_;
};

// Frees a unit-level plug-in and clears its variable.
template <class T>
void FreeAndNil(T*& Object) {
  delete Object;
  Object = nullptr;
}

// Every plug-in object that exists, in creation order (null outside Initialize/Finalize).
extern TPluginList* Plugins;
// Published for the host; the engine neither creates nor fills it.
extern TPluginGroupList* PluginGroups;

bool GetPluginByID(const String& ID, TTCPlugin*& Plugin);
void SetPluginStatus(const String& ID, bool Active, int32_t Order);
void SetAllPluginStatus(bool Active);

// Unit start-up and shutdown of the trace model: create and free the Plugins list.
void TC_BasePlugin_Initialization();
void TC_BasePlugin_Finalization();

}  // namespace tc
