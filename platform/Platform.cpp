#include "platform/Platform.h"

#include <stdexcept>

namespace tc {

namespace {
std::shared_ptr<Platform>& Current() {
  static std::shared_ptr<Platform> current;
  return current;
}
}  // namespace

Platform& Services() {
  auto& p = Current();
  if (!p) throw std::logic_error("no platform chosen before start-up");
  return *p;
}

void SetServices(std::shared_ptr<Platform> platform) { Current() = std::move(platform); }

bool HasServices() { return Current() != nullptr; }

}  // namespace tc
