// The host's graphics catalogue.
#pragma once
#include "WinTypes.h"

namespace tc {

class IIconCatalogue {
 public:
  virtual ~IIconCatalogue() = default;
  // File name of picture `id` in category `category` (the plug-ins use category 27).
  virtual String FileName(int id, int category) = 0;
};

}  // namespace tc
