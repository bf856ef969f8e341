// Temporary folders and small offline images for the offline backend's tests.
#pragma once
#include <filesystem>
#include <string>

namespace tc::test {

// A fresh folder, removed with everything in it (links are removed, not followed).
class TempDir {
 public:
  TempDir();
  ~TempDir();
  const std::filesystem::path& Path() const { return path_; }
  std::string Str() const { return path_.string(); }

 private:
  std::filesystem::path path_;
};

std::string ReadBytes(const std::filesystem::path& file);
void WriteBytes(const std::filesystem::path& file, const std::string& bytes);

// An image with Users/<user>/NTUSER.DAT (or Documents and Settings for `xp`), and the
// SOFTWARE and SYSTEM hives unless `machine` is false, filled from .reg text.
void MakeImage(const std::filesystem::path& dir, const std::string& user,
               const std::string& regText, bool machine = true, bool xp = false);

// The real Windows 10 user hive, copied to `to` (writable).
void CopyRealHive(const std::string& name, const std::filesystem::path& to);

// Runs a shell command; its exit status and what it printed.
int Run(const std::string& command, std::string* output = nullptr);
bool HaveTool(const std::string& name);

}  // namespace tc::test
