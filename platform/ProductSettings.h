// The host product's own settings (the cookie keep-list lives here).
#pragma once
#include "WinTypes.h"

namespace tc {

// Contract: a section is a '\'-separated path below the product's settings key; an absent
// value reads as the default.
class IProductSettings {
 public:
  virtual ~IProductSettings() = default;
  virtual bool ReadBool(const String& section, const String& name, bool defaultValue) = 0;
  virtual uint32_t WriteBool(const String& section, const String& name, bool value) = 0;
};

}  // namespace tc
