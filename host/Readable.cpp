#include "host/Readable.h"

#include <cstdio>

#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/TextCodec.h"
#include "platform/helpers/UserAssistNames.h"

namespace tc::host {

std::string Readable(std::u16string_view text) {
  std::string out;
  size_t from = 0;
  auto escape = [&](size_t i, const char* format, unsigned value) {
    out += ToUtf8(text.substr(from, i - from));
    char buf[16];
    std::snprintf(buf, sizeof buf, format, value);
    out += buf;
    from = i + 1;
  };
  for (size_t i = 0; i < text.size(); ++i) {
    const char16_t c = text[i];
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
        text[i + 1] <= 0xDFFF) {
      ++i;
    } else if (c >= 0xDC80 && c <= 0xDCFF) {
      escape(i, "\\x{%02X}", c - 0xDC00u);  // a byte kept from a name that was not UTF-8
    } else if (c >= 0xD800 && c <= 0xDFFF) {
      escape(i, "\\u{%04X}", c);
    } else if (c < 0x20 || c == 0x7F) {
      escape(i, "\\x{%02X}", c);
    } else if (c == u'\\' && i + 2 < text.size() && (text[i + 1] == u'x' || text[i + 1] == u'u') &&
               text[i + 2] == u'{') {
      escape(i, "\\\\", 0);
    }
  }
  out += ToUtf8(text.substr(from));
  return out;
}

String PreviewValueName(TTraceTargetType target, const String& valueName) {
  return target == TTT_UserAssist ? Rot13(valueName) : valueName;
}

String PreviewData(TTraceTargetType target, const String& data) {
  if (target == TTT_RunCMD && data.size() >= 2 && data.compare(data.size() - 2, 2, u"\\1") == 0)
    return data.substr(0, data.size() - 2);
  return data;
}

}  // namespace tc::host
