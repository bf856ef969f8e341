// The command line of `tracecleaner`.
#pragma once
#include <string>
#include <utility>
#include <vector>

namespace tc::host {

enum class Command { List, Scan, Clean, Cookies, Keep, Unkeep };

struct Options {
  Command What = Command::List;
  std::string Image;                                     // --image DIR ("" = none)
  bool ImageGiven = false;
  std::vector<std::pair<char16_t, std::string>> Drives;  // --drive D=DIR
  std::string User;                                      // --user NAME
  std::vector<std::string> PluginPatterns;               // --plugins ID or pattern,...
  bool PluginsGiven = false;
  std::vector<std::string> Sections;                     // --sections NAME,...
  std::string Browser;                                   // --browser B
  std::vector<std::string> Hosts;                        // keep / unkeep HOST...
  bool Traces = false;   // --traces
  bool Json = false;     // --json
  bool All = false;      // --all: report the plug-ins that did not run too
  bool Yes = false;      // --yes
  std::string Method;    // --method NAME ("" = the plug-ins' own)
  int Passes = 0;        // --passes N (0 = the plug-ins' own)
  std::vector<std::string> Rules;  // --rules FILE, repeatable (none: the default file)
  std::vector<std::string> Notices;  // warnings about the options that do not stop the run
};

enum class ParseResult { Run, Exit0, UsageError };

// Options may stand before or after the command. On Exit0 `message` is the help or version
// text; on UsageError one line saying what is wrong.
ParseResult ParseOptions(int argc, const char* const* argv, Options& options,
                         std::string& message);

// "tracecleaner 0.9.0 (commit abc1234)".
std::string VersionText();

// The text a usage error ends with.
inline constexpr const char* kSeeHelp = " (see tracecleaner --help)";

}  // namespace tc::host
