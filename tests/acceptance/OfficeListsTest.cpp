// OpenOffice's and LibreOffice's recent-document lists through the command, on LibreOffice's
// own registrymodifications.xcu.
#include <algorithm>

#include "CommandSupport.h"

namespace tc {
namespace {

using namespace test;

const std::string kRoaming = "Users/Anna/AppData/Roaming/";

std::string CommonXcu(const std::string& first, const std::string& second) {
  std::string entries;
  int n = 0;
  for (const std::string& url : {first, second}) {
    if (url.empty()) continue;
    entries += "   <node oor:name=\"h" + std::to_string(n++) +
               "\" oor:op=\"replace\">\n"
               "    <prop oor:name=\"URL\" oor:type=\"xs:string\">\n"
               "     <value>" + url + "</value>\n    </prop>\n   </node>\n";
  }
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<oor:component-data oor:name=\"Common\">\n"
         " <node oor:name=\"History\">\n  <node oor:name=\"PickList\">\n" + entries +
         "  </node>\n </node>\n <node oor:name=\"Misc\"/>\n</oor:component-data>\n";
}

// The file without its lines that hold pick-list items (LibreOffice writes one per line).
std::string WithoutPickList(const std::string& xcu, size_t& items) {
  std::string out;
  items = 0;
  for (size_t at = 0; at < xcu.size();) {
    size_t end = std::min(xcu.find('\n', at), xcu.size() - 1) + 1;
    std::string line = xcu.substr(at, end - at);
    at = end;
    if (line.find("HistoryInfo['PickList']") != std::string::npos) continue;
    if (line.rfind("<item ", 0) == 0) ++items;
    out += line;
  }
  return out;
}

// Where two files first differ, for a readable failure.
std::string FirstDifference(const std::string& a, const std::string& b) {
  size_t i = std::mismatch(a.begin(), a.begin() + std::min(a.size(), b.size()), b.begin()).first - a.begin();
  if (i == a.size() && i == b.size()) return "";
  return "at byte " + std::to_string(i) + ": \"" + a.substr(i, 60) + "\" / \"" + b.substr(i, 60) + "\"";
}

TEST(OfficeListsTest, EveryListIsCountedAndCleanedAndTheRestOfEachFileStays) {
  const fs::path real = fs::path(TC_REALWORLD_DIR) / "office/registrymodifications.xcu";
  if (!fs::exists(real)) GTEST_SKIP() << "no " << real;
  const std::string libre = ReadBytes(real);
  TempDir dir;
  const fs::path image = dir.Path() / "image";
  MakeImage(image, "Windows Registry Editor Version 5.00\n");
  const fs::path oo3 = image / (kRoaming + "OpenOffice.org/3/user/registrymodifications.xcu");
  WriteBytes(oo3, libre);

  // LibreOffice's file where OpenOffice 3 keeps its own: the same walk reads it.
  json scan = RunJson("scan --image " + Quote(image.string()) + " --plugins OpenOfficeMRU");
  EXPECT_EQ(19, PluginOf(scan, "OpenOfficeMRU")["traceCount"]);
  json clean = RunJson("clean --yes --image " + Quote(image.string()) + " --plugins OpenOfficeMRU");
  EXPECT_EQ(0, PluginOf(clean, "OpenOfficeMRU")["remaining"]);
  size_t items = 0;
  EXPECT_EQ("", FirstDifference(WithoutPickList(libre, items), ReadBytes(oo3)));
  EXPECT_EQ(185u, items);

  const std::string oo2Before = CommonXcu("file:///C:/Users/Anna/Geheim%20Brief.odt",
                                          "file:///C:/Users/Anna/Konto.ods");
  const fs::path oo2 = image / (kRoaming + "OpenOffice.org2/user/registry/data/org/openoffice/Office/Common.xcu");
  const fs::path lo = image / (kRoaming + "LibreOffice/4/user/registrymodifications.xcu");
  WriteBytes(oo2, oo2Before);
  WriteBytes(lo, libre);

  clean = RunJson("clean --yes --image " + Quote(image.string()) +
                  " --plugins OpenOfficeMRU,LibreOfficeMRU");
  EXPECT_EQ(0, PluginOf(clean, "OpenOfficeMRU")["remaining"]);
  EXPECT_EQ(0, PluginOf(clean, "LibreOfficeMRU")["remaining"]);
  EXPECT_EQ(CommonXcu("", ""), ReadBytes(oo2));
  EXPECT_EQ("", FirstDifference(WithoutPickList(libre, items), ReadBytes(lo)));
  EXPECT_TRUE(clean["failures"].empty()) << clean["failures"];
}

}  // namespace
}  // namespace tc
