// The index of one WinINet cache container ("index.dat", "Client UrlCache MMF Ver 5.2"): its
// URL records read with libmsiecf, records freed in place, and fresh indexes for images.
#pragma once
#include <string>
#include <vector>

#include "platform/WinTypes.h"

namespace tc {

struct IndexDatRecord {
  String Url;               // the record's location: the entry's source URL name
  String FileName;          // the local file's name, "" for none
  int Directory = -1;       // index into IndexDat::Directories; -1: the container's folder
  uint32_t Offset = 0;      // of the record in the file
  uint32_t Size = 0;        // bytes the record's blocks take
  uint32_t EntryType = 0;   // WinINet's cache entry type bits
  uint64_t FileSize = 0;    // of the local file, as the record says
};

struct IndexDat {
  StringList Directories;               // cache subfolder names, in header order
  std::vector<IndexDatRecord> Records;  // allocated URL records, in file order
  int Redirects = 0;                    // allocated redirection records
  int Recovered = 0;                    // records left in unallocated blocks
};

// Reads the allocated URL records of an index held in memory. False with `error` when the
// bytes are no index of version 5.2 or libmsiecf cannot read them.
bool ReadIndexDat(const Bytes& data, IndexDat& index, std::string& error);

// Frees the URL records at these offsets: their bytes are zeroed, their blocks released in
// the allocation bitmap and their hash slots marked unused; every other unallocated block is
// zeroed too, so that nothing freed earlier stays readable. False with `error`, and `data`
// unchanged, when the index or one of the records is inconsistent.
bool FreeIndexDatRecords(Bytes& data, const std::vector<uint32_t>& offsets, std::string& error);

// One entry of a new index: `Directory` names a cache subfolder ("" for the container's own).
struct IndexDatEntry {
  String Url;
  String Directory;
  String FileName;
  uint32_t EntryType = 0;
  uint64_t FileSize = 0;
};

// A new index holding `entries` in this order. False with `error` when they do not fit the
// format (more than 32 subfolders, names longer than 8 characters, over 16 MiB of records).
bool BuildIndexDat(const std::vector<IndexDatEntry>& entries, Bytes& data, std::string& error);

}  // namespace tc
