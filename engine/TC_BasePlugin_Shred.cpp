// Secure deletion of a plug-in's files through the shredder, with timer-gated progress.
#include "engine/TC_BasePlugin.h"

#include "platform/LastError.h"
#include "platform/Orvihelper.h"

namespace tc {

bool TTCPlugin::RunShredJob(TOrviShredderClass& job) {
  ShredTotalSize = 0;
  ShredTimerElapsed = false;
  ShredTimer.SetEnabled(true);
  job.SetMethod(ShredMethod);
  job.SetDeleteRecurrence(ShredRecurrence);
  job.OnProgress = [this](void* sender, int percent, int a, int b) {
    OnSecureDeletingFile(sender, percent, a, b);
  };
  ShredTotalSize = job.GetTotalFilesize();
  return job.ExecuteShredder();
}

bool TTCPlugin::SecureDeleteFiles(const StringList& Files) {
  TOrviShredderClass job;
  job.Files = Files;
  bool result = RunShredJob(job);
  ShredTimer.SetEnabled(false);
  return result;
}

bool TTCPlugin::SecureDeleteFile(const String& FileName) {
  TOrviShredderClass job;
  job.Files.push_back(FileName);
  bool result = RunShredJob(job);
  if (!result) {
    uint32_t error = GetLastOSError();
    if (error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION) {
      DeleteFileOnReboot(FileName);
      RebootRequired = true;
    } else {
      result = true;  // other failures count as done, on purpose
    }
  }
  ShredTimer.SetEnabled(false);
  return result;
}

void TTCPlugin::OnSecureDeletingFile(void* /*Sender*/, int Percent, int /*A*/, int /*B*/) {
  if (ShredTimerElapsed && OnSecureDelete) OnSecureDelete(this, Percent);
}

void TTCPlugin::OnTimer() {
  ShredTimer.SetEnabled(false);
  ShredTimerElapsed = true;
}

}  // namespace tc
