// tc_mkimage SOURCE OUT: builds an offline Windows image from readable text.
//   SOURCE/tree/      the folder tree of drive C: (with one profile under Users or
//                     Documents and Settings), copied as it is
//   SOURCE/registry/  .reg files, applied in name order (HKEY_CURRENT_USER goes to the
//                     profile's NTUSER.DAT, HKEY_LOCAL_MACHINE to SOFTWARE and SYSTEM)
//   index.dat.txt     anywhere in the tree: becomes the URL cache index "index.dat" beside it,
//                     one entry a line: source URL, then after a tab the entry's local file
//                     relative to the index's folder ("AB12CD34\page[1].htm"), if it has one
// OUT is replaced if it is an image this tool made; any other existing folder is refused.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include "platform/helpers/TextCodec.h"
#include "platform/offline/HiveFormat.h"
#include "platform/offline/IndexDat.h"
#include "platform/offline/OfflineImage.h"
#include "platform/offline/RegFileImport.h"

namespace fs = std::filesystem;

namespace {

constexpr char kMarker[] = ".tc-image";

int Fail(const std::string& message) {
  std::cerr << "tc_mkimage: " << message << "\n";
  return 2;
}

// The one profile folder of the tree; its layout decides where the class hive lives.
bool FindProfile(const fs::path& root, fs::path& profile, bool& vista) {
  int found = 0;
  for (const char* base : {"Users", "Documents and Settings"}) {
    std::error_code ec;
    for (const auto& e : fs::directory_iterator(root / base, ec)) {
      std::string name = e.path().filename().string();
      if (!e.is_directory() || e.is_symlink() || name == "Default" || name == "Public" ||
          name == "All Users" || name == "Default User")
        continue;
      profile = e.path();
      vista = std::string(base) == "Users";
      ++found;
    }
  }
  return found == 1;
}

bool MakeHive(const fs::path& file) {
  if (fs::exists(file)) return true;
  fs::create_directories(file.parent_path());
  return tc::WriteEmptyHive(file.string(), "ROOT") == 0;
}

// Builds each index.dat from its listing and removes the listing.
bool BuildIndexes(const fs::path& root, std::string& error) {
  std::vector<fs::path> listings;
  for (const auto& e : fs::recursive_directory_iterator(root))
    if (e.is_regular_file() && e.path().filename() == "index.dat.txt") listings.push_back(e.path());
  for (const fs::path& listing : listings) {
    std::vector<tc::IndexDatEntry> entries;
    std::ifstream in(listing);
    for (std::string line; std::getline(in, line);) {
      if (line.empty()) continue;
      size_t tab = line.find('\t');
      tc::IndexDatEntry e;
      e.Url = tc::FromUtf8(line.substr(0, tab));
      std::string local = tab == std::string::npos ? "" : line.substr(tab + 1);
      size_t slash = local.find('\\');
      e.Directory = tc::FromUtf8(slash == std::string::npos ? "" : local.substr(0, slash));
      e.FileName = tc::FromUtf8(slash == std::string::npos ? local : local.substr(slash + 1));
      e.EntryType = e.Url.rfind(u"Cookie:", 0) == 0 ? 0x00100001
                    : e.Url.rfind(u"Visited:", 0) == 0 || e.Url.rfind(u":", 0) == 0 ? 0x00200001
                                                                                  : 1;
      std::error_code ec;
      fs::path file = listing.parent_path() / tc::ToUtf8(e.Directory) / tc::ToUtf8(e.FileName);
      if (!local.empty()) e.FileSize = fs::file_size(file, ec);
      entries.push_back(std::move(e));
    }
    tc::Bytes index;
    if (!tc::BuildIndexDat(entries, index, error)) {
      error = listing.string() + ": " + error;
      return false;
    }
    std::ofstream(listing.parent_path() / "index.dat", std::ios::binary)
        .write(reinterpret_cast<const char*>(index.data()), static_cast<std::streamsize>(index.size()));
    fs::remove(listing);
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: tc_mkimage SOURCE OUT\n";
    return 1;
  }
  fs::path source = argv[1], out = argv[2];
  std::error_code ec;
  if (fs::exists(out)) {
    if (!fs::exists(out / kMarker)) return Fail(out.string() + " exists and is no image of mine");
    fs::remove_all(out, ec);
    if (ec) return Fail("cannot remove " + out.string() + ": " + ec.message());
  }
  fs::create_directories(out.parent_path(), ec);
  fs::copy(source / "tree", out, fs::copy_options::recursive | fs::copy_options::copy_symlinks,
           ec);
  if (ec) return Fail("cannot copy " + (source / "tree").string() + ": " + ec.message());
  std::string indexError;
  if (!BuildIndexes(out, indexError)) return Fail(indexError);

  fs::path profile;
  bool vista = true;
  if (!FindProfile(out, profile, vista))
    return Fail("the tree needs exactly one user profile under Users or Documents and Settings");
  fs::path windows = out / (vista ? "Windows" : "WINDOWS");
  fs::path classes =
      vista ? profile / "AppData/Local/Microsoft/Windows/UsrClass.dat"
            : profile / "Local Settings/Application Data/Microsoft/Windows/UsrClass.dat";
  for (const fs::path& hive : {profile / "NTUSER.DAT", classes,
                               windows / "System32/config/SOFTWARE",
                               windows / "System32/config/SYSTEM"}) {
    if (!MakeHive(hive)) return Fail("cannot write " + hive.string());
  }

  std::string error;
  auto image = tc::OfflineImage::Open({out.string(), {}, ""}, error);
  if (!image) return Fail(error);
  std::vector<fs::path> regs;
  for (const auto& e : fs::directory_iterator(source / "registry", ec))
    if (e.path().extension() == ".reg") regs.push_back(e.path());
  std::sort(regs.begin(), regs.end());
  for (const auto& reg : regs) {
    std::ifstream in(reg, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    if (!tc::ImportRegFile(*image->Registry(), text.str(), error))
      return Fail(reg.string() + ": " + error);
  }
  if (image->Registry()->Flush() != 0) return Fail(image->Registry()->FlushError());
  std::ofstream(out / kMarker) << "made by tc_mkimage from " << source.string() << "\n";
  return 0;
}
