// The pieces jump list files are made of: OLE compound files and shell links.
#pragma once
#include "WinTypes.h"

namespace tc {

struct NamedStream {
  String Name;
  Bytes Data;
};

// Contract: ReadStreams gives the streams of the root storage of a compound file, names
// as stored, in no particular order; bytes that are no compound file are
// ERROR_INVALID_DATA. ReadLink gives the target of a shell link read from the start of
// `link` (bytes after its end are ignored): its local path, else its network path, else
// the names of its item list joined with '\'; bytes that are no shell link are
// ERROR_INVALID_DATA, a link without any target "" with success.
class IJumpListFiles {
 public:
  virtual ~IJumpListFiles() = default;
  virtual uint32_t ReadStreams(const Bytes& compoundFile, std::vector<NamedStream>& streams) = 0;
  virtual uint32_t ReadLink(const Bytes& link, String& target) = 0;
};

}  // namespace tc
