// The walk of the current user's URL cache, where Internet Explorer and the T-Online browser
// keep their cookies and temporary internet files, and the keep-list rule for cookie hosts.
#pragma once
#include <functional>

#include "platform/UrlCache.h"
#include "platform/WinTypes.h"

namespace tc {

// Walks the whole cache once. CookiesOnly: cookie entries (a local file path holding
// "Cookie"), else every other entry. DeleteEntries: deletes them (cookies only where the
// keep-list allows). Result: with CountKept the cookies not deleted, else the entries looked at.
// Counted, when given, sees each entry looked at (a scan previewing its traces).
int EnumIECacheFiles(bool CookiesOnly, bool DeleteEntries, bool CountKept,
                     const std::function<void(const UrlCacheEntry&)>& Counted = nullptr);
// Appends the normalised host of every cookie entry, in cache order, duplicates kept.
void GetIECookieEntries(StringList& List);
// The keep-list's answer for a cookie's source URL name: true unless its host is kept.
bool CookieCanBeDeleted(const String& Url);

// Section of the product settings holding the keep-list, one Boolean per normalised host.
inline const String kIECookieSection = u"Cookies\\IE";

}  // namespace tc
