// Picture file names of the form "<category>\<id>.ico".
#pragma once
#include "platform/IconCatalogue.h"

namespace tc {

class DefaultIconCatalogue : public IIconCatalogue {
 public:
  String FileName(int id, int category) override;
};

}  // namespace tc
