// The generic scan over a plug-in's trace locations.
#include "engine/TC_BasePlugin.h"

#include "platform/helpers/Orviregistry.h"
#include "platform/Platform.h"
#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/TextCodec.h"
#include "platform/helpers/UserAssistNames.h"

namespace tc {

namespace {

bool Contains(uint32_t options, uint32_t constant) { return (options & constant) == constant; }

}  // namespace

String DecodeUserAssistName(const String& ValueName, TTraceFlags& ExtraFlags) {
  ExtraFlags = 0;
  String decoded = Rot13(ValueName);
  String first = ParamX(decoded, u':', 1);
  if (first == u"UEME_RUNPATH") {
    String path = GetRestX(decoded, u':', 2);
    return FileIsOnFixedDrive(path, true) ? path : String();
  }
  if (first == u"UEME_RUNPIDL") {
    String rest = GetRestX(decoded, u':', 2);
    if (LowerCase(rest.substr(0, 9)) == u"%csidl2%\\") {
      ExtraFlags = FlagOf(TF_StartMenu_SubFolder);
      return rest.substr(9);
    }
  }
  return {};
}

void TTCPlugin::Scan() {
  TraceCount = 0;
  int registryFound = 0, filesFound = 0;
  String lastUserAssistPath;  // the UserAssist asymmetry spans the whole scan call
  for (const auto& loc : TraceLocations) {
    // A stopped scan has not seen every location: it does not judge the plug-in absent.
    if (!ScanLocation(*loc, registryFound, filesFound, lastUserAssistPath)) return;
  }
  if (DeactivateIfAbsent && !TraceLocations.empty() && registryFound == 0 && filesFound == 0)
    Active = false;
}

void TTCPlugin::PreviewTrace(TTraceSourceType type, const TTraceSourceData& source,
                             TTraceTargetType target, TTraceFlags flags, const String& data,
                             int64_t size) {
  if (OnPreviewTrace) OnPreviewTrace(this, type, source, target, flags, data, size);
}

void TTCPlugin::PreviewEntries(const String& FileName, int Count, int64_t Size) {
  if (!OnPreviewTrace) return;
  for (int i = 1; i <= Count; ++i)
    PreviewTrace(TST_FileSystem_File, {kNoRootKey, {}, {}, FileName}, TTT_Unknown, 0,
                 u"entry " + IntToStr(i) + u" of " + IntToStr(Count), Size);
}

bool TTCPlugin::ScanLocation(const TTraceLocation& loc, int& registryFound, int& filesFound,
                             String& lastUserAssistPath) {
  StringList names, datas;
  // Each counted item: a stop request ends the scan here.
  auto next = [&](const String& item) { return ShowScanItem(item, false); };
  switch (loc.LocationType) {
    case TLT_Registry_AllValues: {
      const auto& d = loc.As<TLD_Registry_AllValues>();
      EnumRegValuesEx(d.RootKey, d.Key, names, datas, RO_None);
      if (!names.empty() || KeyExist(d.RootKey, d.Key, RO_None)) ++registryFound;
      for (size_t i = 0; i < names.size(); ++i) {
        if (!Contains(d.Options, LO_CountEmptyValues) && Trim(datas[i]).empty()) continue;
        if (!next(names[i])) return false;
        TTraceSourceData src{d.RootKey, d.Key, names[i], {}};
        bool reported = false;
        if (OnScanTraceFound) {
          if (loc.TargetType == TTT_UserAssist) {
            TTraceFlags extra;
            lastUserAssistPath = DecodeUserAssistName(names[i], extra);
            if (!lastUserAssistPath.empty()) {
              ReportTrace(TST_Registry_Value, src, loc.TargetType, loc.Flags | extra,
                          lastUserAssistPath);
              reported = true;
            }
          } else if (!lastUserAssistPath.empty()) {
            ReportTrace(TST_Registry_Value, src, loc.TargetType, loc.Flags, datas[i]);
            reported = true;
          }
        }
        if (!reported) PreviewTrace(TST_Registry_Value, src, loc.TargetType, loc.Flags, datas[i]);
        ++TraceCount;
      }
      break;
    }
    case TLT_Registry_AllKeys: {
      const auto& d = loc.As<TLD_Registry_AllKeys>();
      EnumRegKeysEx(d.RootKey, d.Key, names, RO_None);
      if (!names.empty() || KeyExist(d.RootKey, d.Key, RO_None)) ++registryFound;
      for (const auto& name : names) {
        if (!next(name)) return false;
        PreviewTrace(TST_Registry_Key, {d.RootKey, IncludeTrailingPathDelimiter(d.Key) + name, {}, {}},
                     loc.TargetType, loc.Flags, {});
        ++TraceCount;
      }
      break;
    }
    case TLT_Registry_NumberedNames: {
      const auto& d = loc.As<TLD_Registry_NumberedNames>();
      EnumRegValuesEx(d.RootKey, d.Key, names, datas, RO_None);
      if (!names.empty() || KeyExist(d.RootKey, d.Key, RO_None)) ++registryFound;
      for (size_t i = 0; i < names.size(); ++i) {
        int64_t n;
        if (!IsNumberedName(names[i], d.NamePrefix, n) || Trim(datas[i]).empty()) continue;
        if (!next(names[i])) return false;
        ReportTrace(TST_Registry_Value, {d.RootKey, d.Key, names[i], {}}, loc.TargetType,
                    loc.Flags, datas[i]);
        ++TraceCount;
      }
      break;
    }
    case TLT_Registry_NumberedKeys: {
      const auto& d = loc.As<TLD_Registry_NumberedKeys>();
      EnumRegKeysEx(d.RootKey, d.Key, names, RO_None);
      if (!names.empty() || KeyExist(d.RootKey, d.Key, RO_None)) ++registryFound;
      for (const auto& name : names) {
        int64_t n;
        if (!IsNumberedName(name, d.NamePrefix, n)) continue;
        if (!next(name)) return false;
        if (OnScanTraceFound)
          ReportTrace(TST_Registry_Value, {d.RootKey, d.Key, name, {}}, loc.TargetType,
                      loc.Flags, GetRegStringValueDef(d.RootKey, d.Key, name, {}, RO_None));
        ++TraceCount;
      }
      break;
    }
    case TLT_Registry_StringValue: {
      const auto& d = loc.As<TLD_Registry_StringValue>();
      const TTraceSourceData src{d.RootKey, d.Key, d.ValueName, {}};
      String text;
      if (Contains(d.Options, LO_MultiString)) {
        GetRegMultiStringValue(d.RootKey, d.Key, d.ValueName, names, RO_None);
        ++registryFound;
        for (const auto& line : names) {
          if (!next(line)) return false;
          PreviewTrace(TST_Registry_Value, src, loc.TargetType, loc.Flags, line);
          ++TraceCount;
        }
        break;
      }
      if (Contains(d.Options, LO_BinaryText)) {
        Bytes bytes;
        uint32_t size = 0;
        GetRegValue(d.RootKey, d.Key, d.ValueName, bytes, size, RO_None);
        text = FromUtf16LE(bytes.data(), size & ~1u);
      } else {
        text = GetRegStringValueDef(d.RootKey, d.Key, d.ValueName, {}, RO_None);
      }
      if (!text.empty() || KeyExist(d.RootKey, d.Key, RO_None)) ++registryFound;
      if (text.empty()) break;
      int items = d.Separator.empty() ? 1 : ParamXCount(text, d.Separator[0]);
      for (int i = 1; i <= items; ++i) {
        String item = d.Separator.empty() ? text : ParamX(text, d.Separator[0], i);
        if (!next(item)) return false;
        PreviewTrace(TST_Registry_Value, src, loc.TargetType, loc.Flags, item);
        ++TraceCount;
      }
      break;
    }
    case TLT_Registry_MRUList:
    case TLT_Registry_MRUListEx: {
      const bool ex = loc.LocationType == TLT_Registry_MRUListEx;
      const auto [root, key, options] = MRUListPlace(loc);
      StringList keys{key}, subs;
      EnumRegKeysEx(root, key, subs, RO_None);
      for (const auto& s : subs) keys.push_back(key + u"\\" + s);
      if (!subs.empty() || KeyExist(root, key, RO_None)) ++registryFound;
      for (const auto& k : keys) {
        EnumRegValuesEx(root, k, names, datas, RO_None);
        for (size_t i = 0; i < names.size(); ++i) {
          if (SameText(names[i], ex ? u"MRUListEx" : u"MRUList")) continue;
          if (ex && SameText(names[i], u"ViewStream")) continue;
          if (!next(names[i])) return false;
          ReportTrace(TST_Registry_Value, {root, k, names[i], {}}, loc.TargetType, loc.Flags,
                      datas[i]);
          ++TraceCount;
        }
      }
      break;
    }
    case TLT_FileSystem_Files: {
      const auto& d = loc.As<TLD_FileSystem_Files>();
      TWildcardMatcher matcher = MakeMatcher(d);
      if (Contains(d.Options, LO_Recursive)) {
        ++filesFound;  // a recursive location counts as found, there or not
        return TraceFilesRecurse(d.Folder, matcher);
      }
      // Sizes only where the location's option tests them; name order only for a preview,
      // which lists the folder first; a count reads it as it goes.
      const bool sizes = Contains(d.Options, LO_NonEmptyFilesOnly);
      bool stopped = false;
      auto count = [&](const FileInfo& f) {
        Services().UI->ProcessMessages();
        if (!matcher.Match(f.Name)) return true;
        // The listing's size stands for the look-up: one enumeration per folder.
        if (sizes && f.Size == 0) return true;
        if (!next(f.Name)) return !(stopped = true);
        ReportTrace(TST_FileSystem_File, {kNoRootKey, {}, {}, d.Folder + f.Name},
                    loc.TargetType, loc.Flags, {});
        ++TraceCount;
        return true;
      };
      std::vector<FileInfo> dirs, files;
      bool listed = OnPreviewTrace
                        ? ListFolderEntries(d.Folder, dirs, files,
                                            sizes ? WalkNeeds::Sizes : WalkNeeds::Kinds)
                        : VisitFolderFiles(d.Folder, dirs,
                                           sizes ? ListDetail::Sizes : ListDetail::Kinds, count);
      if (listed || DirExists(ExcludeTrailingPathDelimiter(d.Folder)))
        ++filesFound;
      for (const auto& f : files)
        if (!count(f)) break;
      if (stopped) return false;
      break;
    }
  }
  return true;
}

bool TTCPlugin::TraceFilesRecurse(const String& Folder, const TWildcardMatcher& Matcher) {
  std::vector<FileInfo> dirs, files;
  String base = IncludeTrailingPathDelimiter(Folder);
  bool stopped = false;
  auto count = [&](const FileInfo& f) {
    if (!Matcher.Match(f.Name)) return true;
    if (!ShowScanItem(f.Name, false)) return !(stopped = true);
    PreviewTrace(TST_FileSystem_File, {kNoRootKey, {}, {}, base + f.Name}, TTT_FileName, 0, {},
                 static_cast<int64_t>(f.Size));
    ++TraceCount;
    return true;
  };
  // Counting reads each folder as it goes, in any order; a preview lists it, sizes and all.
  if (OnPreviewTrace) {
    if (!ListFolderEntries(Folder, dirs, files, WalkNeeds::Sizes)) return true;
  } else if (!VisitFolderFiles(Folder, dirs, ListDetail::Kinds, count)) {
    return true;
  }
  if (stopped) return false;
  for (const auto& d : dirs)
    if (!TraceFilesRecurse(base + d.Name, Matcher)) return false;
  for (const auto& f : files)
    if (!count(f)) return false;
  return true;
}

}  // namespace tc
