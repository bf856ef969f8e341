// Plug-ins for Mozilla Firefox: cookies, history, form data and saved passwords of every
// profile, each counted and removed through the profile's files.
#pragma once
#include <functional>
#include <memory>
#include <vector>

#include "browsers/TC_MozillaBrowser.h"
#include "engine/TC_BasePlugin.h"

namespace tc {

// What one file format of a profile holds of one kind of trace. A Firefox plug-in sums the
// counts of its stores and cleans each of them, so a newer format is added beside the older
// ones with AddStore.
class TFirefoxStore {
 public:
  virtual ~TFirefoxStore() = default;
  // Traces of this kind in the profile (0 when the file is missing or unreadable); a file
  // left unread, or left alone by the clean, is told in the plug-in's Note.
  virtual int Scan(TMozillaBrowser& Profile, TTCPlugin& Plugin) = 0;
  // Removes them; the plug-in is there for its shredder settings, reboot flag and report.
  virtual void Clean(TMozillaBrowser& Profile, TTCPlugin& Plugin) = 0;
};

// The profiles found at start-up, one object each, shared by the history, form data and
// password plug-ins.
using TFirefoxProfileList = std::vector<std::unique_ptr<TMozillaBrowser>>;
extern TFirefoxProfileList FirefoxProfiles;

class TTCPFirefoxPlugin : public TTCPlugin {
 public:
  void Scan() override;
  void Clean() override;
  void AddStore(std::unique_ptr<TFirefoxStore> Store);

 protected:
  TTCPFirefoxPlugin(const String& ClassName, const String& Caption, const String& Description);
  // The profile objects a run works on: the shared ones unless a plug-in reads afresh.
  virtual void ForEachProfile(const std::function<void(TMozillaBrowser&)>& Work);

 private:
  std::vector<std::unique_ptr<TFirefoxStore>> stores_;
};

// Reads a fresh profile list on every run; its clean writes "cookies.txt" empty unread.
class TTCPFirefoxCookies : public TTCPFirefoxPlugin {
 public:
  TTCPFirefoxCookies();

 protected:
  void ForEachProfile(const std::function<void(TMozillaBrowser&)>& Work) override;
};

class TTCPFirefoxHistory : public TTCPFirefoxPlugin {
 public:
  TTCPFirefoxHistory();
};

class TTCPFirefoxFormData : public TTCPFirefoxPlugin {
 public:
  TTCPFirefoxFormData();
};

// Its clean writes "signons.txt" back with every entry, as the clean has always done.
class TTCPFirefoxSavedPasswords : public TTCPFirefoxPlugin {
 public:
  TTCPFirefoxSavedPasswords();
};

// Adds a sentence to the plug-in's Note.
void AddNote(TTCPlugin& Plugin, const String& Text);

// Set at start-up: an installed Firefox switches the four plug-ins on.
extern bool FirefoxInstalled;

void TCP_Firefox_Initialization();
void TCP_Firefox_Finalization();

}  // namespace tc
