#include <gtest/gtest.h>

#include <cstring>
#include <functional>

#include "OfflineTestSupport.h"
#include "SyscallFaults.h"
#include "platform/helpers/TextCodec.h"
#include "platform/offline/Hive.h"
#include "platform/offline/HiveFormat.h"
#include "tests/support/RealWorld.h"

namespace fs = std::filesystem;

namespace tc {
namespace {

using test::TempDir;

size_t CountKeys(Hive& hive, Hive::Node node) {
  size_t n = 1;
  StringList names;
  EXPECT_EQ(0u, hive.ChildNames(node, names));
  for (const auto& name : names) n += CountKeys(hive, hive.Child(node, name));
  return n;
}

Hive::Node Walk(Hive& hive, std::initializer_list<const char16_t*> path) {
  Hive::Node node = hive.Root();
  for (const char16_t* part : path) node = node ? hive.Child(node, part) : 0;
  return node;
}

const RegNamedValue* Find(const std::vector<RegNamedValue>& values, const String& name) {
  for (const auto& v : values)
    if (SameText(v.Name, name)) return &v;
  return nullptr;
}

void PutLe32(std::string& bytes, size_t at, uint32_t v) {
  for (int i = 0; i < 4; ++i) bytes[at + i] = char(v >> (8 * i));
}

void FixChecksum(std::string& bytes) {
  uint32_t sum = 0;
  for (size_t i = 0; i < 508; i += 4) {
    uint32_t d;
    std::memcpy(&d, bytes.data() + i, 4);
    sum ^= d;
  }
  PutLe32(bytes, 508, sum);
}

TEST(HiveFormatTest, RefusesWhatIsNotACleanCompleteHive) {
  TC_SKIP_WITHOUT_REALWORLD();
  TempDir dir;
  const std::string good = [&] {
    fs::path p = dir.Path() / "good";
    EXPECT_EQ(0, WriteEmptyHive(p.string(), "ROOT"));
    return test::ReadBytes(p);
  }();
  struct Case {
    const char* name;
    std::function<std::string()> make;
    const char* reason;  // "" for a hive that is accepted
  };
  const Case cases[] = {
      {"empty hive", [&] { return good; }, ""},
      {"Windows 9x file", [&] { return test::ReadBytes(fs::path(TC_REALWORLD_DIR) /
                                                       "hives/USER-win9x.DAT"); },
       "Windows 95/98/Me"},
      {"text file", [] { return std::string("just some text, no hive at all\n"); },
       "no regf signature"},
      {"empty file", [] { return std::string(); }, "no regf signature"},
      {"pending log", [&] { auto b = good; PutLe32(b, 4, 7); FixChecksum(b); return b; },
       "unapplied transaction logs"},
      {"cut after base block", [&] { return good.substr(0, 4096 + 100); }, "truncated"},
      {"cut in base block", [&] { return good.substr(0, 200); }, "truncated"},
      {"bad checksum", [&] { auto b = good; b[100] ^= 1; return b; }, "checksum"},
  };
  for (const auto& c : cases) {
    fs::path file = dir.Path() / "case";
    test::WriteBytes(file, c.make());
    std::string error;
    std::unique_ptr<Hive> hive = Hive::Open(file.string(), error);
    if (*c.reason == 0) {
      EXPECT_TRUE(hive) << c.name << ": " << error;
    } else {
      EXPECT_FALSE(hive) << c.name;
      EXPECT_NE(std::string::npos, error.find(c.reason)) << c.name << ": " << error;
      EXPECT_NE(std::string::npos, error.find(file.string())) << c.name << ": " << error;
    }
  }
}

TEST(HiveTest, RealWindows10HiveReadsAsItsOriginSaysAndRewritesWithNothingToRecover) {
  TC_SKIP_WITHOUT_REALWORLD();
  TempDir dir;
  fs::path file = dir.Path() / "NTUSER.DAT";
  test::CopyRealHive("NTUSER-win10.DAT", file);
  std::string error;
  size_t spotifyKeys = 0;
  {
    auto hive = Hive::Open(file.string(), error);
    ASSERT_TRUE(hive) << error;
    EXPECT_EQ(1597u, CountKeys(*hive, hive->Root()));
    StringList names;
    ASSERT_EQ(0u, hive->ChildNames(hive->Root(), names));
    EXPECT_EQ(u"AppEvents", names.at(0));
    Hive::Node software = Walk(*hive, {u"SOFTWARE"});
    ASSERT_EQ(0u, hive->ChildNames(software, names));
    EXPECT_EQ(7u, names.size());
    EXPECT_EQ(1219u, CountKeys(*hive, software));  // the key itself and all below it
    const std::vector<RegNamedValue>* values = nullptr;
    ASSERT_EQ(0u, hive->Values(software, values));
    EXPECT_TRUE(values->empty());
    ASSERT_EQ(0u, hive->Values(Walk(*hive, {u"Console"}), values));
    EXPECT_EQ(37u, values->size());
    const RegNamedValue* color = Find(*values, u"colortable14");
    ASSERT_TRUE(color);
    EXPECT_EQ(REG_DWORD, color->Value.Type);
    EXPECT_EQ((Bytes{0xFF, 0xFF, 0, 0}), color->Value.Data);

    Hive::Node typed = Walk(*hive, {u"Software", u"Microsoft", u"Internet Explorer", u"TypedURLs"});
    ASSERT_TRUE(typed);
    ASSERT_EQ(0u, hive->Values(typed, values));
    std::vector<RegNamedValue> kept;
    for (const auto& v : *values)
      if (v.Name != u"url1") kept.push_back(v);
    ASSERT_EQ(4u, kept.size());
    ASSERT_EQ(0u, hive->SetValues(typed, kept));
    spotifyKeys = CountKeys(*hive, Walk(*hive, {u"Software", u"Spotify"}));
    ASSERT_EQ(0u, hive->DeleteTree(Walk(*hive, {u"Software", u"Spotify"})));
    EXPECT_EQ(ERROR_ACCESS_DENIED, hive->DeleteTree(hive->Root()));
    ASSERT_EQ(0u, hive->Commit(error)) << error;
  }
  auto hive = Hive::Open(file.string(), error);
  ASSERT_TRUE(hive) << "the rewritten hive must pass the same checks: " << error;
  EXPECT_EQ(1597u - spotifyKeys, CountKeys(*hive, hive->Root()));
  const std::vector<RegNamedValue>* values = nullptr;
  ASSERT_EQ(0u, hive->Values(
                    Walk(*hive, {u"Software", u"Microsoft", u"Internet Explorer", u"TypedURLs"}),
                    values));
  EXPECT_FALSE(Find(*values, u"url1"));
  ASSERT_TRUE(Find(*values, u"url2"));

  // Neither the deleted value nor the deleted key can be read back from the file.
  const std::string bytes = test::ReadBytes(file);
  Bytes wide = ToUtf16LE(u"http://www.catnews.com/");
  EXPECT_EQ(std::string::npos, bytes.find(std::string(wide.begin(), wide.end())));
  std::vector<uint8_t> copy(bytes.begin(), bytes.end());
  EXPECT_EQ(0u, ZeroFreeCells(copy.data(), copy.size()));

  std::string out;
  if (test::HaveTool("reglookup-recover")) {
    EXPECT_EQ(0, test::Run("reglookup-recover '" + file.string() + "'", &out));
    EXPECT_EQ(std::string::npos, out.find("catnews")) << out;
    EXPECT_EQ(std::string::npos, out.find("url1")) << out;
    EXPECT_EQ(std::string::npos, out.find("Spotify")) << out;
  }
  if (test::HaveTool("reglookup")) {
    EXPECT_EQ(0, test::Run("reglookup -p /Console '" + file.string() + "'", &out));
    EXPECT_NE(std::string::npos, out.find("ColorTable14,DWORD,0x0000FFFF")) << out;
  }
  if (test::HaveTool("hivexsh")) {
    EXPECT_EQ(0, test::Run("printf 'cd Software\\\\Microsoft\\\\Internet Explorer\\\\TypedURLs\\n"
                           "lsval\\n' | hivexsh '" + file.string() + "'", &out));
    EXPECT_NE(std::string::npos, out.find("spotify.com")) << out;
  }
}

// Every file call of a commit fails once in turn, hivex's own included.
TEST(HiveTest, AFailureAtAnyStepOfACommitLeavesTheOldHiveOrTheNew) {
  TempDir dir;
  fs::path file = dir.Path() / "NTUSER.DAT";
  std::string error;
  ASSERT_EQ(0, WriteEmptyHive(file.string(), "ROOT"));
  {
    auto hive = Hive::Open(file.string(), error);
    Hive::Node child = 0;
    ASSERT_EQ(0u, hive->AddChild(hive->Root(), u"Trace", child));
    ASSERT_EQ(0u, hive->SetValues(child, {{u"File1", {REG_SZ, {'s', 0, 'e', 0, 'c', 0, 0, 0}}}}));
    ASSERT_EQ(0u, hive->Commit(error)) << error;
  }
  const std::string before = test::ReadBytes(file);
  std::vector<std::string> afterFailures;
  for (uint64_t n = 1; n < 200; ++n) {
    auto hive = Hive::Open(file.string(), error);
    ASSERT_TRUE(hive) << error;
    ASSERT_EQ(0u, hive->DeleteTree(Walk(*hive, {u"Trace"})));
    test::FailNthFileCall(n);
    const uint32_t rc = hive->Commit(error);
    const bool failed = !test::FileCallFailurePending();
    test::FailNthFileCall(0);
    hive.reset();
    size_t names = 0;
    for (const auto& e : fs::directory_iterator(dir.Path())) names += e.exists() ? 1 : 0;
    EXPECT_EQ(1u, names) << "call " << n << " failed: a new file stayed behind";
    if (!failed) {
      EXPECT_GT(n, 1u) << "no file call failed: the sweep proved nothing";
      ASSERT_EQ(0u, rc) << error;
      const std::string after = test::ReadBytes(file);
      auto reopened = Hive::Open(file.string(), error);
      ASSERT_TRUE(reopened) << error;
      EXPECT_EQ(0u, Walk(*reopened, {u"Trace"}));
      for (const std::string& left : afterFailures) EXPECT_TRUE(left == before || left == after);
      return;
    }
    if (rc != 0) {
      EXPECT_NE(std::string::npos, error.find(file.string())) << error;
    }
    afterFailures.push_back(test::ReadBytes(file));
    test::WriteBytes(file, before);
  }
  ADD_FAILURE() << "the commit never ran without a failure";
}

// Cleans set and remove one value at a time through the name index; the file written
// afterwards holds exactly what a whole-list rewrite would have. Key names outside ASCII
// match without case too.
TEST(HiveTest, OneValueAtATimeKeepsPlacesNamesAndDuplicatesRules) {
  TempDir dir;
  fs::path file = dir.Path() / "h";
  ASSERT_EQ(0, WriteEmptyHive(file.string(), "ROOT"));
  std::string error;
  auto hive = Hive::Open(file.string(), error);
  Hive::Node key = 0;
  ASSERT_EQ(0u, hive->AddChild(hive->Root(), u"Größe Ärger", key));
  const RegValue one{REG_SZ, {'1', 0, 0, 0}}, two{REG_SZ, {'2', 0, 0, 0}};
  ASSERT_EQ(0u, hive->SetValues(key, {{u"a", one}, {u"Dup", one}, {u"DUP", one}, {u"c", one}}));
  struct Step {
    enum { Set, Delete } op;
    const char16_t* name;
    uint32_t rc;
  };
  const Step steps[] = {
      {Step::Delete, u"dup", 0},                     // both spellings of a damaged hive go
      {Step::Delete, u"DUP", ERROR_FILE_NOT_FOUND},  // and nothing of that name is left
      {Step::Set, u"A", 0},                          // in place, as "a"
      {Step::Delete, u"c", 0},
      {Step::Set, u"C", 0},                          // removed, then new: at the end
      {Step::Set, u"b", 0},
      {Step::Delete, u"b", 0},
      {Step::Set, u"d", 0},
  };
  for (const auto& s : steps)
    EXPECT_EQ(s.rc, s.op == Step::Set ? hive->SetValue(key, s.name, two)
                                      : hive->DeleteValue(key, s.name)) << ToUtf8(s.name);
  const RegValue* found = nullptr;
  ASSERT_EQ(0u, hive->FindValue(key, u"D", found));
  ASSERT_TRUE(found);
  EXPECT_EQ(two.Data, found->Data);
  ASSERT_EQ(0u, hive->Commit(error)) << error;
  auto reopened = Hive::Open(file.string(), error);
  EXPECT_FALSE(reopened->Child(reopened->Root(), u"GRÖSSE ärger"))
      << "ß has no upper-case letter of its own";
  const Hive::Node spelled = reopened->Child(reopened->Root(), u"grÖße äRGER");
  ASSERT_TRUE(spelled);
  const std::vector<RegNamedValue>* values = nullptr;
  ASSERT_EQ(0u, reopened->Values(spelled, values));
  std::vector<std::u16string> names;
  for (const auto& v : *values) names.push_back(v.Name);
  EXPECT_EQ((std::vector<std::u16string>{u"a", u"C", u"d"}), names);
  EXPECT_EQ(two.Data, (*values)[0].Value.Data);
}

}  // namespace
}  // namespace tc
