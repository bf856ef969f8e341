#include "host/Options.h"

#include <CLI/CLI.hpp>
#include <set>

#if __has_include("BuildCommit.h")
#include "BuildCommit.h"
#endif
#ifndef TC_BUILD_COMMIT
#define TC_BUILD_COMMIT "unknown"
#endif
#ifndef TC_VERSION
#define TC_VERSION "0.0.0"
#endif

namespace tc::host {

namespace {

constexpr const char* kCommands[] = {"list", "scan", "clean", "cookies", "keep", "unkeep"};

struct Raw {
  std::string command, plugins, sections;
  std::vector<std::string> drives, rest;
  bool version = false;
};

// One parser for both positions: the options are global, the command a positional.
void Describe(CLI::App& app, Options& o, Raw& raw) {
  app.description(
      "Finds and removes usage traces of Windows and its applications.\n"
      "Commands:\n"
      "  list                 the plug-ins, by section\n"
      "  scan                 count the traces (--traces lists each one)\n"
      "  clean                remove them, overwriting deleted files\n"
      "  cookies              the hosts with cookies, per browser, and which are kept\n"
      "  keep HOST...         keep these hosts' cookies from the next clean (--browser B)\n"
      "  unkeep HOST...       clean these hosts' cookies again (--browser B)");
  app.add_option("command", raw.command, "list, scan, clean, cookies, keep or unkeep");
  app.add_option("hosts", raw.rest, "keep/unkeep: the hosts");
#ifndef _WIN32
  app.add_option("--image", o.Image,
                 "folder holding drive C: of an offline Windows installation "
                 "(default: a fresh copy of the demo image)");
  app.add_option("--drive", raw.drives, "a further drive of that installation, as D=DIR");
  app.add_option("--user", o.User, "the user profile to work on (default: the only one)");
#endif
  app.add_option("--plugins", raw.plugins,
                 "exactly these plug-ins: IDs or patterns (Firefox*,*Cookies), comma-separated, "
                 "any case");
  app.add_option("--sections", raw.sections,
                 "the plug-ins of these sections (Browser,Windows,...), comma-separated");
  app.add_option("--browser", o.Browser,
                 "cookies/keep/unkeep: ie, opera, firefox, netscape7, netscape8, ...");
  app.add_flag("--traces", o.Traces, "scan: list every trace found, with file sizes");
  app.add_flag("--json", o.Json, "print one JSON document instead of text");
  app.add_flag("--all", o.All, "report the plug-ins that did not run too");
  app.add_flag("-y,--yes", o.Yes, "clean without asking");
  app.add_option("--method", o.Method, "clean: overwrite method (zeros, random, dod, gutmann)")
      ->check(CLI::IsMember({"zeros", "random", "dod", "gutmann"}, CLI::ignore_case));
  app.add_option("--passes", o.Passes,
                 "clean: run the overwrite method N times (Gutmann's is always 35 passes)")
      ->check(CLI::Range(1, 100));
  app.add_option("--rules", o.Rules,
                 "a winapp2.ini rules file, one plug-in per entry (repeatable; default: "
                 "winapp2.ini in the user's tracecleaner configuration folder)")
      ->allow_extra_args(false);
  app.add_flag("--version", raw.version, "the version and the commit it was built from");
  app.footer(
      "Exit codes: 0 everything asked was removed (or kept on purpose); 1 usage error, or\n"
      "nothing done (declined, or no terminal to ask: add --yes); 2 an image, hive or profile\n"
      "could not be opened or written; 3 the clean left traces it should have removed (each\n"
      "is named); 130 stopped with Ctrl+C. See tracecleaner(1).");
}

std::vector<std::string> SplitList(const std::string& text) {
  std::vector<std::string> items;
  size_t start = 0;
  while (start <= text.size()) {
    size_t end = text.find(',', start);
    if (end == std::string::npos) end = text.size();
    std::string item = text.substr(start, end - start);
    while (!item.empty() && item.front() == ' ') item.erase(item.begin());
    while (!item.empty() && item.back() == ' ') item.pop_back();
    if (!item.empty()) items.push_back(item);
    start = end + 1;
  }
  return items;
}

// Checks what the parser cannot; "" when all is well.
std::string Validate(CLI::App& app, Options& o, Raw& raw) {
  if (raw.command.empty()) return "a command is needed: list, scan, clean, cookies, keep or unkeep";
  int index = 0;
  while (index < 6 && raw.command != kCommands[index]) ++index;
  if (index == 6) return "unknown command " + raw.command;
  o.What = static_cast<Command>(index);
  const bool hostCommand = o.What == Command::Keep || o.What == Command::Unkeep;
  if (!raw.rest.empty() && !hostCommand)
    return "unexpected argument " + raw.rest.front() + " after " + raw.command;
  if (hostCommand) {
    if (raw.rest.empty()) return raw.command + " needs at least one HOST";
    if (o.Browser.empty()) return raw.command + " needs --browser";
  }
  o.Hosts = raw.rest;
#ifndef _WIN32
  o.ImageGiven = app.count("--image") > 0;
#endif  // the live system has no --image: asking the parser for it would throw
  if (o.ImageGiven && o.Image.empty()) return "--image needs a folder";
  std::set<char> letters;
  for (const auto& d : raw.drives) {
    if (d.size() < 3 || d[1] != '=' || !std::isalpha(static_cast<unsigned char>(d[0])))
      return "--drive wants LETTER=DIR, not " + d;
    char letter = char(std::toupper(static_cast<unsigned char>(d[0])));
    if (letter == 'C') return "drive C: is the --image folder";
    if (!letters.insert(letter).second) return std::string("drive ") + letter + ": is given twice";
    o.Drives.emplace_back(char16_t(letter), d.substr(2));
  }
  if (!o.Drives.empty() && !o.ImageGiven) return "--drive needs --image";
  if (!o.User.empty() && !o.ImageGiven) return "--user needs --image";
  if (app.count("--plugins") > 0) {
    o.PluginsGiven = true;
    o.PluginPatterns = SplitList(raw.plugins);
    if (o.PluginPatterns.empty()) return "--plugins needs at least one ID";
  }
  if (app.count("--sections") > 0) {
    o.Sections = SplitList(raw.sections);
    if (o.Sections.empty()) return "--sections needs at least one section";
  }
  const bool runs = o.What == Command::Scan || o.What == Command::Clean;
  if ((o.PluginsGiven || !o.Sections.empty()) && !runs && o.What != Command::List)
    return "--plugins and --sections belong to list, scan and clean";
  if (!o.Browser.empty() && runs) return "--browser belongs to cookies, keep and unkeep";
  if (o.What != Command::Clean && (!o.Method.empty() || o.Passes != 0))
    return "--method and --passes belong to clean";
  if (o.Traces && o.What != Command::Scan) return "--traces belongs to scan";
  if (o.Yes && o.What != Command::Clean) return "--yes belongs to clean";
  for (auto& c : o.Method) c = char(std::tolower(static_cast<unsigned char>(c)));
  if (o.Method == "gutmann" && o.Passes != 0 && o.Passes != 35) {
    o.Notices.push_back("Gutmann's method always writes its 35 passes: --passes " +
                        std::to_string(o.Passes) + " is ignored");
    o.Passes = 0;
  }
  if (o.Method == "gutmann") o.Passes = 0;  // 35 names the method's own passes, run once
  return "";
}

}  // namespace

std::string VersionText() {
  return std::string("tracecleaner ") + TC_VERSION + " (commit " + TC_BUILD_COMMIT + ")";
}

ParseResult ParseOptions(int argc, const char* const* argv, Options& options,
                         std::string& message) {
  Raw raw;
  CLI::App app("tracecleaner", "tracecleaner");
  Describe(app, options, raw);
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    message = app.help("", CLI::AppFormatMode::Normal);
    return ParseResult::Exit0;
  } catch (const CLI::ParseError& e) {
    message = std::string("tracecleaner: ") + e.what() + kSeeHelp;
    return ParseResult::UsageError;
  }
  if (raw.version) {
    message = VersionText() + "\n";
    return ParseResult::Exit0;
  }
  std::string why;
  try {
    why = Validate(app, options, raw);
  } catch (const CLI::Error& e) {  // a question about an option this build lacks
    why = e.what();
  }
  if (why.empty()) return ParseResult::Run;
  message = "tracecleaner: " + why + kSeeHelp;
  return ParseResult::UsageError;
}

}  // namespace tc::host
