// Deletion at the next start through the Session Manager's PendingFileRenameOperations,
// written exactly as Windows writes it: pairs of "\??\<path>" and an empty target.
#pragma once
#include <memory>

#include "platform/RebootDeleter.h"
#include "platform/Registry.h"

namespace tc {

class PendingRenameRebootDeleter : public IRebootDeleter {
 public:
  static constexpr char16_t kKey[] = u"SYSTEM\\CurrentControlSet\\Control\\Session Manager";
  static constexpr char16_t kValue[] = u"PendingFileRenameOperations";

  explicit PendingRenameRebootDeleter(std::shared_ptr<IRegistry> registry);

  // Appends the pair, keeping every entry already there; creates the value when missing.
  // The Session Manager key itself is never created (ERROR_FILE_NOT_FOUND without it).
  uint32_t Schedule(const String& path) override;
  // The paths of deletion entries (empty target), without their "\??\" prefix; rename
  // entries of other programs are not listed. A missing value is an empty list.
  uint32_t Pending(StringList& paths) override;

 private:
  uint32_t ReadPairs(std::vector<std::pair<String, String>>& pairs);

  std::shared_ptr<IRegistry> registry_;
};

}  // namespace tc
