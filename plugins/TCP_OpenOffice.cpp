#include "plugins/TCP_OpenOffice.h"

#include <stdexcept>
#include <unordered_set>

#include "engine/TC_Common.h"
#include "platform/helpers/FileContents.h"
#include "platform/helpers/Orviregistry.h"
#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/TextCodec.h"
#include "platform/Platform.h"

namespace tc {

namespace {

const String rsTCPApp_OpenOffice = u"OpenOfficeOrg";
const String rsTCPApp_LibreOffice = u"LibreOffice";
const String rsCleanReference = u"Lösche Verweis auf:";

const String kHistories = u"/org.openoffice.Office.Histories";
const String kPickItems = u"['PickList']/ItemList";
const String kPickOrder = u"['PickList']/OrderList";
const String kUrlItems = u"['URLHistory']/ItemList";
const String kUrlOrder = u"['URLHistory']/OrderList";
const String kFileScheme = u"file:///";

bool StartsWith(const String& s, const String& head) { return s.compare(0, head.size(), head) == 0; }

bool EndsWith(const String& s, const String& tail) {
  return s.size() >= tail.size() && s.compare(s.size() - tail.size(), tail.size(), tail) == 0;
}

// The configuration files are worked on only when they are files (a folder of that name
// or a missing file is left alone).
bool WorkedOn(const String& path) { return OrviFileExists(path); }

// A text file's bytes and where its lines start; each line keeps its own line end, so
// cutting lines leaves every other byte as it was.
struct TextLines {
  Bytes Data;
  std::vector<size_t> Starts;  // one more than there are lines: the last is Data.size()

