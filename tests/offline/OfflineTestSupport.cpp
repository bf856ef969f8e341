#include "OfflineTestSupport.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <cstdio>
#include <fstream>
#include <sstream>

#include "platform/offline/HiveFormat.h"
#include "platform/offline/OfflineImage.h"
#include "platform/offline/RegFileImport.h"

namespace fs = std::filesystem;

namespace tc::test {

TempDir::TempDir() {
  std::string tmpl = (fs::temp_directory_path() / "tc-offline-XXXXXX").string();
  if (!mkdtemp(tmpl.data())) throw std::runtime_error("mkdtemp failed");
  path_ = tmpl;
}

TempDir::~TempDir() {
  std::error_code ec;
  fs::remove_all(path_, ec);
}

std::string ReadBytes(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

void WriteBytes(const fs::path& file, const std::string& bytes) {
  fs::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << bytes;
}

void MakeImage(const fs::path& dir, const std::string& user, const std::string& regText,
               bool machine, bool xp) {
  fs::path profile = dir / (xp ? "Documents and Settings" : "Users") / user;
  fs::create_directories(profile);
  ASSERT_EQ(0, WriteEmptyHive((profile / "NTUSER.DAT").string(), "ROOT"));
  if (machine) {
    fs::path config = dir / (xp ? "WINDOWS" : "Windows") / "System32" / "config";
    fs::create_directories(config);
    ASSERT_EQ(0, WriteEmptyHive((config / "SOFTWARE").string(), "ROOT"));
    ASSERT_EQ(0, WriteEmptyHive((config / "SYSTEM").string(), "ROOT"));
  }
  std::string error;
  auto image = OfflineImage::Open({dir.string(), {}, user}, error);
  ASSERT_TRUE(image) << error;
  ASSERT_TRUE(ImportRegFile(*image->Registry(), regText, error)) << error;
  ASSERT_EQ(0u, image->Registry()->Flush()) << image->Registry()->FlushError();
}

void CopyRealHive(const std::string& name, const fs::path& to) {
  fs::create_directories(to.parent_path());
  fs::copy_file(fs::path(TC_REALWORLD_DIR) / "hives" / name, to,
                fs::copy_options::overwrite_existing);
  fs::permissions(to, fs::perms::owner_write, fs::perm_options::add);
}

int Run(const std::string& command, std::string* output) {
  FILE* p = popen((command + " 2>&1").c_str(), "r");
  if (!p) return -1;
  std::string out;
  char buf[4096];
  size_t n;
  while ((n = fread(buf, 1, sizeof buf, p)) > 0) out.append(buf, n);
  int status = pclose(p);
  if (output) *output = out;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool HaveTool(const std::string& name) { return Run("command -v " + name) == 0; }

}  // namespace tc::test
