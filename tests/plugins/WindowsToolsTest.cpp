// Accessory recent lists: WordPad, Paint, Registry Editor, Remote Desktop, Movie Maker.
#include "AppPluginFixture.h"
#include "plugins/TCP_WindowsTools.h"

namespace tc {
namespace {

const String kApplets = u"Software\\Microsoft\\Windows\\CurrentVersion\\Applets\\";
const String kWordPad = kApplets + u"Wordpad\\Recent File List";
const String kPaint = kApplets + u"Paint\\Recent File List";
const String kRegedit = kApplets + u"Regedit";
const String kTermSrv = u"Software\\Microsoft\\Terminal Server Client\\Default";
const String kMovieMaker = u"Software\\Microsoft\\MM20\\Recent Document List";

class WindowsToolsTest : public AppPluginFixture {};

TEST_F(WindowsToolsTest, TracesFoundReportedAndCleaned) {
  struct Case {
    const char16_t* id;
    String key;
    std::vector<std::pair<String, String>> values;  // seeded in this order
    int count;
    StringList reported;
    TTraceTargetType target;
    TTraceFlags flags;  // 6: removed item by item, renumbered by Fix
    StringList left;    // value names the clean leaves in the key
  } cases[] = {
      {u"WordPad", kWordPad,
       {{u"File1", u"C:\\Briefe\\bank.rtf"}, {u"File2", u"  "}, {u"File3", u"C:\\x.rtf"},
        {u"Files", u"kein Eintrag"}},
       2, {u"File1", u"File3"}, TTT_FileName, 6, {u"Files"}},
      {u"MSPaint", kPaint, {{u"File1", u"C:\\Bilder\\urlaub.bmp"}, {u"file12", u"C:\\y.png"}},
       2, {u"File1", u"file12"}, TTT_FileName, 6, {}},
      // The one value goes; the key and its other settings stay.
      {u"Regedit", kRegedit,
       {{u"LastKey", u"Arbeitsplatz\\HKEY_LOCAL_MACHINE\\SOFTWARE\\Bank"}, {u"View", u"1"}},
       1, {}, TTT_Unknown, 0, {u"View"}},
      {u"TermSrvClient", kTermSrv,
       {{u"MRU0", u"buero.example.com"}, {u"MRU1", u"10.0.0.2"}, {u"MRUX", u"bleibt"}},
       2, {u"MRU0", u"MRU1"}, TTT_Unknown, 0, {u"MRUX"}},
      {u"MovieMakerMRU", kMovieMaker, {{u"Document1", u"C:\\Filme\\urlaub.MSWMM"}},
       1, {u"Document1"}, TTT_Unknown, 0, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(ToUtf8(c.id));
    Reset();
    for (const auto& [name, data] : c.values) Str(HKEY_CURRENT_USER, c.key, name, data);
    Str(HKEY_CURRENT_USER, kApplets + u"Wordpad\\Options", u"Wrap", u"1");
    Start();
    EXPECT_EQ(Scan(c.id), c.count);
    EXPECT_EQ(FoundNames(), c.reported);
    for (const auto& f : found) {
      EXPECT_EQ(f.Target, c.target);
      EXPECT_EQ(f.Flags, c.flags);
      EXPECT_EQ(f.Key, c.key);
    }
    auto [lost, gained] = CleanAndDiff({c.id});
    EXPECT_EQ(Names(c.key), c.left);
    // Only values of the list's own key went.
    EXPECT_TRUE(gained.empty());
    for (const auto& line : lost) EXPECT_EQ(line.rfind(u"HKCU\\" + c.key + u"[", 0), 0u) << ToUtf8(line);
  }
}

}  // namespace
}  // namespace tc
