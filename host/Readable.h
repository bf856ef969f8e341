// Names and data as a person reads them: never two different names printed alike.
#pragma once
#include <string>

#include "engine/TC_BasePlugin.h"

namespace tc::host {

// UTF-8 for printing. A byte that was not valid UTF-8 shows as \x{FF}, a lone UTF-16
// surrogate as \u{D800}, a control character as \x{0A}; a backslash that would start such an
// escape is doubled.
std::string Readable(std::u16string_view text);

// The value name the preview shows: UserAssist names decoded from their ROT13 form.
String PreviewValueName(TTraceTargetType target, const String& valueName);
// The data the preview shows: a Run box entry without the "\1" Windows appends.
String PreviewData(TTraceTargetType target, const String& data);

}  // namespace tc::host
