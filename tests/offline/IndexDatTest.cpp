#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>

#include "OfflineTestSupport.h"
#include "platform/helpers/TextCodec.h"
#include "platform/offline/IndexDat.h"

namespace fs = std::filesystem;

namespace tc {
namespace {

const fs::path kCacheFiles = fs::path(TC_REALWORLD_DIR) / "iecache";

Bytes Load(const std::string& name) {
  std::string s = test::ReadBytes(kCacheFiles / name);
  return Bytes(s.begin(), s.end());
}

IndexDat Read(const Bytes& data) {
  IndexDat index;
  std::string error;
  EXPECT_TRUE(ReadIndexDat(data, index, error)) << error;
  return index;
}

bool Holds(const Bytes& data, const String& text) {
  std::string needle = ToAnsi(text);
  return std::search(data.begin(), data.end(), needle.begin(), needle.end()) != data.end();
}

void Put32(Bytes& d, size_t at, uint32_t v) { std::memcpy(d.data() + at, &v, 4); }

class RealIndexDat : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!fs::exists(kCacheFiles)) GTEST_SKIP() << kCacheFiles << " is not there";
  }
};

// The record counts of the shared sources' list, and what the records name.
TEST_F(RealIndexDat, ReadsEveryRecordOfTheRealFiles) {
  struct Case {
    const char* file;
    size_t urls;
    int redirects, recovered;
    size_t withFile, hostKeys, directories;
  } cases[] = {
      {"Content.IE5-index.dat", 21, 14, 0, 21, 0, 4},
      {"History.IE5-index.dat", 15, 0, 2, 0, 0, 0},
      {"MSHist01-index.dat", 23, 0, 0, 0, 9, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.file);
    IndexDat index = Read(Load(c.file));
    EXPECT_EQ(c.urls, index.Records.size());
    EXPECT_EQ(c.redirects, index.Redirects);
    EXPECT_EQ(c.recovered, index.Recovered);
    EXPECT_EQ(c.directories, index.Directories.size());
    auto count = [&](auto pred) {
      return static_cast<size_t>(std::count_if(index.Records.begin(), index.Records.end(), pred));
    };
    EXPECT_EQ(c.withFile, count([](const IndexDatRecord& r) { return !r.FileName.empty(); }));
    EXPECT_EQ(c.hostKeys, count([](const IndexDatRecord& r) {
                return r.Url.find(u"@:Host: ") != String::npos;
              }));
  }
  IndexDat content = Read(Load("Content.IE5-index.dat"));
  EXPECT_EQ(u"http://static-hp-neu.s-msn.com/sc/54/4f1880.ico", content.Records[0].Url);
  EXPECT_EQ(u"4f1880[1].ico", content.Records[0].FileName);
  EXPECT_EQ(u"ENG3X4ZR", content.Directories[content.Records[0].Directory]);
}

TEST_F(RealIndexDat, FreedRecordsLeaveNoTraceAndTheRestReadsAsBefore) {
  Bytes data = Load("History.IE5-index.dat");
  IndexDat before = Read(data);
  // An address of an earlier, freed copy of a record still lies in the free blocks.
  const String remnant = u"id=40901";
  ASSERT_TRUE(Holds(data, remnant));
  std::vector<uint32_t> offsets;
  StringList gone;
  for (const auto& r : before.Records) {
    if (r.Url.find(u"download.microsoft.com") == String::npos && r.Url.find(remnant) == String::npos)
      continue;
    offsets.push_back(r.Offset);
    gone.push_back(r.Url);
  }
  ASSERT_EQ(4u, offsets.size());
  std::string error;
  ASSERT_TRUE(FreeIndexDatRecords(data, offsets, error)) << error;

  IndexDat after = Read(data);
  EXPECT_EQ(before.Records.size() - offsets.size(), after.Records.size());
  EXPECT_EQ(0, after.Recovered);
  for (const auto& url : gone) EXPECT_FALSE(Holds(data, url.substr(url.find(u'@') + 1)));
  EXPECT_FALSE(Holds(data, remnant));
  EXPECT_TRUE(Holds(data, u"http://www.msn.com/?ocid=iehp"));
}

TEST_F(RealIndexDat, RefusesDamageAndChangesNothing) {
  const Bytes good = Load("Content.IE5-index.dat");
  const uint32_t record = Read(good).Records[0].Offset;
  // Rows with a message are the reader's refusals, made before libmsiecf sizes a table by the
  // damage or walks it without end; the others the rewrite's, which changes nothing.
  struct Case {
    const char* what;
    std::function<void(Bytes&)> damage;
    uint32_t offset;
    const char* readError = nullptr;
  } cases[] = {
      {"cut short", [](Bytes& d) { d.resize(0x3000); }, record},
      {"hash tables in a loop", [](Bytes& d) { Put32(d, 0x5000 + 8, 0x5000); }, record},
      {"hash table outside the file", [](Bytes& d) { Put32(d, 0x20, 0x7FFFFF80); }, record},
      {"no record at the offset", [](Bytes&) {}, record + 128},
      {"a record that is not allocated", [record](Bytes& d) { d[0x250 + (record - 0x4000) / 1024] = 0; },
       record},
      {"a record longer than the file", [record](Bytes& d) { Put32(d, record + 4, 0x100000); }, record},
      {"more cache folders than the header holds", [](Bytes& d) { Put32(d, 0x48, 0xFFFFFF00); },
       record, "cache folders"},
      {"blocks in use far past the last one", [](Bytes& d) { d[0x250 + 0x3000] = 0x01; }, record,
       "past the index's last block"},
      {"a record of no blocks", [record](Bytes& d) { Put32(d, record + 4, 0); }, record,
       "blocks; the index ends"},
      {"a record whose size wraps round in 32 bits",
       [record](Bytes& d) { Put32(d, record + 4, 0x50000000); }, record, "blocks; the index ends"},
  };
  IndexDat index;
  std::string error;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Bytes data = good;
    c.damage(data);
    if (c.readError) {
      EXPECT_FALSE(ReadIndexDat(data, index, error));
      EXPECT_NE(std::string::npos, error.find(c.readError)) << error;
      continue;
    }
    const Bytes damaged = data;
    error.clear();
    EXPECT_FALSE(FreeIndexDatRecords(data, {c.offset}, error));
    EXPECT_FALSE(error.empty());
    EXPECT_EQ(damaged, data);
  }
  // A record whose data size reaches past it (libmsiecf would allocate 4 GiB) is read without
  // its values; the others are read as before.
  Bytes huge = good;
  Put32(huge, record + 0x48, 0xFFFFFF13);
  ASSERT_TRUE(ReadIndexDat(huge, index, error)) << error;
  EXPECT_EQ(Read(good).Records.size(), index.Records.size());
  EXPECT_TRUE(index.Records[0].Url.empty());
}

// What a built index holds is the URL cache contract's business on the offline backend.
TEST(IndexDatBuild, RefusesMoreEntriesThanAnIndexHolds) {
  std::vector<IndexDatEntry> tooMany(70000, IndexDatEntry{u"Cookie:anna@alpha.test/", u"", u"anna@alpha[1].txt"});
  Bytes data;
  std::string error;
  EXPECT_FALSE(BuildIndexDat(tooMany, data, error));
}

}  // namespace
}  // namespace tc
