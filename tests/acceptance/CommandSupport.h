// What the acceptance tests share: running the built command, images made by tc_mkimage.
#pragma once
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "OfflineTestSupport.h"

namespace tc::test {

namespace fs = std::filesystem;
using nlohmann::json;

inline std::string Quote(const std::string& s) { return "'" + s + "'"; }

// Runs tracecleaner with the given arguments; stdin is never a terminal here.
inline int Tracecleaner(const std::string& args, std::string& out) {
  return Run(std::string(TC_TRACECLEANER) + " " + args + " </dev/null", &out);
}

inline json RunJson(const std::string& args, int expectedCode = 0) {
  std::string out;
  int code = Run(std::string(TC_TRACECLEANER) + " --json " + args + " </dev/null 2>/dev/null",
                       &out);
  EXPECT_EQ(expectedCode, code) << args << "\n" << out;
  json doc = json::parse(out, nullptr, false);
  EXPECT_FALSE(doc.is_discarded()) << out;
  return doc;
}

inline const json& PluginOf(const json& doc, const std::string& id) {
  static const json none;
  for (const auto& p : doc["plugins"])
    if (p["id"] == id) return p;
  ADD_FAILURE() << "no plug-in " << id;
  return none;
}

// An image made by tc_mkimage from the .reg text and a small profile tree (user Anna).
inline void MakeImage(const fs::path& image, const std::string& reg) {
  TempDir source;
  fs::create_directories(source.Path() / "tree" / "Users" / "Anna" / "Documents");
  WriteBytes(source.Path() / "tree" / "Users" / "Anna" / "Documents" / "Brief.rtf", "x");
  WriteBytes(source.Path() / "registry" / "user.reg", reg);
  std::string out;
  ASSERT_EQ(0, Run(std::string(TC_MKIMAGE) + " " + Quote(source.Str()) + " " +
                             Quote(image.string()), &out)) << out;
}

// A copy of the demo image below `dir`, for a test that changes it.
inline fs::path DemoCopy(const TempDir& dir, const char* name = "image") {
  fs::path image = dir.Path() / name;
  fs::copy(TC_DEMO_IMAGE_DIR, image, fs::copy_options::recursive);
  return image;
}

// Every line of reglookup's listing (path, type, value), without the header and without the
// warnings it prints amid the lines; keys by their path only if asked (writes move their time).
inline std::set<std::string> Listing(const fs::path& hive, bool keyPathsOnly = false) {
  std::string out;
  EXPECT_EQ(0, Run("(reglookup -H " + Quote(hive.string()) + " 2>/dev/null)", &out)) << out;
  std::set<std::string> lines;
  std::istringstream in(out);
  for (std::string line; std::getline(in, line);)
    lines.insert(keyPathsOnly ? line.substr(0, line.find(",KEY,")) : line);
  return lines;
}

}  // namespace tc::test
