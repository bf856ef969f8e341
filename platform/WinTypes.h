// Basic Windows-shaped types shared by every layer.
// Project headers come before <windows.h> in any unit that includes both: the guarded
// constants below then yield to the system's macros of the same value.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace tc {

// UTF-16 text, as on Windows, so lengths and positions match the system's strings.
using String = std::u16string;
using StringList = std::vector<String>;
using Bytes = std::vector<uint8_t>;

// A registry root handle value; roots keep their Windows numbers.
using HKEY = uint32_t;
inline constexpr HKEY kHKEY_CLASSES_ROOT = 0x80000000u;
inline constexpr HKEY kHKEY_CURRENT_USER = 0x80000001u;
inline constexpr HKEY kHKEY_LOCAL_MACHINE = 0x80000002u;
inline constexpr HKEY kHKEY_USERS = 0x80000003u;
// A file trace carries this root.
inline constexpr HKEY kNoRootKey = 0xFFFFFFFFu;
#ifndef HKEY_CURRENT_USER
inline constexpr HKEY HKEY_CLASSES_ROOT = kHKEY_CLASSES_ROOT;
inline constexpr HKEY HKEY_CURRENT_USER = kHKEY_CURRENT_USER;
inline constexpr HKEY HKEY_LOCAL_MACHINE = kHKEY_LOCAL_MACHINE;
inline constexpr HKEY HKEY_USERS = kHKEY_USERS;
#endif

// Windows error codes the services return (0 is success).
#ifndef ERROR_SUCCESS
inline constexpr uint32_t ERROR_SUCCESS = 0;
inline constexpr uint32_t ERROR_FILE_NOT_FOUND = 2;
inline constexpr uint32_t ERROR_PATH_NOT_FOUND = 3;
inline constexpr uint32_t ERROR_ACCESS_DENIED = 5;
inline constexpr uint32_t ERROR_INVALID_HANDLE = 6;
inline constexpr uint32_t ERROR_NOT_ENOUGH_MEMORY = 8;
inline constexpr uint32_t ERROR_INVALID_DATA = 13;
inline constexpr uint32_t ERROR_WRITE_PROTECT = 19;
inline constexpr uint32_t ERROR_WRITE_FAULT = 29;
inline constexpr uint32_t ERROR_SHARING_VIOLATION = 32;
inline constexpr uint32_t ERROR_LOCK_VIOLATION = 33;
inline constexpr uint32_t ERROR_HANDLE_EOF = 38;
inline constexpr uint32_t ERROR_NOT_SUPPORTED = 50;
inline constexpr uint32_t ERROR_FILE_EXISTS = 80;
inline constexpr uint32_t ERROR_INVALID_PARAMETER = 87;
inline constexpr uint32_t ERROR_DISK_FULL = 112;
inline constexpr uint32_t ERROR_INSUFFICIENT_BUFFER = 122;
inline constexpr uint32_t ERROR_INVALID_NAME = 123;
inline constexpr uint32_t ERROR_MOD_NOT_FOUND = 126;
inline constexpr uint32_t ERROR_PROC_NOT_FOUND = 127;
inline constexpr uint32_t ERROR_DIR_NOT_EMPTY = 145;
inline constexpr uint32_t ERROR_ALREADY_EXISTS = 183;
inline constexpr uint32_t ERROR_MORE_DATA = 234;
inline constexpr uint32_t ERROR_NO_MORE_ITEMS = 259;
inline constexpr uint32_t ERROR_CANCELLED = 1223;
inline constexpr uint32_t ERROR_CANTOPEN = 1011;
inline constexpr uint32_t ERROR_CANTREAD = 1012;
inline constexpr uint32_t ERROR_CANTWRITE = 1013;
inline constexpr uint32_t ERROR_BADDB = 1009;
inline constexpr uint32_t ERROR_KEY_DELETED = 1018;
inline constexpr uint32_t ERROR_SERVICE_NOT_ACTIVE = 1062;
inline constexpr uint32_t ERROR_DATATYPE_MISMATCH = 1629;
inline constexpr uint32_t ERROR_CALL_NOT_IMPLEMENTED = 120;
inline constexpr uint32_t ERROR_CANT_RESOLVE_FILENAME = 1921;
inline constexpr uint32_t ERROR_FILE_CORRUPT = 1392;
inline constexpr uint32_t ERROR_FILE_READ_ONLY = 6009;
#endif

// Registry value types.
#ifndef REG_SZ
inline constexpr uint32_t REG_NONE = 0;
inline constexpr uint32_t REG_SZ = 1;
inline constexpr uint32_t REG_EXPAND_SZ = 2;
inline constexpr uint32_t REG_BINARY = 3;
inline constexpr uint32_t REG_DWORD = 4;
inline constexpr uint32_t REG_DWORD_BIG_ENDIAN = 5;
inline constexpr uint32_t REG_LINK = 6;
inline constexpr uint32_t REG_MULTI_SZ = 7;
inline constexpr uint32_t REG_QWORD = 11;
#endif

// File attributes.
#ifndef FILE_ATTRIBUTE_DIRECTORY
inline constexpr uint32_t FILE_ATTRIBUTE_READONLY = 0x1;
inline constexpr uint32_t FILE_ATTRIBUTE_HIDDEN = 0x2;
inline constexpr uint32_t FILE_ATTRIBUTE_SYSTEM = 0x4;
inline constexpr uint32_t FILE_ATTRIBUTE_DIRECTORY = 0x10;
inline constexpr uint32_t FILE_ATTRIBUTE_ARCHIVE = 0x20;
inline constexpr uint32_t FILE_ATTRIBUTE_DEVICE = 0x40;
inline constexpr uint32_t FILE_ATTRIBUTE_NORMAL = 0x80;
inline constexpr uint32_t FILE_ATTRIBUTE_REPARSE_POINT = 0x400;
#endif

// Drive types, as GetDriveType returns them.
inline constexpr uint32_t kDriveUnknown = 0;
inline constexpr uint32_t kDriveNoRootDir = 1;
inline constexpr uint32_t kDriveRemovable = 2;
inline constexpr uint32_t kDriveFixed = 3;
inline constexpr uint32_t kDriveRemote = 4;
inline constexpr uint32_t kDriveCdRom = 5;

inline constexpr char16_t kPathDelim = u'\\';

}  // namespace tc
