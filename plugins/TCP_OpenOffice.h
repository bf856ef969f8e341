// Recently used documents of OpenOffice 2 and 3 and of LibreOffice, kept in their
// configuration files: walked line by line in version 2, as an XML document from version 3.
#pragma once
#include <memory>
#include <unordered_map>

#include "engine/TC_BasePlugin.h"
#include "platform/XmlDocument.h"

namespace tc {

// One recent document found in a configuration file.
struct TOOMRUBlock {
  int32_t FirstLine = 0;  // text files: the line opening the entry's node
  int32_t LastLine = 0;   // text files: the line closing it
  String FileName;        // the document as a Windows path
  bool Selected = false;  // chosen by the host for removal
  int32_t Source = 0;     // index of the configuration file it came from
  String ItemURL;         // XML files: the entry's "file:///" URL as stored
};

enum TOOScanStatus : uint8_t { StartScan, InHistory, InPickList, InHistoryNode };

class TTCPOpenOfficeMRU : public TTCPlugin {
 public:
  TTCPOpenOfficeMRU();
  ~TTCPOpenOfficeMRU() override;
  void Scan() override;
  void Clean() override;
  // Selects every found document whose file name is `Folder`, without regard to case.
  void PrepareToClean(const String& Folder) override;
  void clearlist();

  StringList ConfigFiles;
  std::vector<std::unique_ptr<TOOMRUBlock>> Entries;
  bool Version3Scanned = false;  // set whenever the XML file is scanned; nothing reads it

 protected:
  // The same lists in other files; the file at `xcuIndex` is read as XML and ends the walk.
  TTCPOpenOfficeMRU(const String& className, StringList files, size_t xcuIndex);

 private:
  void ScanTextFile(int32_t index);
  void ScanXcuFile(int32_t index);
  void CleanTextFile(int32_t index);
  void CleanXcuFile(int32_t index);
  void Record(std::unique_ptr<TOOMRUBlock> entry);

  size_t XcuIndex_;
  // The entries by upper-cased file name: the host selects one name at a time.
  std::unordered_multimap<String, TOOMRUBlock*> ByName_;
};

// LibreOffice's registrymodifications.xcu, read and cleaned as OpenOffice 3's.
class TTCPLibreOfficeMRU : public TTCPOpenOfficeMRU {
 public:
  TTCPLibreOfficeMRU();
};

// The pick-list entries of a version-2 Common.xcu, given as lines; `source` goes into each.
std::vector<TOOMRUBlock> WalkPickListLines(const StringList& lines, int32_t source);
// The pick-list entries of a version-3 settings document, in document order.
std::vector<TOOMRUBlock> WalkPickListItems(IXmlDocument& doc, int32_t source);
// Removes every pick-list and URL-history item (entries and order entries) naming one of
// `urls`, compared without regard to case; returns how many items went.
size_t RemoveHistoryItems(IXmlDocument& doc, const StringList& urls);
// A "file:///" URL without its scheme, as a Windows path: "/" becomes "\", "%20" a blank.
String OOFileNameOfURL(const String& rest);

void TCP_OpenOffice_Initialization();
void TCP_OpenOffice_Finalization();

}  // namespace tc
