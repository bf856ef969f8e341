// The files of Firefox 3 and later in one profile folder (path with trailing delimiter):
// places.sqlite, cookies.sqlite, formhistory.sqlite, logins.json, the cache2 folder of the
// local profile and the saved sessions. Scans append traces; false with Error set when a
// file cannot be read. Cleans change only what they count.
#pragma once
#include <functional>
#include <string_view>

#include "browsers/BrowserDatabase.h"

namespace tc {

// Visited pages; the clean removes every visit and the places no bookmark, keyword or
// annotation needs (download annotations go first), so bookmarks stay.
bool ScanFirefoxPlaces(const String& Profile, TBrowserTraces& Traces, String& Error);
bool CleanFirefoxPlaces(const String& Profile, String& Error);

// Cookies: hosts Keep answers true for stay, counted in Kept.
bool ScanFirefoxCookies(const String& Profile, TBrowserTraces& Traces, String& Error);
bool CleanFirefoxCookies(const String& Profile, const std::function<bool(const String&)>& Keep,
                         int& Kept, String& Error);

bool ScanFirefoxFormHistory(const String& Profile, TBrowserTraces& Traces, String& Error);
bool CleanFirefoxFormHistory(const String& Profile, String& Error);

// Saved logins of "logins.json"; the clean writes it back with no login ("key4.db" stays).
bool ScanFirefoxLogins(const String& Profile, TBrowserTraces& Traces, String& Error);
bool CleanFirefoxLogins(const String& Profile, String& Error);

// The profile's cache2 folder: in the local application data folder when the profile lies
// in the roaming one, else in the profile itself.
String FirefoxCacheFolder(const String& Profile);
void ScanFirefoxCache(const String& Profile, TBrowserTraces& Traces);
// The address a cache2 entry file holds in its metadata at the end; "" when none.
String ParseFirefoxCacheEntryUrl(std::string_view Entry);

// sessionstore.jsonlz4 and the files of sessionstore-backups.
void ScanFirefoxSessions(const String& Profile, TBrowserTraces& Traces);

// True while a running Firefox holds the profile's "parent.lock".
bool IsFirefoxProfileLocked(const String& Profile);
// Every file below a folder, links left alone.
StringList FilesBelow(const String& Folder);

}  // namespace tc
