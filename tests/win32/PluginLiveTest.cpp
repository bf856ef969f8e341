// A declarative plug-in on the live registry: scan, fix and clean of a numbered list.
#include <algorithm>

#include "engine/TC_BasePlugin.h"
#include "LiveFixture.h"  // last: it brings <windows.h>

namespace tc {
namespace {

using PluginLive = LiveTest;

StringList ValueNames(IRegistry& reg, const String& key) {
  std::vector<RegNamedValue> values;
  reg.EnumValues(kHKEY_CURRENT_USER, key, values, RegView::Default);
  StringList names;
  for (const auto& v : values) names.push_back(v.Name);
  std::sort(names.begin(), names.end());
  return names;
}

TEST_F(PluginLive, NumberedListIsScannedFixedAndCleaned) {
  SetString(u"File2", u"C:\\a.txt");
  SetString(u"File5", u"C:\\b.txt");
  SetString(u"file9", u"C:\\c.txt");
  SetString(u"File7", u"  ");  // blank data: no trace
  SetString(u"Files", u"C:\\not-numbered.txt");
  TTCPlugin plugin(u"TTCPLiveList");
  plugin.AddTraceLocation(TLT_Registry_NumberedNames,
                          new TLD_Registry_NumberedNames(kHKEY_CURRENT_USER, key_, u"File", 0),
                          TTT_FileName,
                          FlagOf(TF_Deletable_Per_Item) | FlagOf(TF_Needs_Fix_After_Cleaning));
  StringList found;
  plugin.OnScanTraceFound = [&](TTCPlugin*, TTraceSourceType, const TTraceSourceData&,
                                TTraceTargetType, TTraceFlags, const String& data) {
    found.push_back(data);
  };
  plugin.Scan();
  EXPECT_EQ(3, plugin.TraceCount);
  std::sort(found.begin(), found.end());
  EXPECT_EQ((StringList{u"C:\\a.txt", u"C:\\b.txt", u"C:\\c.txt"}), found);

  plugin.Fix();  // closes the gaps: 2, 5, 7, 9 become 1, 2, 3, 4
  EXPECT_EQ((StringList{u"File1", u"File2", u"File3", u"File4", u"Files"}),
            ValueNames(Reg(), key_));

  plugin.Clean();
  EXPECT_EQ((StringList{u"Files"}), ValueNames(Reg(), key_));
  plugin.Scan();
  EXPECT_EQ(0, plugin.TraceCount);
  EXPECT_TRUE(plugin.Active);  // the key is still there
}

}  // namespace
}  // namespace tc
