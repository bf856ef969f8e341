// Jump list pieces: the DestList stream, compound files (libolecf) and links (liblnk).
// Seeds: realworld/windows/jumplist/* realworld/windows/lnk/* tools/demo/tree/*Destinations-ms
// Options: -max_len=16384
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "platform/common/LibJumpListFiles.h"
#include "platform/common/LibShellItems.h"
#include "platform/helpers/JumpLists.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  tc::Bytes bytes(data, data + size);
  std::vector<tc::DestListEntry> entries;
  if (tc::ParseDestList(bytes, entries) && entries.size() * 114 > size) std::abort();
  tc::LibJumpListFiles reader(std::make_shared<tc::LibShellItems>());
  std::vector<tc::NamedStream> streams;
  if (reader.ReadStreams(bytes, streams) != 0 && !streams.empty()) std::abort();
  tc::String target;
  reader.ReadLink(bytes, target);
  return 0;
}
