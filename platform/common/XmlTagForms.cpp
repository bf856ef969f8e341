#include "platform/common/XmlTagForms.h"

#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

// The position just behind `close` from `from` on, or the end.
size_t Behind(std::string_view s, size_t from, std::string_view close) {
  size_t at = s.find(close, from);
  return at == std::string_view::npos ? s.size() : at + close.size();
}

// The position of the '>' ending a tag or declaration begun before `from`, passing over
// quoted values and a document type's bracketed internal subset.
size_t TagEnd(std::string_view s, size_t from) {
  char quote = 0;
  int brackets = 0;
  for (size_t i = from; i < s.size(); ++i) {
    const char c = s[i];
    if (quote) {
      if (c == quote) quote = 0;
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == '[') {
      ++brackets;
    } else if (c == ']') {
      --brackets;
    } else if (c == '>' && brackets <= 0) {
      return i;
    }
  }
  return s.size();
}

}  // namespace

std::vector<bool> SelfClosingTags(std::string_view s) {
  std::vector<bool> forms;
  size_t i = 0;
  while ((i = s.find('<', i)) != std::string_view::npos) {
    std::string_view rest = s.substr(i);
    if (rest.substr(0, 4) == "<!--") {
      i = Behind(s, i + 4, "-->");
    } else if (rest.substr(0, 9) == "<![CDATA[") {
      i = Behind(s, i + 9, "]]>");
    } else if (rest.substr(0, 2) == "<?") {
      i = Behind(s, i + 2, "?>");
    } else if (rest.substr(0, 2) == "<!" || rest.substr(0, 2) == "</") {
      i = TagEnd(s, i + 2) + 1;
    } else {
      const size_t end = TagEnd(s, i + 1);
      forms.push_back(end < s.size() && s[end - 1] == '/');
      i = end + 1;
    }
  }
  return forms;
}

std::string MarkupText(const Bytes& raw) {
  if (raw.size() >= 2 && raw[0] == 0xFF && raw[1] == 0xFE)
    return ToUtf8(FromUtf16LE(raw.data() + 2, raw.size() - 2));
  if (raw.size() >= 2 && raw[0] == 0xFE && raw[1] == 0xFF) {
    Bytes swapped(raw.begin() + 2, raw.end());
    for (size_t i = 0; i + 1 < swapped.size(); i += 2) std::swap(swapped[i], swapped[i + 1]);
    return ToUtf8(FromUtf16LE(swapped.data(), swapped.size()));
  }
  return std::string(raw.begin(), raw.end());
}

}  // namespace tc
