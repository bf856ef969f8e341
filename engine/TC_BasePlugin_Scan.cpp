// The generic scan over a plug-in's trace locations.
#include "engine/TC_BasePlugin.h"

#include "platform/Orviregistry.h"
#include "platform/Platform.h"
#include "platform/Stringhelper.h"
#include "platform/TextCodec.h"

namespace tc {

namespace {

bool Contains(uint32_t options, uint32_t constant) { return (options & constant) == constant; }

String Rot13(const String& s) {
  String out(s);
  for (auto& c : out) {
    if (c >= u'a' && c <= u'z') c = u'a' + (c - u'a' + 13) % 26;
    else if (c >= u'A' && c <= u'Z') c = u'A' + (c - u'A' + 13) % 26;
  }
  return out;
}

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
  for (const auto& loc : TraceLocations)
    ScanLocation(*loc, registryFound, filesFound, lastUserAssistPath);
  if (DeactivateIfAbsent && !TraceLocations.empty() && registryFound == 0 && filesFound == 0)
    Active = false;
}

void TTCPlugin::ScanLocation(const TTraceLocation& loc, int& registryFound, int& filesFound,
                             String& lastUserAssistPath) {
  StringList names, datas;
  switch (loc.LocationType) {
    case TLT_Registry_AllValues: {
      const auto& d = loc.As<TLD_Registry_AllValues>();
      EnumRegValuesEx(d.RootKey, d.Key, names, datas, RO_None);
      if (!names.empty() || KeyExist(d.RootKey, d.Key, RO_None)) ++registryFound;
      for (size_t i = 0; i < names.size(); ++i) {
        if (!Contains(d.Options, LO_CountEmptyValues) && Trim(datas[i]).empty()) continue;
        if (OnScanTraceFound) {
          TTraceSourceData src{d.RootKey, d.Key, names[i], {}};
          if (loc.TargetType == TTT_UserAssist) {
            TTraceFlags extra;
            lastUserAssistPath = DecodeUserAssistName(names[i], extra);
            if (!lastUserAssistPath.empty())
              ReportTrace(TST_Registry_Value, src, loc.TargetType, loc.Flags | extra,
                          lastUserAssistPath);
          } else if (!lastUserAssistPath.empty()) {
            ReportTrace(TST_Registry_Value, src, loc.TargetType, loc.Flags, datas[i]);
          }
        }
        ++TraceCount;
      }
      break;
    }
    case TLT_Registry_AllKeys: {
      const auto& d = loc.As<TLD_Registry_AllKeys>();
      EnumRegKeysEx(d.RootKey, d.Key, names, RO_None);
      if (!names.empty() || KeyExist(d.RootKey, d.Key, RO_None)) ++registryFound;
      TraceCount += static_cast<int>(names.size());
      break;
    }
    case TLT_Registry_NumberedNames: {
      const auto& d = loc.As<TLD_Registry_NumberedNames>();
      EnumRegValuesEx(d.RootKey, d.Key, names, datas, RO_None);
      if (!names.empty() || KeyExist(d.RootKey, d.Key, RO_None)) ++registryFound;
      for (size_t i = 0; i < names.size(); ++i) {
        int64_t n;
        if (!IsNumberedName(names[i], d.NamePrefix, n) || Trim(datas[i]).empty()) continue;
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
        if (OnScanTraceFound)
          ReportTrace(TST_Registry_Value, {d.RootKey, d.Key, name, {}}, loc.TargetType,
                      loc.Flags, GetRegStringValueDef(d.RootKey, d.Key, name, {}, RO_None));
        ++TraceCount;
      }
      break;
    }
    case TLT_Registry_StringValue: {
      const auto& d = loc.As<TLD_Registry_StringValue>();
      String text;
      if (Contains(d.Options, LO_MultiString)) {
        GetRegMultiStringValue(d.RootKey, d.Key, d.ValueName, names, RO_None);
        ++registryFound;
        TraceCount += static_cast<int>(names.size());
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
      TraceCount += d.Separator.empty() ? 1 : ParamXCount(text, d.Separator[0]);
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
      std::vector<FileInfo> dirs, files;
      bool listed = ListFolderEntries(d.Folder, dirs, files);
      if (listed || DirExists(ExcludeTrailingPathDelimiter(d.Folder)))
        ++filesFound;
      if (Contains(d.Options, LO_Recursive)) {
        TraceFilesRecurse(d.Folder, matcher);
        ++filesFound;
        break;
      }
      for (const auto& f : files) {
        Services().UI->ProcessMessages();
        if (!matcher.Match(f.Name)) continue;
        // The listing's size stands for the look-up: one enumeration per folder.
        if (Contains(d.Options, LO_NonEmptyFilesOnly) && f.Size == 0) continue;
        ReportTrace(TST_FileSystem_File, {kNoRootKey, {}, {}, d.Folder + f.Name},
                    loc.TargetType, loc.Flags, {});
        ++TraceCount;
      }
      break;
    }
  }
}

void TTCPlugin::TraceFilesRecurse(const String& Folder, const TWildcardMatcher& Matcher) {
  std::vector<FileInfo> dirs, files;
  // Counting needs names only; the order is not seen, as nothing is reported.
  if (!ListFolderEntries(Folder, dirs, files, true)) return;
  String base = IncludeTrailingPathDelimiter(Folder);
  for (const auto& d : dirs) TraceFilesRecurse(base + d.Name, Matcher);
  for (const auto& f : files) TraceCount += Matcher.Match(f.Name);
}

}  // namespace tc
