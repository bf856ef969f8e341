#include "engine/RegShredder.h"

#include <exception>

namespace tc {

bool RegShredderStringValue(HKEY RootKey, const String& Key, const String& ValueName,
                            TRegOptions Options) {
  try {
    String value = GetRegStringValueDef(RootKey, Key, ValueName, {}, Options);
    if (!value.empty()) {
      String zeros(value.size(), u'0');
      for (int i = 0; i < 10; ++i) SetRegStringValue(RootKey, Key, ValueName, zeros, Options);
    }
    DeleteRegValue(RootKey, Key, ValueName, Options);
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace tc
