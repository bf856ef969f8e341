// What the host lists on a bare machine, in creation order: one line per plug-in with its
// ID, section, captions, icon, whether it starts switched on and how many locations it has.
// The expected listing is Catalogue.txt; TC_UPDATE_CATALOGUE=1 rewrites it from the build.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "AppPluginFixture.h"

namespace tc {
namespace {

class CatalogueTest : public AppPluginFixture {};

TEST_F(CatalogueTest, BareMachineListing) {
  Start();
  std::string listing;
  for (TTCPlugin* p : *Plugins) {
    EXPECT_FALSE(p->Description.empty()) << ToUtf8(p->ID);
    listing += ToUtf8(p->ID + u" | " + p->Section + u" | " + p->AppCaption + u" | " +
                      p->Caption + u" | " + p->IconFile) +
               (p->Active ? "" : " | off") +
               (p->TraceLocations.empty() ? "" : " | " + std::to_string(p->TraceLocations.size())) +
               "\n";
  }
  const std::filesystem::path file = std::filesystem::path(TC_TESTS_DIR) / "plugins" / "Catalogue.txt";
  if (std::getenv("TC_UPDATE_CATALOGUE")) std::ofstream(file, std::ios::binary) << listing;
  std::ifstream in(file, std::ios::binary);
  std::ostringstream expected;
  expected << in.rdbuf();
  EXPECT_EQ(expected.str(), listing) << "TC_UPDATE_CATALOGUE=1 rewrites " << file;
  // The one description that ends without a full stop, as the program has it.
  const String& movieMaker = Plugin(u"MovieMakerMRU").Description;
  EXPECT_TRUE(movieMaker.ends_with(u"Movie Maker Projekten")) << ToUtf8(movieMaker);
}

}  // namespace
}  // namespace tc
