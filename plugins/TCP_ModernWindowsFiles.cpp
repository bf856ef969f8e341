#include "plugins/TCP_ModernWindowsFiles.h"

#include "engine/TC_Common.h"
#include "platform/helpers/JumpLists.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/TextCodec.h"
#include "platform/Platform.h"

namespace tc {

namespace {

const String rsApp_Explorer = u"Windows-Explorer";
const String rsApp_Windows = u"Windows";
const String kFolderRecent = u"{AE50C081-EBD2-438A-8655-8A092E34987A}";
const String kFolderLocalAppData = u"{F1B32785-6FBA-4FCF-9D55-7B8E7F157091}";
const String kFolderWindows = u"{F38BF404-1D43-42F2-9305-67DE0B28FC23}";

void SetTexts(TTCPlugin& p, const String& app, int icon, const String& caption,
              const String& description) {
  p.Describe(rsTCPSection_Windows, app, icon, caption, description);
  p.DeactivateIfAbsent = false;
}

// The known folder with `below` added and a trailing delimiter; "" when Windows has none.
String FolderOf(const String& folderId, const String& below) {
  String path;
  if (Services().Shell->GetKnownFolder(folderId, path) != ERROR_SUCCESS || path.empty())
    return String();
  return IncludeTrailingPathDelimiter(below.empty() ? path
                                                    : IncludeTrailingPathDelimiter(path) + below);
}

void AddFiles(TTCPlugin& p, const String& folder, const String& masks, TTraceTargetType target) {
  if (folder.empty()) return;
  p.AddTraceLocation(TLT_FileSystem_Files, new TLD_FileSystem_Files(folder, masks, u"", 0),
                     target, FlagOf(TF_Deletable_Per_Item));
}

// The files of a location's folder that its masks take.
StringList MatchingFiles(const TLD_FileSystem_Files& d) {
  TWildcardMatcher matcher = MakeMatcher(d);
  StringList names, files;
  EnumFiles(d.Folder, names, u"*");
  for (const String& name : names)
    if (matcher.Match(name)) files.push_back(d.Folder + name);
  return files;
}

TTCPJumpLists* TCPJumpLists = nullptr;
TTCPRecentItems* TCPRecentItems = nullptr;
TTCPThumbnailCache* TCPThumbnailCache = nullptr;
TTCPWindowsTimeline* TCPWindowsTimeline = nullptr;
TTCPWindowsPrefetch* TCPWindowsPrefetch = nullptr;
const char16_t* const kTimelineFiles[] = {u"ActivitiesCache.db", u"ActivitiesCache.db-wal",
                                          u"ActivitiesCache.db-shm"};

// The account folders below ConnectedDevicesPlatform that hold a Timeline database.
StringList TimelineDatabases(const TLD_FileSystem_Files& d) {
  StringList folders, found;
  EnumDirectories(d.Folder, folders);
  for (const String& folder : folders) {
    const String db = d.Folder + folder + u"\\" + kTimelineFiles[0];
    if (OrviFileExists(db)) found.push_back(db);
  }
  return found;
}

}  // namespace

// Says in the plug-in's note which jump list a clean keeps, and why.
void NoteKept(TTCPlugin& p, const String& file) {
  p.Note += (p.Note.empty() ? u"" : u"; ") + file + u": kept, it holds pinned entries";
}

String JumpListEntryText(const String& target, bool pinned) {
  return pinned ? target + u" (angeheftet: die Sprungliste bleibt erhalten)" : target;
}

TTCPJumpLists::TTCPJumpLists() : TTCPlugin(u"TTCPJumpLists") {
  SetTexts(*this, rsApp_Explorer, 5003, u"Sprunglisten der Taskleiste und des Startmenüs",
           u"Seit Windows 7 führt Windows für jedes Programm eine Sprungliste der zuletzt und "
           u"häufig damit geöffneten Dokumente, die Sie über die Taskleiste und das Startmenü "
           u"erreichen. Diese Listen verraten, mit welchen Dateien Sie gearbeitet haben. "
           u"Sprunglisten mit angehefteten Einträgen bleiben erhalten.");
  const String recent = FolderOf(kFolderRecent, u"");
  if (recent.empty()) return;
  AddFiles(*this, recent + u"AutomaticDestinations\\", u"*.automaticDestinations-ms",
           TTT_FileName);
  AddFiles(*this, recent + u"CustomDestinations\\", u"*.customDestinations-ms", TTT_FileName);
}

void TTCPJumpLists::Scan() {
  TraceCount = 0;
  Note.clear();
  for (const auto& loc : TraceLocations) {
    for (const String& file : MatchingFiles(loc->As<TLD_FileSystem_Files>())) {
      TTraceSourceData source{kNoRootKey, {}, {}, file};
      std::vector<JumpListEntry> entries;
      if (!ReadJumpListFile(file, entries) || entries.empty()) {
        ReportTrace(TST_FileSystem_File, source, loc->TargetType, loc->Flags, String());
        ++TraceCount;
        continue;
      }
      bool pinned = false;
      for (const auto& e : entries) {
        ReportTrace(TST_FileSystem_File, source, loc->TargetType, loc->Flags,
                    JumpListEntryText(e.Target, e.Pinned));
        ++TraceCount;
        pinned = pinned || e.Pinned;
      }
      if (pinned) NoteKept(*this, file);
    }
  }
}

void TTCPJumpLists::Clean() {
  TraceCount = 0;
  Note.clear();
  for (const auto& loc : TraceLocations) {
    for (const String& file : MatchingFiles(loc->As<TLD_FileSystem_Files>())) {
      std::vector<JumpListEntry> entries;
      ReadJumpListFile(file, entries);
      bool pinned = false;
      for (const auto& e : entries) pinned = pinned || e.Pinned;
      if (pinned) {
        if (Plugins) Plugins->AddNotCleanedTrace(this, int(entries.size()));
        NoteKept(*this, file);
        continue;
      }
      SecureDeleteFile(file);
    }
  }
}

TTCPRecentItems::TTCPRecentItems() : TTCPlugin(u"TTCPRecentItems") {
  SetTexts(*this, rsApp_Explorer, 5000, u"Verknüpfungen auf zuletzt geöffnete Dateien und Ordner",
           u"Für jede Datei und jeden Ordner, den Sie öffnen, legt Windows im Ordner \"Zuletzt "
           u"verwendet\" eine Verknüpfung an. Diese Verknüpfungen bleiben bestehen, auch wenn "
           u"die Dateien längst gelöscht sind, und verraten, womit Sie gearbeitet haben.");
  AddFiles(*this, FolderOf(kFolderRecent, u""), u"*.lnk", TTT_FileName);
}

TTCPThumbnailCache::TTCPThumbnailCache() : TTCPlugin(u"TTCPThumbnailCache") {
  SetTexts(*this, rsApp_Explorer, 5004, u"Zwischenspeicher der Miniaturansichten und Symbole",
           u"Der Windows-Explorer speichert verkleinerte Ansichten aller Bilder, Videos und "
           u"Dokumente, die er einmal angezeigt hat, in einem Zwischenspeicher. Die "
           u"Miniaturansichten bleiben dort auch dann erhalten, wenn die Dateien selbst längst "
           u"gelöscht sind. Dateien, die Windows gerade verwendet, werden beim nächsten "
           u"Neustart gelöscht.");
  AddFiles(*this, FolderOf(kFolderLocalAppData, u"Microsoft\\Windows\\Explorer"),
           u"thumbcache_*.db;iconcache_*.db", TTT_FileName);
}

void TTCPThumbnailCache::Clean() {
  TraceCount = 0;
  for (const auto& loc : TraceLocations)
    for (const String& file : MatchingFiles(loc->As<TLD_FileSystem_Files>()))
      SecureDeleteFile(file);
}

String TimelineActivityText(const std::string& activityId, const std::string& payload) {
  const std::string key = "\"displayText\":\"";
  const size_t at = payload.find(key);
  if (at != std::string::npos) {
    const size_t end = payload.find('"', at + key.size());
    if (end != std::string::npos) return FromUtf8(payload.substr(at + key.size(), end - at - key.size()));
  }
  return FromUtf8(activityId);
}

TTCPWindowsTimeline::TTCPWindowsTimeline() : TTCPlugin(u"TTCPWindowsTimeline") {
  SetTexts(*this, rsApp_Windows, 5005, u"Zeitachse der Aktivitäten",
           u"Windows 10 und 11 speichern in der Zeitachse, welche Dokumente, Webseiten und "
           u"Programme Sie wann verwendet haben, und gleichen sie mit Ihren anderen Geräten "
           u"ab. Beim Bereinigen werden die Datenbanken der Zeitachse gelöscht; Windows legt "
           u"sie leer neu an.");
  const String root = FolderOf(kFolderLocalAppData, u"ConnectedDevicesPlatform");
  if (!root.empty())
    AddTraceLocation(TLT_FileSystem_Files,
                     new TLD_FileSystem_Files(root, u"ActivitiesCache.db*", u"", LO_Recursive),
                     TTT_Unknown, FlagOf(TF_Deletable_Per_Item));
}

void TTCPWindowsTimeline::Scan() {
  TraceCount = 0;
  for (const auto& loc : TraceLocations) {
    for (const String& db : TimelineDatabases(loc->As<TLD_FileSystem_Files>())) {
      TTraceSourceData source{kNoRootKey, {}, {}, db};
      std::unique_ptr<ISqliteDatabase> opened;
      std::vector<SqlRow> rows;
      String message;
      if (!Services().Sqlite || Services().Sqlite->Open(db, opened, message) != ERROR_SUCCESS ||
          opened->Execute("SELECT AppActivityId, Payload FROM Activity", {}, &rows) !=
              ERROR_SUCCESS ||
          rows.empty()) {
        ReportTrace(TST_FileSystem_File, source, loc->TargetType, loc->Flags, message);
        ++TraceCount;
        continue;
      }
      for (const SqlRow& row : rows) {
        ReportTrace(TST_FileSystem_File, source, loc->TargetType, loc->Flags,
                    TimelineActivityText(row.size() > 0 ? row[0].Bytes : std::string(),
                                         row.size() > 1 ? row[1].Bytes : std::string()));
        ++TraceCount;
      }
    }
  }
}

void TTCPWindowsTimeline::Clean() {
  TraceCount = 0;
  for (const auto& loc : TraceLocations) {
    for (const String& db : TimelineDatabases(loc->As<TLD_FileSystem_Files>())) {
      const String folder = ExtractFilePath(db);
      for (const char16_t* name : kTimelineFiles)
        if (OrviFileExists(folder + name)) SecureDeleteFile(folder + name);
    }
  }
}

TTCPWindowsPrefetch::TTCPWindowsPrefetch() : TTCPlugin(u"TTCPWindowsPrefetch") {
  SetTexts(*this, rsApp_Windows, 5006, u"Prefetch-Dateien der gestarteten Programme",
           u"Windows legt für jedes Programm, das Sie starten, eine Prefetch-Datei an, um es "
           u"beim nächsten Mal schneller laden zu können. Diese Dateien verraten, welche "
           u"Programme wann und wie oft gestartet wurden. Zum Löschen sind "
           u"Administratorrechte nötig; Programme starten danach etwas langsamer, bis Windows "
           u"die Dateien neu angelegt hat.");
  Active = false;
  AddFiles(*this, FolderOf(kFolderWindows, u"Prefetch"), u"*.pf", TTT_FileName);
}

void TCP_ModernWindowsFiles_Initialization() {
  TCPJumpLists = new TTCPJumpLists();
  TCPRecentItems = new TTCPRecentItems();
  TCPThumbnailCache = new TTCPThumbnailCache();
  TCPWindowsTimeline = new TTCPWindowsTimeline();
  TCPWindowsPrefetch = new TTCPWindowsPrefetch();
}

void TCP_ModernWindowsFiles_Finalization() {
  FreeAndNil(TCPJumpLists);
  FreeAndNil(TCPRecentItems);
  FreeAndNil(TCPThumbnailCache);
  FreeAndNil(TCPWindowsTimeline);
  FreeAndNil(TCPWindowsPrefetch);
}

}  // namespace tc
