#include "platform/helpers/Orvihelper.h"

#include "platform/Platform.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

bool DeleteFileOnReboot(const String& fileName) {
  return Services().RebootDeleter->Schedule(fileName) == ERROR_SUCCESS;
}

String FileNameByID(int id, int category) { return Services().Icons->FileName(id, category); }

namespace {
int HexDigit(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'a' && c <= u'f') return c - u'a' + 10;
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  return -1;
}

bool IsValidUtf8(const std::string& s) {
  return ToUtf8(FromUtf8(s)) == s && FromUtf8(s).find(u'\uFFFD') == String::npos;
}
}  // namespace

String UrlDecode(const String& s) {
  String out;
  std::string pending;  // consecutive escaped bytes, decoded together
  auto flush = [&] {
    if (pending.empty()) return;
    out += IsValidUtf8(pending) ? FromUtf8(pending) : FromAnsi(pending);
    pending.clear();
  };
  for (size_t i = 0; i < s.size(); ++i) {
    if (s[i] == u'%' && i + 2 < s.size() && HexDigit(s[i + 1]) >= 0 && HexDigit(s[i + 2]) >= 0) {
      pending += static_cast<char>(HexDigit(s[i + 1]) * 16 + HexDigit(s[i + 2]));
      i += 2;
      continue;
    }
    flush();
    out += s[i] == u'+' ? u' ' : s[i];
  }
  flush();
  return out;
}

}  // namespace tc
