// What the Mozilla-family store files hold, one preview line per trace a scan counts.
#pragma once
#include "browsers/TC_MozillaBrowser.h"
#include "engine/TC_BasePlugin.h"

namespace tc {

// Each does nothing unless the plug-in's scan is previewing its traces.
void PreviewCookies(TTCPlugin& Plugin, const TMozillaBrowser& Profile);
void PreviewHistory(TTCPlugin& Plugin, const TMozillaBrowser& Profile);
void PreviewFormData(TTCPlugin& Plugin, TMozillaBrowser& Profile);
void PreviewSavedPasswords(TTCPlugin& Plugin, TMozillaBrowser& Profile);
// Counts the profile's cache entries, previewing each file with its size.
int CountCacheFiles(TTCPlugin& Plugin, TMozillaBrowser& Profile);

}  // namespace tc
