// tracecleaner: lists the plug-ins, scans for usage traces and cleans them, on an offline
// Windows image (or the bundled demo image) or, on Windows, on the live system.
#include <unistd.h>

#include <cstring>
#include <iostream>

#include "host/CookieCommands.h"
#include "host/Options.h"
#include "host/Progress.h"
#include "host/Report.h"
#include "host/Runner.h"
#include "host/Session.h"
#ifdef _WIN32
#include <windows.h>
#endif

namespace {

using namespace tc::host;

// Prints a run's error and gives its exit code: one JSON document or one line on stderr.
int Fail(bool json, const char* kind, const std::string& message, int code) {
  if (json) PrintJsonError(kind, message, code, std::cout);
  else std::cerr << (message.rfind("tracecleaner:", 0) == 0 ? "" : "tracecleaner: ") << message
                 << "\n";
  return code;
}

int Run(const Options& options) {
  if (options.What == Command::Clean && !options.Yes && !isatty(STDIN_FILENO))
    return Fail(options.Json, "usage",
                std::string("clean asks before it removes anything and cannot ask here (no "
                            "terminal): add --yes") + kSeeHelp,
                kExitUsage);
  CatchInterrupt();  // from the start: a demo copy being made is removed on Ctrl+C too
  const bool readOnly = options.What == Command::List;
  std::string error;
  std::unique_ptr<Session> session = Session::Open(options, readOnly, error);
  if (Interrupts() > 0)
    return Fail(options.Json, "interrupted", "stopped by the user (Ctrl+C)", kExitInterrupted);
  if (!session) return Fail(options.Json, "open", error, kExitCannotOpen);
  if (!options.Json)
    for (const auto& w : session->Warnings()) std::cerr << "warning: " << w << "\n";

  if (options.What == Command::Cookies || options.What == Command::Keep ||
      options.What == Command::Unkeep) {
    auto flush = [&](std::string& why) {
      std::vector<HiveState> hives;
      return session->Flush(why, hives);
    };
    ExitCode code = RunCookieCommand(options, session->Describe(), flush, std::cout, error);
    if (code == kExitUsage && !error.empty())
      return Fail(options.Json, "usage", error + kSeeHelp, code);
    return code;
  }

  RunReport report;
  ExitCode code = RunCommand(options, *session, report, error);
  if (code == kExitUsage && !error.empty())
    return Fail(options.Json, "usage", error + kSeeHelp, code);
  report.Warnings.insert(report.Warnings.end(), options.Notices.begin(), options.Notices.end());
  report.Exit = code;
  if (options.Json) PrintJson(report, std::cout);
  else PrintText(report, std::cout);
  return code;
}

}  // namespace

int main(int argc, char** argv) {
#ifdef _WIN32
  SetConsoleOutputCP(CP_UTF8);  // the reports are UTF-8, like every text this command prints
#endif
  bool json = false;
  for (int i = 1; i < argc; ++i) json = json || std::strcmp(argv[i], "--json") == 0;
  Options options;
  std::string message;
  switch (ParseOptions(argc, argv, options, message)) {
    case ParseResult::Exit0:
      std::cout << message;
      return kExitDone;
    case ParseResult::UsageError:
      return Fail(json, "usage", message, kExitUsage);
    case ParseResult::Run:
      break;
  }
  if (!options.Json)
    for (const auto& n : options.Notices) std::cerr << "warning: " << n << "\n";
  try {
    return Run(options);
  } catch (const std::exception& e) {
    return Fail(json, "internal", e.what(), kExitCannotOpen);
  }
}
