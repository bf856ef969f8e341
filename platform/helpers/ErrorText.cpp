#include "platform/helpers/ErrorText.h"

#include <utility>

#include "platform/helpers/TextCodec.h"

namespace tc {

String SysErrorMessage(uint32_t Code) {
  static const std::pair<uint32_t, const char16_t*> kTexts[] = {
      {ERROR_SUCCESS, u"no error"},
      {ERROR_FILE_NOT_FOUND, u"not found"},
      {ERROR_PATH_NOT_FOUND, u"folder not found"},
      {ERROR_ACCESS_DENIED, u"access denied"},
      {ERROR_NOT_ENOUGH_MEMORY, u"out of memory"},
      {ERROR_WRITE_PROTECT, u"read-only file system"},
      {ERROR_WRITE_FAULT, u"input/output error"},
      {ERROR_SHARING_VIOLATION, u"in use by another process (sharing violation)"},
      {ERROR_LOCK_VIOLATION, u"locked by another process (lock violation)"},
      {ERROR_NOT_SUPPORTED, u"not supported here"},
      {ERROR_FILE_EXISTS, u"the name exists already"},
      {ERROR_DISK_FULL, u"disk full"},
      {ERROR_INVALID_NAME, u"invalid name"},
      {ERROR_DIR_NOT_EMPTY, u"folder not empty"},
      {ERROR_ALREADY_EXISTS, u"the name exists already"},
      {ERROR_BADDB, u"the registry file is damaged"},
      {ERROR_KEY_DELETED, u"the key was deleted"},
      {ERROR_CANT_RESOLVE_FILENAME, u"a link that cannot be followed"},
      {ERROR_FILE_READ_ONLY, u"not permitted (immutable or append-only file)"},
  };
  for (const auto& [code, text] : kTexts)
    if (code == Code) return text;
  return u"Windows error " + FromUtf8(std::to_string(Code));
}

}  // namespace tc
