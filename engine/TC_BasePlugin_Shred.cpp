// Secure deletion of a plug-in's files through the shredder, with timer-gated progress.
#include "engine/TC_BasePlugin.h"

#include "engine/TC_Common.h"
#include "platform/helpers/LastError.h"
#include "platform/helpers/Orvihelper.h"

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
  job.OnNextFile = [this](const String& file) { return ShowCleanItem(u"shred", file, false); };
  job.OnChunk = [] { return !StopAtOnce; };
  ShredTotalSize = job.GetTotalFilesize();
  return job.ExecuteShredder();
}

void TTCPlugin::BookShredJob(const TOrviShredderClass& job, bool inUseScheduled) {
  for (size_t i = 0; i < job.Results.size() && i < job.Files.size(); ++i) {
    const auto& r = job.Results[i];
    if (r.Error == ERROR_SUCCESS) {
      if (RemovedFiles.size() < kRemovedNamesKept) RemovedFiles.push_back(job.Files[i]);
      ++RemovedFileCount;
      RemovedBytes += static_cast<int64_t>(r.Size);
      if (r.Shared) {
        const String said = u"the content of " + job.Files[i] +
                            u" was not overwritten because other names share it";
        if (Note.find(said) == String::npos) Note += (Note.empty() ? u"" : u"; ") + said;
      }
    } else if (r.Error != ERROR_FILE_NOT_FOUND && r.Error != ERROR_PATH_NOT_FOUND &&
               r.Error != ERROR_CANCELLED) {  // files a stop left are no failures
      bool inUse = r.Error == ERROR_SHARING_VIOLATION || r.Error == ERROR_LOCK_VIOLATION;
      AddFileCleanFailure(job.Files[i], r.Overwritten ? u"remove file" : u"overwrite file",
                          r.Error, inUse && inUseScheduled);
    }
  }
}

bool TTCPlugin::SecureDeleteFiles(const StringList& Files) {
  TOrviShredderClass job;
  job.Files = Files;
  bool result = RunShredJob(job);
  uint32_t error = GetLastOSError();
  BookShredJob(job, false);
  SetLastOSError(error);
  ShredTimer.SetEnabled(false);
  return result;
}

bool TTCPlugin::SecureDeleteFile(const String& FileName) {
  TOrviShredderClass job;
  job.Files.push_back(FileName);
  bool result = RunShredJob(job);
  bool scheduled = false;
  uint32_t error = GetLastOSError();
  if (!result) {
    if (error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION) {
      scheduled = DeleteFileOnReboot(FileName);
      RebootRequired = true;
    } else {
      result = true;  // other failures count as done, on purpose
    }
  }
  BookShredJob(job, scheduled);
  SetLastOSError(error);
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
