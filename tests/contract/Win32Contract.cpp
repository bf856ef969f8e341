// The contract suite on the live Windows API (under Wine in the project's runs).
#include <map>

#include "ContractSuite.h"
#include "SqliteContract.h"
#include "platform/win32/Win32EventLogs.h"
#include "platform/win32/Win32Platform.h"
#include "platform/win32/Win32Text.h"
#include "tests/win32/LiveSystemLock.h"

#include <winioctl.h>

namespace tc::contract {
namespace {

// Files held open without sharing, as another program holds them.
std::map<String, HANDLE>& Held() {
  static std::map<String, HANDLE> held;
  return held;
}

// The fields of a mount-point reparse buffer (a junction).
struct MountPointBuffer {
  DWORD ReparseTag;
  WORD ReparseDataLength;
  WORD Reserved;
  WORD SubstituteNameOffset;
  WORD SubstituteNameLength;
  WORD PrintNameOffset;
  WORD PrintNameLength;
  WCHAR PathBuffer[1024];
};

bool MakeJunction(const String& link, const String& target) {
  if (!CreateDirectoryW(Wide(link), nullptr)) return false;
  HANDLE h = CreateFileW(Wide(link), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                         FILE_FLAG_OPEN_REPARSE_POINT | FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  bool made = false;
  if (h != INVALID_HANDLE_VALUE) {
    const String substitute = u"\\??\\" + target;
    MountPointBuffer b{};
    b.ReparseTag = IO_REPARSE_TAG_MOUNT_POINT;
    b.SubstituteNameLength = static_cast<WORD>(substitute.size() * 2);
    b.PrintNameOffset = static_cast<WORD>(b.SubstituteNameLength + 2);
    b.PrintNameLength = static_cast<WORD>(target.size() * 2);
    std::copy(substitute.begin(), substitute.end(), b.PathBuffer);
    std::copy(target.begin(), target.end(), b.PathBuffer + substitute.size() + 1);
    b.ReparseDataLength = static_cast<WORD>(8 + b.PrintNameOffset + b.PrintNameLength + 2);
    DWORD ignored = 0;
    made = DeviceIoControl(h, FSCTL_SET_REPARSE_POINT, &b, b.ReparseDataLength + 8, nullptr, 0,
                           &ignored, nullptr);
    CloseHandle(h);
  }
  const DWORD a = GetFileAttributesW(Wide(link));
  made = made && a != INVALID_FILE_ATTRIBUTES && (a & FILE_ATTRIBUTE_REPARSE_POINT);
  if (!made) RemoveDirectoryW(Wide(link));
  return made;
}

// The event-log service's answer for a log this user may not open, for one chosen log.
String& RefusedLog() {
  static String name;
  return name;
}

HANDLE WINAPI OpenUnlessRefused(LPCWSTR server, LPCWSTR log) {
  if (SameText(FromWide(log), RefusedLog())) {
    SetLastError(ERROR_ACCESS_DENIED);
    return nullptr;
  }
  return OpenEventLogW(server, log);
}

bool RunningUnderWine() {
  return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

struct Win32Traits {
  // The platform holds the live-system lock for the test's whole life.
  static std::shared_ptr<Platform> Make() {
    auto lock = std::make_shared<LiveSystemLock>();
    auto platform = MakeWin32Platform();
    return std::shared_ptr<Platform>(platform.get(), [platform, lock](Platform*) {});
  }
  static String FolderBase() {
    wchar_t temp[MAX_PATH + 1];
    GetTempPathW(MAX_PATH + 1, temp);
    return FromWide(temp) + u"tc-contract";
  }
  static String KeyBase() { return u"Software\\TraceCleanerContract"; }
  // A real program holding a file gives 32 whatever the code asked for; 33 needs a byte
  // range lock, which removing and renaming ignore.
  static bool LockFile(Platform&, const String& path, uint32_t) {
    HANDLE h = CreateFileW(Wide(path), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                           0, nullptr);
    if (h == INVALID_HANDLE_VALUE) return false;
    Held()[path] = h;
    return true;
  }
  static void UnlockAll(Platform&) {
    for (auto& [path, h] : Held()) CloseHandle(h);
    Held().clear();
  }
  static bool MakeFolderLink(Platform&, const String& link, const String& target) {
    return MakeJunction(link, target);
  }
  static bool RefuseLog(Platform& p, const String& log) {
    RefusedLog() = log;
    p.EventLogs = std::make_shared<Win32EventLogs>(&OpenUnlessRefused);
    return true;
  }
  static bool MakeHardLink(Platform&, const String& link, const String& existing) {
    return CreateHardLinkW(Wide(link), Wide(existing), nullptr);
  }
  // Wine keeps a key's values sorted by name, not in the order they were made.
  static bool KeepsValueOrder() { return !RunningUnderWine(); }
};

}  // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Win32, ContractTest, Win32Traits);
INSTANTIATE_TYPED_TEST_SUITE_P(Win32, SqliteContractTest, Win32Traits);

}  // namespace tc::contract
