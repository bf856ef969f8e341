// index.dat files: any bytes are read or refused with a reason, and freeing every record
// read either succeeds and leaves an index that reads again without them, or refuses and
// changes nothing.
// Seeds: realworld/iecache/*
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/offline/IndexDat.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const tc::Bytes input(data, data + size);
  tc::IndexDat index;
  std::string error;
  if (!tc::ReadIndexDat(input, index, error)) {
    if (error.empty()) std::abort();  // a refusal always says why
    return 0;
  }
  std::vector<uint32_t> offsets;
  for (const auto& r : index.Records) offsets.push_back(r.Offset);
  tc::Bytes freed = input;
  if (!tc::FreeIndexDatRecords(freed, offsets, error)) {
    if (freed != input || error.empty()) std::abort();
    return 0;
  }
  tc::IndexDat after;
  if (freed.size() != input.size() || (tc::ReadIndexDat(freed, after, error) && !after.Records.empty()))
    std::abort();
  return 0;
}
