// Registry string values are overwritten before they are deleted.
#pragma once
#include "platform/helpers/Orviregistry.h"

namespace tc {

// Writes a string of '0's of the value's length ten times, then deletes the value (also an
// empty or missing one). False when anything on the way raised.
bool RegShredderStringValue(HKEY RootKey, const String& Key, const String& ValueName,
                            TRegOptions Options);

}  // namespace tc