  size_t Count() const { return Starts.size() - 1; }
  String Text(size_t i) const {
    size_t end = Starts[i + 1];
    while (end > Starts[i] && (Data[end - 1] == '\n' || Data[end - 1] == '\r')) --end;
    return FromUtf8(std::string_view(reinterpret_cast<const char*>(Data.data()) + Starts[i],
                                     end - Starts[i]));
  }
};

// Lines end at LF, CR LF or a lone CR; a last line without an end counts.
TextLines SplitLines(Bytes data) {
  TextLines t;
  t.Data = std::move(data);
  const Bytes& d = t.Data;
  size_t start = 0;
  for (size_t i = 0; i < d.size(); ++i) {
    if (d[i] != '\n' && d[i] != '\r') continue;
    if (d[i] == '\r' && i + 1 < d.size() && d[i + 1] == '\n') ++i;
    t.Starts.push_back(start);
    start = i + 1;
  }
  if (start < d.size()) t.Starts.push_back(start);
  t.Starts.push_back(d.size());
  return t;
}

bool LoadLines(const String& path, TextLines& lines) {
  Bytes data;
  if (FileContents::Read(*Services().Files, path, data) != ERROR_SUCCESS) return false;
  lines = SplitLines(std::move(data));
  return true;
}

XmlNode FindChild(IXmlDocument& doc, XmlNode node, const String& name) {
  for (XmlNode child : doc.Children(node))
    if (doc.NodeName(child) == name) return child;
  return 0;
}

// The "oor:items" elements: the document element itself, as OpenOffice 3 and LibreOffice
// write it, and any children of that name.
std::vector<XmlNode> ItemLists(IXmlDocument& doc) {
  std::vector<XmlNode> lists;
  XmlNode root = doc.DocumentElement();
  if (doc.NodeName(root) == u"oor:items") lists.push_back(root);
  for (XmlNode child : doc.Children(root))
    if (doc.NodeName(child) == u"oor:items") lists.push_back(child);
  return lists;
}

// The "file:///" URL an item list's item names, or empty.
String ItemURL(IXmlDocument& doc, XmlNode item) {
  String url = doc.Attribute(FindChild(doc, item, u"node"), u"oor:name");
  return url.size() > kFileScheme.size() && StartsWith(url, kFileScheme) ? url : String();
}

// The URL an order list's item refers to.
String OrderURL(IXmlDocument& doc, XmlNode item) {
  XmlNode prop = FindChild(doc, FindChild(doc, item, u"node"), u"prop");
  XmlNode value = FindChild(doc, prop, u"value");
  return value ? doc.NodeText(value) : String();
}

bool IsHistoryItem(IXmlDocument& doc, XmlNode item, String& path) {
  if (doc.NodeName(item) != u"item") return false;
  path = doc.Attribute(item, u"oor:path");
  return path.size() > kHistories.size() && StartsWith(path, kHistories);
}

std::unique_ptr<TTCPOpenOfficeMRU> OpenOfficeMRU;
std::unique_ptr<TTCPLibreOfficeMRU> LibreOfficeMRU;

}  // namespace

String OOFileNameOfURL(const String& rest) {
  return Replace(Replace(rest, u"/", u"\\"), u"%20", u" ");
}

std::vector<TOOMRUBlock> WalkPickListLines(const StringList& lines, int32_t source) {
  static const String kValueHead = u"<value>file:///";
  std::vector<TOOMRUBlock> found;
  TOOScanStatus state = StartScan;
  int32_t startLine = 0;
  String fileName;
  for (size_t i = 0; i < lines.size(); ++i) {
    const String line = Trim(lines[i]);
    switch (state) {
      case StartScan:
        if (line == u"<node oor:name=\"History\">") state = InHistory;
        break;
      case InHistory:
        if (StartsWith(line, u"</node"))
          state = StartScan;
        else if (line == u"<node oor:name=\"PickList\">")
          state = InPickList;
        break;
      case InPickList:
        if (StartsWith(line, u"</node")) {
          state = InHistory;
        } else if (StartsWith(line, u"<node")) {
          state = InHistoryNode;
          startLine = static_cast<int32_t>(i);
        }
        break;
      case InHistoryNode:
        if (StartsWith(line, u"</node")) {
          state = InPickList;
          // An entry opening on the file's first line is never taken, as it always was.
          if (startLine != 0 && !fileName.empty()) {
            found.push_back({startLine, static_cast<int32_t>(i), fileName, false, source, u""});
            startLine = 0;
            fileName.clear();
          }
        } else if (line.size() >= 24 && StartsWith(line, kValueHead)) {
          fileName = OOFileNameOfURL(line.substr(kValueHead.size(), line.size() - kValueHead.size() - 8));
        }
        break;
    }
  }
  return found;
}

std::vector<TOOMRUBlock> WalkPickListItems(IXmlDocument& doc, int32_t source) {
  std::vector<TOOMRUBlock> found;
  for (XmlNode list : ItemLists(doc)) {
    for (XmlNode item : doc.Children(list)) {
      String path;
      if (!IsHistoryItem(doc, item, path) || !EndsWith(path, kPickItems)) continue;
      String url = ItemURL(doc, item);
      if (url.empty()) continue;
      found.push_back({0, 0, OOFileNameOfURL(url.substr(kFileScheme.size())), false, source, url});
    }
  }
  return found;
}

size_t RemoveHistoryItems(IXmlDocument& doc, const StringList& urls) {
  std::unordered_set<String> wanted;
  for (const auto& url : urls) wanted.insert(UpperCase(url));
  size_t removed = 0;
  for (XmlNode list : ItemLists(doc)) {
    const std::vector<XmlNode> items = doc.Children(list);
    for (auto it = items.rbegin(); it != items.rend(); ++it) {
      String path, url;
      if (!IsHistoryItem(doc, *it, path)) continue;
      if (EndsWith(path, kPickItems) || EndsWith(path, kUrlItems))
        url = ItemURL(doc, *it);
      else if (EndsWith(path, kPickOrder) || EndsWith(path, kUrlOrder))
        url = OrderURL(doc, *it);
      if (url.empty() || wanted.count(UpperCase(url)) == 0) continue;
      doc.Remove(*it);
      ++removed;
    }
  }
  return removed;
}

TTCPOpenOfficeMRU::TTCPOpenOfficeMRU()
    : TTCPOpenOfficeMRU(
          u"TTCPOpenOfficeMRU",
          {GetAppDataDir() + u"OpenOffice.org2\\user\\registry\\data\\org\\openoffice\\Office\\Common.xcu",
           // The underscore stands in the name as OpenOffice 3 was configured.
           GetAppDataDir() + u"OpenOffice.org\\3\\user\\registry\\data\\org\\openoffice\\Office\\Common.xcu_",
           GetAppDataDir() + u"OpenOffice.org\\3\\user\\registrymodifications.xcu"},
          2) {
  Describe(rsTCPSection_Office, rsTCPApp_OpenOffice, 2006,
           u"Liste der zuletzt geöffneten OpenOffice Dateien.",
           u"Alle von Ihnen abgespeicherten Zusammenstellungen oder geöffnete Dateien, welche mit "
           u"OpenOffice erstellt oder geöffnet worden sind.");
}

TTCPOpenOfficeMRU::TTCPOpenOfficeMRU(const String& className, StringList files, size_t xcuIndex)
    : TTCPlugin(className), ConfigFiles(std::move(files)), XcuIndex_(xcuIndex) {}

TTCPOpenOfficeMRU::~TTCPOpenOfficeMRU() { clearlist(); }

void TTCPOpenOfficeMRU::clearlist() {
  ByName_.clear();
  Entries.clear();
}

void TTCPOpenOfficeMRU::Record(std::unique_ptr<TOOMRUBlock> entry) {
  TTraceSourceData source;
  source.FileName = entry->FileName;
  ReportTrace(TST_Unknown, source, TTT_FileName, 0, entry->FileName);
  IncTraceCount(1);
  ByName_.emplace(UpperCase(entry->FileName), entry.get());
  Entries.push_back(std::move(entry));
}

void TTCPOpenOfficeMRU::Scan() {
  TraceCount = 0;
  Note.clear();
  clearlist();
  for (size_t i = 0; i < ConfigFiles.size(); ++i) {
    if (!WorkedOn(ConfigFiles[i])) continue;
    if (i == XcuIndex_) {
      ScanXcuFile(static_cast<int32_t>(i));
      break;
    }
    ScanTextFile(static_cast<int32_t>(i));
  }
}

void TTCPOpenOfficeMRU::ScanTextFile(int32_t index) {
  TextLines text;
  if (!LoadLines(ConfigFiles[index], text)) return;
  StringList lines;
  lines.reserve(text.Count());
  for (size_t i = 0; i < text.Count(); ++i) lines.push_back(text.Text(i));
  for (auto& entry : WalkPickListLines(lines, index))
    Record(std::make_unique<TOOMRUBlock>(std::move(entry)));
}

void TTCPOpenOfficeMRU::ScanXcuFile(int32_t index) {
  Version3Scanned = true;
  auto doc = Services().Xml->Create();
  if (!doc->Load(ConfigFiles[index])) {
    Note = ExtractFileName(ConfigFiles[index]) + u" is no XML document that can be read";
    return;
  }
  for (auto& entry : WalkPickListItems(*doc, index))
    Record(std::make_unique<TOOMRUBlock>(std::move(entry)));
}

void TTCPOpenOfficeMRU::PrepareToClean(const String& Folder) {
  auto [from, to] = ByName_.equal_range(UpperCase(Folder));
  for (auto it = from; it != to; ++it) it->second->Selected = true;
}

void TTCPOpenOfficeMRU::Clean() {
  struct ClearAtEnd {
    TTCPOpenOfficeMRU& self;
    ~ClearAtEnd() { self.clearlist(); }
  } clearAtEnd{*this};
  for (size_t i = 0; i < ConfigFiles.size(); ++i) {
    if (!WorkedOn(ConfigFiles[i])) continue;
    if (i == XcuIndex_) {
      CleanXcuFile(static_cast<int32_t>(i));
      break;
    }
    CleanTextFile(static_cast<int32_t>(i));
  }
}

void TTCPOpenOfficeMRU::CleanTextFile(int32_t index) {
  TextLines text;
  if (!LoadLines(ConfigFiles[index], text)) return;
  std::vector<bool> cut(text.Count(), false);
  for (const auto& entry : Entries) {
    if (!entry->Selected || entry->Source != index) continue;
    if (!ShowCleanItem(rsCleanReference, entry->FileName, false)) break;
    // Entries come in ascending line order, so the lines as scanned are the lines to cut.
    for (int32_t line = entry->FirstLine; line <= entry->LastLine; ++line)
      if (line >= 0 && static_cast<size_t>(line) < cut.size()) cut[line] = true;
  }
  Bytes out;
  out.reserve(text.Data.size());
  for (size_t i = 0; i < text.Count(); ++i)
    if (!cut[i])
      out.insert(out.end(), text.Data.begin() + static_cast<std::ptrdiff_t>(text.Starts[i]),
                 text.Data.begin() + static_cast<std::ptrdiff_t>(text.Starts[i + 1]));
  // Written back even when nothing was chosen: then byte for byte as it was.
  if (FileContents::Replace(*Services().Files, ConfigFiles[index], out) != ERROR_SUCCESS)
    throw std::runtime_error("cannot write " + ToUtf8(ConfigFiles[index]));
}

void TTCPOpenOfficeMRU::CleanXcuFile(int32_t index) {
  StringList urls;
  for (const auto& entry : Entries) {
    if (!entry->Selected || entry->Source != index) continue;
    if (!ShowCleanItem(rsCleanReference, entry->FileName, false)) break;
    urls.push_back(entry->ItemURL);
  }
  if (urls.empty()) return;
  auto doc = Services().Xml->Create();
  if (!doc->Load(ConfigFiles[index])) return;  // never rewrite what cannot be read
  if (RemoveHistoryItems(*doc, urls) > 0 && !doc->Save(ConfigFiles[index]))
    throw std::runtime_error("cannot write " + ToUtf8(ConfigFiles[index]));
}

TTCPLibreOfficeMRU::TTCPLibreOfficeMRU()
    : TTCPOpenOfficeMRU(u"TTCPLibreOfficeMRU",
                        {GetAppDataDir() + u"LibreOffice\\4\\user\\registrymodifications.xcu"}, 0) {
  Describe(rsTCPSection_Office, rsTCPApp_LibreOffice, 2006,
           u"Liste der zuletzt geöffneten LibreOffice Dateien.",
           u"LibreOffice merkt sich alle Dokumente, die Sie zuletzt geöffnet oder gespeichert "
           u"haben, und zeigt sie im Startcenter und im Menü \"Zuletzt benutzte Dokumente\" an.");
}

void TCP_OpenOffice_Initialization() {
  OpenOfficeMRU = std::make_unique<TTCPOpenOfficeMRU>();
  LibreOfficeMRU = std::make_unique<TTCPLibreOfficeMRU>();
}

void TCP_OpenOffice_Finalization() {
  LibreOfficeMRU.reset();
  OpenOfficeMRU.reset();
}

}  // namespace tc
