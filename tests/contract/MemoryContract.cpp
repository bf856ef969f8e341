// The contract suite on the in-memory Windows; files in use come from FaultyFileSystem.
#include "ContractSuite.h"
#include "SqliteContract.h"
#include "platform/memory/MemoryPlatform.h"

namespace tc::contract {
namespace {

struct MemoryTraits {
  static std::shared_ptr<Platform> Make() { return MakeMemoryPlatform(); }
  static String FolderBase() { return u"C:\\ContractTests"; }
  static String KeyBase() { return u"Software\\TraceCleanerContract"; }
  static bool LockFile(Platform& p, const String& path, uint32_t code) {
    auto faults = std::dynamic_pointer_cast<FaultyFileSystem>(p.Files);
    if (!faults) return false;
    faults->LockFile(path, code);
    return true;
  }
  static void UnlockAll(Platform& p) {
    if (auto faults = std::dynamic_pointer_cast<FaultyFileSystem>(p.Files)) faults->ClearFaults();
  }
  static bool MakeFolderLink(Platform& p, const String& link, const String& target) {
    auto faults = std::dynamic_pointer_cast<FaultyFileSystem>(p.Files);
    auto files = std::dynamic_pointer_cast<MemoryFileSystem>(faults ? faults->Inner() : p.Files);
    return files && files->AddLink(link, target, true) == ERROR_SUCCESS;
  }
  static bool RefuseLog(Platform& p, const String& log) {
    auto logs = std::dynamic_pointer_cast<MemoryEventLogs>(p.EventLogs);
    if (logs) logs->SetAccessError(log, ERROR_ACCESS_DENIED);
    return logs != nullptr;
  }
  static bool MakeHardLink(Platform& p, const String& link, const String& existing) {
    auto faults = std::dynamic_pointer_cast<FaultyFileSystem>(p.Files);
    auto files = std::dynamic_pointer_cast<MemoryFileSystem>(faults ? faults->Inner() : p.Files);
    return files && files->AddHardLink(link, existing) == ERROR_SUCCESS;
  }
};

}  // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Memory, ContractTest, MemoryTraits);
INSTANTIATE_TYPED_TEST_SUITE_P(Memory, SqliteContractTest, MemoryTraits);

}  // namespace tc::contract
