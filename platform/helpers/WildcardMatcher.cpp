#include "platform/helpers/WildcardMatcher.h"

#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

void TWildcardMatcher::AddSearchMask(const String& masks, int kind) {
  StringList& target = kind == 0 ? includes_ : excludes_;
  size_t start = 0;
  while (start <= masks.size()) {
    size_t end = masks.find_first_of(u";,", start);
    if (end == String::npos) end = masks.size();
    String mask = UpperCase(Trim(masks.substr(start, end - start)));
    if (!mask.empty()) target.push_back(mask);
    start = end + 1;
  }
}

bool TWildcardMatcher::MatchMask(const String& name, const String& mask) {
  // Sizes first: this runs once per name and mask of a walk.
  if (mask.size() <= 3 && (mask == u"*" || mask == u"*.*")) return true;
  // "*.EXT" and the like: only the name's end can decide, so it alone is compared.
  if (mask.size() > 1 && mask[0] == u'*' && mask.find_first_of(u"*?", 1) == String::npos) {
    const size_t tail = mask.size() - 1;
    if (name.size() < tail) return false;
    for (size_t i = tail; i > 0; --i)
      if (mask[i] != UpCaseChar(name[name.size() - tail + i - 1])) return false;
    return true;
  }
  // Iterative matcher with single back-tracking point for '*': linear in practice.
  size_t n = 0, m = 0, starM = String::npos, starN = 0;
  while (n < name.size()) {
    if (m < mask.size() && (mask[m] == u'?' || mask[m] == UpCaseChar(name[n]))) {
      ++n;
      ++m;
    } else if (m < mask.size() && mask[m] == u'*') {
      starM = m++;
      starN = n;
    } else if (starM != String::npos) {
      m = starM + 1;
      n = ++starN;
    } else {
      return false;
    }
  }
  while (m < mask.size() && mask[m] == u'*') ++m;
  // "name.*" also matches "name" without extension, as Windows does.
  if (m + 2 == mask.size() && mask[m] == u'.' && mask[m + 1] == u'*') return true;
  return m == mask.size();
}

bool TWildcardMatcher::Match(const String& fileName) const {
  bool included = includes_.empty();
  for (const auto& mask : includes_) {
    if (MatchMask(fileName, mask)) {
      included = true;
      break;
    }
  }
  if (!included) return false;
  for (const auto& mask : excludes_) {
    if (MatchMask(fileName, mask)) return false;
  }
  return true;
}

}  // namespace tc
