// Compound files read with libolecf and shell links with liblnk, for the backends that run
// off Windows; both read from memory.
#pragma once
#include <memory>

#include "platform/JumpListFiles.h"
#include "platform/ShellItems.h"

namespace tc {

class LibJumpListFiles : public IJumpListFiles {
 public:
  // `items` names the item list of a link that has no path.
  explicit LibJumpListFiles(std::shared_ptr<IShellItems> items) : items_(std::move(items)) {}
  uint32_t ReadStreams(const Bytes& compoundFile, std::vector<NamedStream>& streams) override;
  uint32_t ReadLink(const Bytes& link, String& target) override;

 private:
  std::shared_ptr<IShellItems> items_;
};

}  // namespace tc
