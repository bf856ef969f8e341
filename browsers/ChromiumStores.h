// The trace stores of one Chromium-family profile folder (path with trailing delimiter).
// Scans append what a person would name; false, with Error set, when a database of the
// profile cannot be read. Cleans change only what they count.
#pragma once
#include <functional>

#include "browsers/BrowserDatabase.h"

namespace tc {

using TChromiumTrace = TBrowserTrace;
using TChromiumTraces = TBrowserTraces;

// Pages ("urls"), downloads and search terms of "History". The clean empties History's
// tables, "Top Sites", "Shortcuts" and "Network Action Predictor", drops the removed pages'
// icons from "Favicons" and hands "Visited Links" to `Shred`.
bool ScanChromiumHistory(const String& Profile, TChromiumTraces& Traces, String& Error);
bool CleanChromiumHistory(const String& Profile, const std::function<void(const String&)>& Shred,
                          String& Error);

// "Network\Cookies" (Chrome 96 and later) and "Cookies". The clean keeps the cookies of the
// hosts Keep answers true for (host without its leading dot) and counts them in Kept.
StringList ChromiumCookieFiles(const String& Profile);
bool ScanChromiumCookies(const String& Profile, TChromiumTraces& Traces, String& Error);
bool CleanChromiumCookies(const String& Profile, const std::function<bool(const String&)>& Keep,
                          int& Kept, String& Error);

// Form entries ("Web Data": autofill).
bool ScanChromiumFormData(const String& Profile, TChromiumTraces& Traces, String& Error);
bool CleanChromiumFormData(const String& Profile, String& Error);

// Saved logins ("Login Data").
bool ScanChromiumPasswords(const String& Profile, TChromiumTraces& Traces, String& Error);
bool CleanChromiumPasswords(const String& Profile, String& Error);

// Cache entries of "Cache", "Code Cache" and "GPUCache"; the files to remove are every file
// below them.
void ScanChromiumCache(const String& Profile, TChromiumTraces& Traces);
StringList ChromiumCacheFiles(const String& Profile);

// Saved sessions and tabs: "Sessions\", "Current Session", "Last Tabs", ...
void ScanChromiumSessions(const String& Profile, TChromiumTraces& Traces);

}  // namespace tc
