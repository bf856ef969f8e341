#include "platform/common/DefaultIconCatalogue.h"

#include <string>

#include "platform/helpers/TextCodec.h"

namespace tc {

String DefaultIconCatalogue::FileName(int id, int category) {
  return FromUtf8(std::to_string(category) + "\\" + std::to_string(id) + ".ico");
}

}  // namespace tc
