// The command line of `tracecleaner`.
#pragma once
#include <string>
#include <utility>
#include <vector>

namespace tc::host {

enum class Command { List, Scan, Clean };

struct Options {
  Command What = Command::List;
  std::string Image;                                     // --image DIR ("" = none)
  std::vector<std::pair<char16_t, std::string>> Drives;  // --drive D=DIR
  std::string User;                                      // --user NAME
  std::vector<std::string> PluginIDs;                    // --plugins ID,...
  bool PluginsGiven = false;
  bool Traces = false;   // --traces
  bool Json = false;     // --json
  bool Yes = false;      // --yes
  std::string Method;    // --method NAME ("" = the plug-ins' own)
  int Passes = 0;        // --passes N (0 = the plug-ins' own)
};

enum class ParseResult { Run, Exit0, UsageError };

// Options may stand before or after the subcommand. On anything but Run, `message` holds
// what to print (help text, or the error followed by the usage).
ParseResult ParseOptions(int argc, const char* const* argv, Options& options,
                         std::string& message);

// The usage text, for errors found after parsing (an unknown plug-in ID).
std::string Usage();

}  // namespace tc::host
