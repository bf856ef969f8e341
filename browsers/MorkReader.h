// The rows of a Mork database ("history.dat", "formhistory.dat") with two fixed columns,
// read by a character-level state machine; column names are never read.
#pragma once
#include <string>
#include <utility>
#include <vector>

#include "platform/WinTypes.h"

namespace tc {

enum class TMorkKind : uint8_t {
  History,      // columns 82 (address) and 84
  FormHistory,  // columns 83 (field name) and 82 (value); "$" escapes decoded
};

// One entry per row that has both columns, in file order. `Data` is the file's bytes (any
// encoding detection left out: Mork files are 8-bit text); it is used as scratch space.
std::vector<std::pair<String, String>> ReadMorkRows(std::string& Data, TMorkKind Kind);

}  // namespace tc
