// How an XML file wrote its elements, for documents that forget it: parsers keep no record
// of whether an empty element was "<x/>" or "<x></x>", and their writers pick one form.
#pragma once
#include <string_view>
#include <vector>

#include "platform/WinTypes.h"

namespace tc {

// For each element start tag of the text, in document order: whether it closes itself
// ("<x/>"). Comments, CDATA sections, processing instructions and the document type are
// passed over. `text` is any encoding that writes markup as ASCII does (UTF-8, Latin-1).
std::vector<bool> SelfClosingTags(std::string_view text);

// The file's bytes as UTF-8 for SelfClosingTags: UTF-16 with a byte order mark converted,
// anything else as it is.
std::string MarkupText(const Bytes& raw);

}  // namespace tc
