// What an image may hold to make a cleaner destroy what is no trace: links out of the image,
// hard links, pipes, paths that climb out or name other machines; and runs that overlap.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "CommandSupport.h"

namespace tc {
namespace {

using namespace test;

constexpr char kOutlookKey[] =
    "[HKEY_CURRENT_USER\\Software\\Microsoft\\Office\\11.0\\Outlook\\Security]\n";

std::string RegWithFolder(const std::string& folder) {
  std::string escaped;
  for (char c : folder) escaped += c == '\\' ? std::string("\\\\") : std::string(1, c);
  return std::string("Windows Registry Editor Version 5.00\n\n") + kOutlookKey +
         "\"OutlookSecureTempFolder\"=\"" + escaped + "\"\n";
}

// Everything below `dir`, each file with its content, links as their targets.
std::map<std::string, std::string> Contents(const fs::path& dir) {
  std::map<std::string, std::string> out;
  for (auto it = fs::recursive_directory_iterator(dir); it != fs::recursive_directory_iterator();
       ++it) {
    const std::string rel = fs::relative(it->path(), dir).string();
    if (it->is_symlink()) out[rel] = "-> " + fs::read_symlink(it->path()).string();
    else if (it->is_regular_file()) out[rel] = ReadBytes(it->path());
    else out[rel] = it->is_fifo() ? "<fifo>" : "<dir>";
  }
  return out;
}

TEST(HardeningTest, NothingOutsideTheTraceFolderIsTouched) {
  struct Case {
    const char* what;
    std::string folder;  // the registry's folder; OUTSIDE stands for the host path outside
    std::function<void(const fs::path& image, const fs::path& outside)> make;
    int traces;
  };
  auto olk = [](const fs::path& image) { return image / "Users" / "Anna" / "OLK"; };
  const Case cases[] = {
      {"folder is a link out", "C:\\Users\\Anna\\OLK\\",
       [&](const fs::path& i, const fs::path& o) { fs::create_directory_symlink(o, olk(i)); }, 0},
      {"a parent is a link out", "C:\\Users\\Anna\\Out\\OLK\\",
       [](const fs::path& i, const fs::path& o) {
         fs::create_directory(o / "OLK");
         fs::create_directory_symlink(o, i / "Users" / "Anna" / "Out");
       }, 0},
      {"climbs out", "C:\\Users\\..\\..\\outside\\", nullptr, 0},
      {"extended path", "\\\\?\\OUTSIDE\\", nullptr, 0},
      {"extended drive path", "\\\\?\\C:\\..\\outside\\", nullptr, 0},
      {"other machine", "\\\\localhost\\OUTSIDE\\", nullptr, 0},
      {"drive not in the image", "Q:\\", nullptr, 0},
      // Links are traces by their own names: removed, never followed.
      {"links, a hard link and a pipe inside", "C:\\Users\\Anna\\OLK\\",
       [&](const fs::path& i, const fs::path& o) {
         fs::create_directories(olk(i));
         WriteBytes(olk(i) / "attachment.doc", "trace");
         fs::create_symlink(o / "canary.txt", olk(i) / "link.txt");
         fs::create_directory_symlink(o, olk(i) / "junction");
         fs::create_hard_link(o / "canary.txt", olk(i) / "hard.txt");
         ASSERT_EQ(0, mkfifo((olk(i) / "pipe.txt").c_str(), 0600));
       }, 4},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    TempDir dir;
    const fs::path image = dir.Path() / "image", outside = dir.Path() / "outside";
    fs::create_directories(outside / "Sub");
    WriteBytes(outside / "canary.txt", "canary");
    WriteBytes(outside / "Sub" / "deep.txt", "canary too");
    std::string folder = c.folder;
    if (size_t at = folder.find("OUTSIDE"); at != std::string::npos) {
      std::string host = outside.string();
      std::replace(host.begin(), host.end(), '/', '\\');
      folder.replace(at, 7, host);
    }
    MakeImage(image, RegWithFolder(folder));
    fs::create_directories(image / "Users" / "Anna" / "AppData" / "Roaming" / "Microsoft" / "Outlook");
    if (c.make) c.make(image, outside);
    const auto before = Contents(outside);
    const std::string args = " --plugins OutlookSecurityFiles --image " + Quote(image.string());
    json scan = RunJson("scan" + args);  // a pipe opened for reading would never return
    EXPECT_EQ(c.traces, PluginOf(scan, "OutlookSecurityFiles")["traceCount"]);
    json clean = RunJson("clean --yes" + args);
    EXPECT_EQ(before, Contents(outside));
    if (c.traces) {
      EXPECT_EQ(0, PluginOf(clean, "OutlookSecurityFiles")["remaining"]);
      EXPECT_NE(std::string::npos, PluginOf(clean, "OutlookSecurityFiles")["note"].dump().find(
                                       "hard.txt was not overwritten because other names share it"))
          << clean.dump();
      EXPECT_EQ((std::map<std::string, std::string>{{"pipe.txt", "<fifo>"}}), Contents(olk(image)));
    }
  }
}

// A second run waits for the one holding the image, says so, then sees what it left.
TEST(HardeningTest, OverlappingRunsTakeTurns) {
  TempDir dir;
  const fs::path image = dir.Path() / "image";
  MakeImage(image, "Windows Registry Editor Version 5.00\n\n"
                   "[HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Applets\\"
                   "Wordpad\\Recent File List]\n\"File1\"=\"C:\\\\a.rtf\"\n");
  const std::string args = " --yes --plugins WordPad --image " + Quote(image.string());
  int fd = open(image.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  ASSERT_EQ(0, flock(fd, LOCK_EX));
  const fs::path log = dir.Path() / "waiting.log";
  const std::string waiter = "(" + std::string(TC_TRACECLEANER) + " clean --json" + args +
                             " >" + Quote((dir.Path() / "out.json").string()) + " 2>" +
                             Quote(log.string()) + " </dev/null)";
  std::thread second([&] { EXPECT_EQ(0, test::Run(waiter)); });
  for (int i = 0; i < 600 && ReadBytes(log).find("waiting") == std::string::npos; ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_NE(std::string::npos, ReadBytes(log).find("another run is working on")) << ReadBytes(log);
  close(fd);
  second.join();
  EXPECT_EQ(0, PluginOf(json::parse(ReadBytes(dir.Path() / "out.json")), "WordPad")["remaining"]);

  // Two cleans started together: both end well, one of them finding nothing left.
  for (int round = 0; round < 3; ++round) {
    std::string out;
    const std::string one = std::string(TC_TRACECLEANER) + " clean" + args + " >/dev/null 2>&1";
    EXPECT_EQ(0, test::Run(one + " & a=$!; " + one + " & b=$!; wait $a && wait $b", &out)) << out;
    std::set<std::string> names;
    for (const auto& e : fs::directory_iterator(image / "Users" / "Anna"))
      names.insert(e.path().filename().string());
    EXPECT_EQ((std::set<std::string>{"AppData", "Documents", "NTUSER.DAT"}), names);
  }
}

}  // namespace
}  // namespace tc
