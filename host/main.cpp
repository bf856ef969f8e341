// tracecleaner: lists the plug-ins, scans for usage traces and cleans them, on an offline
// Windows image (or the bundled demo image) or, on Windows, on the live system.
#include <iostream>

#include "host/Options.h"
#include "host/Report.h"
#include "host/Runner.h"
#include "host/Session.h"
#ifdef _WIN32
#include <windows.h>
#endif

int main(int argc, char** argv) {
  using namespace tc::host;
#ifdef _WIN32
  SetConsoleOutputCP(CP_UTF8);  // the reports are UTF-8, like every text this command prints
#endif
  Options options;
  std::string message;
  switch (ParseOptions(argc, argv, options, message)) {
    case ParseResult::Exit0:
      std::cout << message;
      return kExitDone;
    case ParseResult::UsageError:
      std::cerr << message;
      return kExitUsage;
    case ParseResult::Run:
      break;
  }
  try {
    std::string error;
    std::unique_ptr<Session> session = Session::Open(options, error);
    if (!session) {
      std::cerr << "tracecleaner: " << error << "\n";
      return kExitCannotOpen;
    }
    if (!options.Json)
      for (const auto& w : session->Warnings()) std::cerr << "warning: " << w << "\n";
    RunReport report;
    ExitCode code = RunCommand(options, *session, report, error);
    if (code == kExitUsage) {
      std::cerr << "tracecleaner: " << error << "\n\n" << Usage();
      return code;
    }
    if (code == kExitCannotOpen) {
      std::cerr << "tracecleaner: " << error << "\n";
      return code;
    }
    if (options.Json)
      PrintJson(report, std::cout);
    else
      PrintText(report, std::cout);
    return kExitDone;
  } catch (const std::exception& e) {
    std::cerr << "tracecleaner: " << e.what() << "\n";
    return kExitCannotOpen;
  }
}
