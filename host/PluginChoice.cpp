#include "host/PluginChoice.h"

#include <algorithm>
#include <set>

#include "engine/TC_BasePlugin.h"
#include "platform/helpers/TextCodec.h"

namespace tc::host {

namespace {

size_t Distance(const String& a, const String& b) {
  std::vector<size_t> row(b.size() + 1);
  for (size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (size_t i = 1; i <= a.size(); ++i) {
    size_t diagonal = row[0];
    row[0] = i;
    for (size_t j = 1; j <= b.size(); ++j) {
      size_t up = row[j];
      row[j] = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (a[i - 1] != b[j - 1])});
      diagonal = up;
    }
  }
  return row[b.size()];
}

bool IsPattern(const std::string& s) { return s.find_first_of("*?") != std::string::npos; }

}  // namespace

bool MatchesPattern(const String& text, const String& pattern) {
  const String t = UpperCase(text), p = UpperCase(pattern);
  size_t ti = 0, pi = 0, star = String::npos, mark = 0;
  while (ti < t.size()) {
    if (pi < p.size() && (p[pi] == u'?' || p[pi] == t[ti])) {
      ++ti;
      ++pi;
    } else if (pi < p.size() && p[pi] == u'*') {
      star = pi++;
      mark = ti;
    } else if (star != String::npos) {
      pi = star + 1;
      ti = ++mark;
    } else {
      return false;
    }
  }
  while (pi < p.size() && p[pi] == u'*') ++pi;
  return pi == p.size();
}

std::string NearestPluginID(const std::string& id) {
  const String wanted = UpperCase(FromUtf8(id));
  std::string best;
  size_t bestDistance = std::max<size_t>(2, wanted.size() / 3) + 1;
  for (TTCPlugin* p : *Plugins) {
    size_t d = Distance(wanted, UpperCase(p->ID));
    if (d < bestDistance) {
      bestDistance = d;
      best = ToUtf8(p->ID);
    }
  }
  return best;
}

bool ChoosePlugins(const Options& options, std::string& error) {
  if (!options.PluginsGiven && options.Sections.empty()) return true;
  std::set<const TTCPlugin*> byId, bySection;
  for (const auto& pattern : options.PluginPatterns) {
    const String p = FromUtf8(pattern);
    size_t before = byId.size();
    bool any = false;
    for (TTCPlugin* plugin : *Plugins) {
      if (MatchesPattern(plugin->ID, p)) {
        byId.insert(plugin);
        any = true;
      }
    }
    if (any || byId.size() > before) continue;
    if (IsPattern(pattern)) {
      error = "--plugins " + pattern + " matches no plug-in ('tracecleaner list' names them)";
    } else {
      std::string nearest = NearestPluginID(pattern);
      error = "unknown plug-in ID " + pattern +
              (nearest.empty() ? " ('tracecleaner list' names them)" : "; did you mean " + nearest + "?");
    }
    return false;
  }
  for (const auto& section : options.Sections) {
    bool any = false;
    for (TTCPlugin* plugin : *Plugins) {
      if (SameText(plugin->Section, FromUtf8(section))) {
        bySection.insert(plugin);
        any = true;
      }
    }
    if (any) continue;
    std::set<std::string> names;
    for (TTCPlugin* plugin : *Plugins) names.insert(ToUtf8(plugin->Section));
    error = "unknown section " + section + "; the sections are:";
    for (const auto& n : names) error += " " + n + ",";
    error.pop_back();
    return false;
  }
  for (TTCPlugin* plugin : *Plugins) {
    plugin->Active = (!options.PluginsGiven || byId.count(plugin)) &&
                     (options.Sections.empty() || bySection.count(plugin));
  }
  return true;
}

}  // namespace tc::host
