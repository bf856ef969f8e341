// The shredder: overwrites files, then removes them so neither content nor name survives.
#pragma once
#include <functional>

#include "platform/FileSystem.h"
#include "platform/WinTypes.h"

namespace tc {

enum class TDeleteMethod : uint8_t {
  dmZeros,      // one pass of zeros
  dmRandom,     // one pass of random data
  dmDoD5220,    // DoD 5220.22-M: zeros, ones, random
  dmGutmann,    // Gutmann's 35 passes
};

// Raised with (Sender, Percent done, files done, files in the job).
using TShredProgressEvent = std::function<void(void* Sender, int Percent, int A, int B)>;

class TOrviShredderClass {
 public:
  // What became of one listed file.
  struct TFileResult {
    uint32_t Error = ERROR_SUCCESS;  // why it is still there; ERROR_SUCCESS once removed
    uint64_t Size = 0;               // its size when the job began
    bool Overwritten = false;        // its content was overwritten (before any failure)
    bool Shared = false;  // other names share its content: only this name went, the content stays
  };

  StringList Files;
  TShredProgressEvent OnProgress;
  // One per listed file, in list order, filled by ExecuteShredder; ERROR_CANCELLED for the
  // files a stop left untouched.
  std::vector<TFileResult> Results;
  // Asked before each file: false stops the job there.
  std::function<bool(const String& File)> OnNextFile;
  // Asked between chunks: false drops the file being overwritten at once (it is still
  // truncated and removed, never left half-written).
  std::function<bool()> OnChunk;

  void SetMethod(TDeleteMethod method) { method_ = method; }
  void SetDeleteRecurrence(int count) { recurrence_ = count < 1 ? 1 : count; }
  int64_t GetTotalFilesize();
  // Overwrites and removes every listed file. False when any failed, with the last
  // operating-system error set to that failure's code.
  bool ExecuteShredder();

  static int PassCount(TDeleteMethod method);
  // Whether shredding overwrites this file's content (a plain file with no other names).
  static bool Overwritten(const FileInfo& info);
  // Parses "zeros", "random", "dod", "gutmann" (case-insensitive).
  static bool MethodFromName(const String& name, TDeleteMethod& method);

 private:
  struct LookedUp {
    uint32_t rc = ERROR_SUCCESS;
    FileInfo info;
  };
  uint32_t ShredOne(const String& path, const LookedUp& file, TFileResult& result);
  uint32_t Overwrite(const String& path, uint64_t size);
  uint32_t RemoveNameAndFile(const String& path, bool truncate);
  void Report();

  TDeleteMethod method_ = TDeleteMethod::dmZeros;
  int recurrence_ = 1;
  uint64_t jobBytes_ = 0;
  uint64_t doneBytes_ = 0;
  int filesDone_ = 0;
  int lastPercent_ = -1;
};

}  // namespace tc
