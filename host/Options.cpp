#include "host/Options.h"

#include <CLI/CLI.hpp>

namespace tc::host {

namespace {

// One parser for both positions: the options are global, the subcommand a positional.
void Describe(CLI::App& app, Options& o, std::string& command, std::string& plugins,
              std::vector<std::string>& drives) {
  app.description(
      "Finds and removes usage traces of Windows and its applications.\n"
      "Commands: list (the plug-ins), scan (count traces), clean (remove them).");
  app.add_option("command", command, "list, scan or clean")
      ->check(CLI::IsMember({"list", "scan", "clean"}));
  app.add_option("--image", o.Image,
                 "folder holding drive C: of an offline Windows installation");
  app.add_option("--drive", drives, "a further drive of that installation, as D=DIR");
  app.add_option("--user", o.User, "the user profile to work on (default: the only one)");
  app.add_option("--plugins", plugins, "exactly these plug-ins (IDs, comma-separated)");
  app.add_flag("--traces", o.Traces, "scan: list every trace found");
  app.add_flag("--json", o.Json, "print one JSON document instead of text");
  app.add_flag("-y,--yes", o.Yes, "clean without asking");
  app.add_option("--method", o.Method, "clean: overwrite method (zeros, random, dod, gutmann)")
      ->check(CLI::IsMember({"zeros", "random", "dod", "gutmann"}, CLI::ignore_case));
  app.add_option("--passes", o.Passes, "clean: overwrite passes")->check(CLI::Range(1, 100));
}

std::string UsageOf(CLI::App& app) {
  return app.help("", CLI::AppFormatMode::Normal);
}

}  // namespace

std::string Usage() {
  Options o;
  std::string command, plugins;
  std::vector<std::string> drives;
  CLI::App app("tracecleaner", "tracecleaner");
  Describe(app, o, command, plugins, drives);
  return UsageOf(app);
}

ParseResult ParseOptions(int argc, const char* const* argv, Options& options,
                         std::string& message) {
  std::string command, plugins;
  std::vector<std::string> drives;
  CLI::App app("tracecleaner", "tracecleaner");
  Describe(app, options, command, plugins, drives);
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    message = UsageOf(app);
    return ParseResult::Exit0;
  } catch (const CLI::ParseError& e) {
    message = std::string("tracecleaner: ") + e.what() + "\n\n" + UsageOf(app);
    return ParseResult::UsageError;
  }
  auto fail = [&](const std::string& why) {
    message = "tracecleaner: " + why + "\n\n" + UsageOf(app);
    return ParseResult::UsageError;
  };
  if (command.empty()) return fail("a command is needed: list, scan or clean");
  options.What = command == "list" ? Command::List
                 : command == "scan" ? Command::Scan
                                     : Command::Clean;
  for (const auto& d : drives) {
    if (d.size() < 3 || d[1] != '=' || !std::isalpha(static_cast<unsigned char>(d[0])))
      return fail("--drive wants LETTER=DIR, not " + d);
    char letter = char(std::toupper(static_cast<unsigned char>(d[0])));
    if (letter == 'C') return fail("drive C: is the --image folder");
    options.Drives.emplace_back(char16_t(letter), d.substr(2));
  }
  if (!options.Drives.empty() && options.Image.empty())
    return fail("--drive needs --image");
  if (!options.User.empty() && options.Image.empty()) return fail("--user needs --image");
  if (app.count("--plugins") > 0) {
    options.PluginsGiven = true;
    size_t start = 0;
    while (start <= plugins.size()) {
      size_t end = plugins.find(',', start);
      if (end == std::string::npos) end = plugins.size();
      std::string id = plugins.substr(start, end - start);
      while (!id.empty() && id.front() == ' ') id.erase(id.begin());
      while (!id.empty() && id.back() == ' ') id.pop_back();
      if (!id.empty()) options.PluginIDs.push_back(id);
      start = end + 1;
    }
  }
  if (options.What != Command::Clean && (!options.Method.empty() || options.Passes != 0))
    return fail("--method and --passes belong to clean");
  if (options.Traces && options.What == Command::List) return fail("--traces belongs to scan");
  return ParseResult::Run;
}

}  // namespace tc::host
