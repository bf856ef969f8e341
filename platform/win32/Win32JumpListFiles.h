// Compound files through structured storage and shell links through the shell's link
// object, both read from memory.
#pragma once
#include <memory>

#include "platform/JumpListFiles.h"
#include "platform/ShellItems.h"

namespace tc {

class Win32JumpListFiles : public IJumpListFiles {
 public:
  explicit Win32JumpListFiles(std::shared_ptr<IShellItems> items) : items_(std::move(items)) {}
  uint32_t ReadStreams(const Bytes& compoundFile, std::vector<NamedStream>& streams) override;
  uint32_t ReadLink(const Bytes& link, String& target) override;

 private:
  std::shared_ptr<IShellItems> items_;
};

}  // namespace tc
