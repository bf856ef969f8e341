#include "host/CookieCommands.h"

#include <nlohmann/json.hpp>
#include <ostream>

#include "engine/CookieKeepLists.h"
#include "host/Readable.h"
#include "platform/helpers/ErrorText.h"
#include "platform/helpers/TextCodec.h"

namespace tc::host {

namespace {

using nlohmann::json;

std::string BrowserNames() {
  std::string names;
  for (auto* p : CookieKeepLists()) names += (names.empty() ? "" : ", ") + ToUtf8(p->Browser());
  return names.empty() ? "none in this build" : names;
}

void Print(const json& doc, bool asJson, const std::string& text, std::ostream& out) {
  if (asJson) out << doc.dump(2, ' ', false, json::error_handler_t::replace) << "\n";
  else out << text;
}

ExitCode ListHosts(const Options& o, const std::string& source, ICookieKeepList* only,
                   std::ostream& out) {
  json browsers = json::array();
  std::string text = source + "\n";
  ExitCode code = kExitDone;
  for (auto* p : CookieKeepLists()) {
    if (only && p != only) continue;
    String why, error;
    std::vector<TCookieHostInfo> hosts;
    const bool honours = p->HonoursKeepList(why);
    const bool read = p->Hosts(hosts, error);
    json b = {{"browser", ToUtf8(p->Browser())}, {"caption", Readable(p->Caption())},
              {"honoursKeepList", honours}, {"hosts", json::array()}};
    text += "\n" + Readable(p->Caption()) + " (" + ToUtf8(p->Browser()) + ")";
    if (!honours) {
      b["why"] = Readable(why);
      text += ": its clean ignores the keep-list (" + Readable(why) + ")";
    }
    text += "\n";
    if (!read) {
      b["error"] = Readable(error);
      text += "  cannot be read: " + Readable(error) + "\n";
      code = kExitCannotOpen;
    }
    for (const auto& h : hosts) {
      b["hosts"].push_back({{"host", Readable(h.Host)}, {"profile", Readable(h.Profile)},
                            {"count", h.Count}, {"kept", h.Kept}});
      text += "  " + Readable(h.Host) + (h.Profile.empty() ? "" : " [" + Readable(h.Profile) + "]") +
              "  " + std::to_string(h.Count) + (h.Count == 1 ? " cookie" : " cookies") +
              (h.Kept ? "  kept" : "") + "\n";
    }
    if (read && hosts.empty()) text += "  no cookies\n";
    browsers.push_back(std::move(b));
  }
  json doc = {{"schemaVersion", kSchemaVersion}, {"command", "cookies"}, {"source", source},
              {"browsers", std::move(browsers)}, {"exitCode", code}};
  Print(doc, o.Json, text, out);
  return code;
}

}  // namespace

ExitCode RunCookieCommand(const Options& o, const std::string& source,
                          const std::function<bool(std::string&)>& flush, std::ostream& out,
                          std::string& error) {
  ICookieKeepList* provider = nullptr;
  if (!o.Browser.empty()) {
    provider = FindCookieKeepList(FromUtf8(o.Browser));
    if (!provider) {
      error = "unknown browser " + o.Browser + "; the browsers are: " + BrowserNames();
      return kExitUsage;
    }
  }
  if (o.What == Command::Cookies) return ListHosts(o, source, provider, out);
#ifndef _WIN32
  // The demo copy is removed at exit: a choice written there would be lost without a word.
  if (!o.ImageGiven) {
    error = std::string(o.What == Command::Keep ? "keep" : "unkeep") +
            " without --image would write into a copy of the demo image that is removed at "
            "exit; name the Windows installation with --image DIR";
    return kExitUsage;
  }
#endif

  const bool keep = o.What == Command::Keep;
  const char* command = keep ? "keep" : "unkeep";
  json doc = {{"schemaVersion", kSchemaVersion}, {"command", command}, {"source", source},
              {"browser", ToUtf8(provider->Browser())}, {"hosts", json::array()}};
  String why;
  if (keep && !provider->HonoursKeepList(why)) {
    std::string message = Readable(provider->Caption()) +
                          " ignores the keep-list when it cleans: " + Readable(why) +
                          "; nothing written";
    doc["refused"] = message;
    doc["exitCode"] = kExitUsage;
    Print(doc, o.Json, "tracecleaner: " + message + "\n", out);
    return kExitUsage;
  }
  std::vector<TCookieHostInfo> hosts;
  String readError;
  provider->Hosts(hosts, readError);
  std::string text = source + "\n";
  ExitCode code = kExitDone;
  for (const auto& host : o.Hosts) {
    const String h = FromUtf8(host);
    const uint32_t rc = provider->SetKept(h, keep);
    bool present = false;
    for (const auto& known : hosts) present = present || SameText(known.Host, h);
    json entry = {{"host", host}, {"kept", keep}, {"hasCookies", present}};
    if (rc != ERROR_SUCCESS) {
      entry["error"] = ToUtf8(SysErrorMessage(rc));
      text += "Not written for " + host + ": " + ToUtf8(SysErrorMessage(rc)) + "\n";
      code = kExitCannotOpen;
    } else {
      text += (keep ? "Kept: " : "No longer kept: ") + host + " (" + Readable(provider->Caption()) +
              ")" + (present ? "" : ", which has no cookies now") + "\n";
    }
    doc["hosts"].push_back(std::move(entry));
  }
  std::string flushError;
  if (code == kExitDone && !flush(flushError)) {
    doc["error"] = flushError;
    text += "tracecleaner: " + flushError + "\n";
    code = kExitCannotOpen;
  }
  doc["exitCode"] = code;
  Print(doc, o.Json, text, out);
  return code;
}

}  // namespace tc::host
