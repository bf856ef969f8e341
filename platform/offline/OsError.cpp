#include "platform/offline/OsError.h"

#include <cerrno>

#include "platform/WinTypes.h"

namespace tc {

uint32_t WinErrorFromErrno(int err) {
  switch (err) {
    case 0: return ERROR_SUCCESS;
    case ENOENT: return ERROR_FILE_NOT_FOUND;
    case ENOTDIR: return ERROR_PATH_NOT_FOUND;
    case EACCES:
    case EISDIR: return ERROR_ACCESS_DENIED;
    case EROFS: return ERROR_WRITE_PROTECT;
    case EPERM: return ERROR_FILE_READ_ONLY;  // immutable or append-only, whoever asks
    case EEXIST: return ERROR_FILE_EXISTS;
    case ENOTEMPTY: return ERROR_DIR_NOT_EMPTY;
    case ENOSPC:
    case EDQUOT:
    case EFBIG: return ERROR_DISK_FULL;
    case EBUSY:
    case ETXTBSY:
    case EWOULDBLOCK: return ERROR_SHARING_VIOLATION;
    case ENOMEM: return ERROR_NOT_ENOUGH_MEMORY;
    case ENAMETOOLONG: return ERROR_INVALID_NAME;
    case ELOOP: return ERROR_CANT_RESOLVE_FILENAME;
    case EXDEV: return kErrorNotSameDevice;
    case EINVAL: return ERROR_INVALID_PARAMETER;
    case ENOTSUP: return ERROR_BADDB;  // hivex: not a hive it understands
    case EFAULT:
    case ERANGE: return ERROR_BADDB;   // hivex: pointer or field outside the hive
    case EIO: return ERROR_WRITE_FAULT;
    default: return kErrorGenFailure;
  }
}

}  // namespace tc
