#include "platform/win32/Win32Text.h"

namespace tc {

String ExtendedPath(const String& path) {
  constexpr size_t kShortEnough = 240;  // leaves room for a name CreateDirectory appends
  if (path.size() < kShortEnough || path.starts_with(u"\\\\?\\")) return path;
  if (path.size() >= 3 && path[1] == u':' && path[2] == u'\\') return u"\\\\?\\" + path;
  if (path.starts_with(u"\\\\")) return u"\\\\?\\UNC\\" + path.substr(2);
  return path;
}

}  // namespace tc
