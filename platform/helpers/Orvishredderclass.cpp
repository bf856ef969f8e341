#include "platform/helpers/Orvishredderclass.h"

#include <algorithm>
#include <random>

#include "platform/helpers/LastError.h"
#include "platform/Platform.h"
#include "platform/helpers/Stringhelper.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

namespace {

// A multiple of 3, so three-byte patterns run on unbroken across chunks.
constexpr size_t kChunk = 3 << 18;

// A pass is either random data or a repeating pattern of up to three bytes.
struct Pass {
  bool random;
  uint8_t pattern[3];
};

std::vector<Pass> PassesOf(TDeleteMethod method) {
  switch (method) {
    case TDeleteMethod::dmZeros:
      return {{false, {0, 0, 0}}};
    case TDeleteMethod::dmRandom:
      return {{true, {}}};
    case TDeleteMethod::dmDoD5220:
      return {{false, {0, 0, 0}}, {false, {0xFF, 0xFF, 0xFF}}, {true, {}}};
    case TDeleteMethod::dmGutmann: {
      std::vector<Pass> p(4, Pass{true, {}});
      const uint8_t fixed[27][3] = {
          {0x55, 0x55, 0x55}, {0xAA, 0xAA, 0xAA}, {0x92, 0x49, 0x24}, {0x49, 0x24, 0x92},
          {0x24, 0x92, 0x49}, {0x00, 0x00, 0x00}, {0x11, 0x11, 0x11}, {0x22, 0x22, 0x22},
          {0x33, 0x33, 0x33}, {0x44, 0x44, 0x44}, {0x55, 0x55, 0x55}, {0x66, 0x66, 0x66},
          {0x77, 0x77, 0x77}, {0x88, 0x88, 0x88}, {0x99, 0x99, 0x99}, {0xAA, 0xAA, 0xAA},
          {0xBB, 0xBB, 0xBB}, {0xCC, 0xCC, 0xCC}, {0xDD, 0xDD, 0xDD}, {0xEE, 0xEE, 0xEE},
          {0xFF, 0xFF, 0xFF}, {0x92, 0x49, 0x24}, {0x49, 0x24, 0x92}, {0x24, 0x92, 0x49},
          {0x6D, 0xB6, 0xDB}, {0xB6, 0xDB, 0x6D}, {0xDB, 0x6D, 0xB6}};
      for (const auto& f : fixed) p.push_back(Pass{false, {f[0], f[1], f[2]}});
      for (int i = 0; i < 4; ++i) p.push_back(Pass{true, {}});
      return p;
    }
  }
  return {{false, {0, 0, 0}}};
}

std::mt19937_64& Rng() {
  static std::mt19937_64 rng{std::random_device{}()};
  return rng;
}

void FillRandom(std::vector<uint8_t>& buf) {
  auto& rng = Rng();
  size_t i = 0;
  for (; i + 8 <= buf.size(); i += 8) {
    uint64_t v = rng();
    std::copy_n(reinterpret_cast<const uint8_t*>(&v), 8, buf.data() + i);
  }
  for (; i < buf.size(); ++i) buf[i] = static_cast<uint8_t>(rng());
}

// Digits only: a name without letters has one spelling, so making sure it is free needs no
// case-insensitive search through the folder.
String RandomNameLike(const String& name) {
  String out(name.size(), u'0');
  for (auto& c : out) c = static_cast<char16_t>(u'0' + Rng()() % 10);
  return out;
}

}  // namespace

bool TOrviShredderClass::Overwritten(const FileInfo& info) {
  return !info.IsDirectory() && !info.IsReparsePoint() && !info.IsDevice() && info.Links <= 1;
}

int TOrviShredderClass::PassCount(TDeleteMethod method) {
  return static_cast<int>(PassesOf(method).size());
}

bool TOrviShredderClass::MethodFromName(const String& name, TDeleteMethod& method) {
  static const std::pair<const char16_t*, TDeleteMethod> kNames[] = {
      {u"zeros", TDeleteMethod::dmZeros},
      {u"random", TDeleteMethod::dmRandom},
      {u"dod", TDeleteMethod::dmDoD5220},
      {u"gutmann", TDeleteMethod::dmGutmann}};
  for (const auto& [n, m] : kNames) {
    if (SameText(name, n)) {
      method = m;
      return true;
    }
  }
  return false;
}

int64_t TOrviShredderClass::GetTotalFilesize() {
  int64_t total = 0;
  for (const auto& f : Files) {
    FileInfo info;
    if (Services().Files->GetBasicInfo(f, info) == ERROR_SUCCESS && !info.IsDirectory())
      total += static_cast<int64_t>(info.Size);
  }
  return total;
}

void TOrviShredderClass::Report() {
  Services().UI->ProcessMessages();  // lets the progress timer fire during long jobs
  if (!OnProgress) return;
  int percent = jobBytes_ ? static_cast<int>(doneBytes_ * 100 / jobBytes_) : 100;
  if (percent == lastPercent_) return;
  lastPercent_ = percent;
  OnProgress(this, percent, filesDone_, static_cast<int>(Files.size()));
}

bool TOrviShredderClass::ExecuteShredder() {
  const uint64_t passes = static_cast<uint64_t>(PassCount(method_)) * recurrence_;
  // Each file is looked up once; its shredding works from what this look-up found.
  std::vector<LookedUp> found(Files.size());
  jobBytes_ = doneBytes_ = 0;
  filesDone_ = 0;
  lastPercent_ = -1;
  for (size_t i = 0; i < Files.size(); ++i) {
    found[i].rc = Services().Files->GetBasicInfo(Files[i], found[i].info);
    if (found[i].rc == ERROR_SUCCESS && Overwritten(found[i].info))
      jobBytes_ += found[i].info.Size * passes;
  }
  uint32_t failure = ERROR_SUCCESS;
  Results.assign(Files.size(), TFileResult{});
  for (size_t i = 0; i < Files.size(); ++i) {
    Results[i].Size = found[i].rc == ERROR_SUCCESS ? found[i].info.Size : 0;
    if (OnNextFile && !OnNextFile(Files[i])) {
      for (size_t j = i; j < Files.size(); ++j) Results[j].Error = ERROR_CANCELLED;
      failure = ERROR_CANCELLED;
      break;
    }
    uint32_t rc = ShredOne(Files[i], found[i], Results[i]);
    Results[i].Error = rc;
    if (rc != ERROR_SUCCESS) failure = rc;
    ++filesDone_;
  }
  Report();
  SetLastOSError(failure);
  return failure == ERROR_SUCCESS;
}

uint32_t TOrviShredderClass::ShredOne(const String& path, const LookedUp& file,
                                      TFileResult& result) {
  IFileSystem& fs = *Services().Files;
  const FileInfo& info = file.info;
  if (file.rc != ERROR_SUCCESS) return file.rc;
  if (info.IsReparsePoint()) {
    result.Size = 0;  // the link goes, its target stays
    return fs.RemoveFile(path);
  }
  if (info.IsDirectory() || info.IsDevice()) return ERROR_ACCESS_DENIED;
  if (!Overwritten(info)) {
    // Other names share the content: overwriting it would destroy what they hold.
    result.Shared = true;
    result.Size = 0;
    return fs.RemoveFile(path);
  }
  if (info.Attributes & FILE_ATTRIBUTE_READONLY) {
    FileInfo full;  // hidden and system stay as they are
    if (fs.GetInfo(path, full) != ERROR_SUCCESS) full = info;
    fs.SetAttributes(path, full.Attributes & ~FILE_ATTRIBUTE_READONLY);
  }
  // An empty file has no content to overwrite and no size to cut: its name alone goes.
  uint32_t rc = info.Size == 0 ? ERROR_SUCCESS : Overwrite(path, info.Size);
  if (rc == ERROR_CANCELLED) return RemoveNameAndFile(path, true);
  if (rc != ERROR_SUCCESS) return rc;
  result.Overwritten = true;
  return RemoveNameAndFile(path, info.Size != 0);
}

uint32_t TOrviShredderClass::Overwrite(const String& path, uint64_t size) {
  std::unique_ptr<IFileHandle> file;
  uint32_t rc = Services().Files->Open(path, OpenMode::ReadWrite, file);
  if (rc != ERROR_SUCCESS) return rc;
  const auto passes = PassesOf(method_);
  std::vector<uint8_t> buf(static_cast<size_t>(std::min<uint64_t>(size, kChunk)));
  for (int r = 0; r < recurrence_; ++r) {
    for (const auto& pass : passes) {
      if (!pass.random) {
        for (size_t i = 0; i < buf.size(); ++i) buf[i] = pass.pattern[i % 3];
      }
      for (uint64_t off = 0; off < size; off += buf.size()) {
        size_t n = static_cast<size_t>(std::min<uint64_t>(buf.size(), size - off));
        if (OnChunk && !OnChunk()) return ERROR_CANCELLED;
        if (pass.random) FillRandom(buf);
        rc = file->Write(off, buf.data(), n);
        if (rc != ERROR_SUCCESS) return rc;
        doneBytes_ += n;
        Report();
      }
      rc = file->Flush();
      if (rc != ERROR_SUCCESS) return rc;
    }
  }
  return ERROR_SUCCESS;
}

uint32_t TOrviShredderClass::RemoveNameAndFile(const String& path, bool truncate) {
  IFileSystem& fs = *Services().Files;
  String folder = ExtractFilePath(path);
  String name = ExtractFileName(path);
  String target = path;
  for (int attempt = 0; attempt < 5; ++attempt) {
    String candidate = folder + RandomNameLike(name);
    FileInfo existing;
    if (fs.GetBasicInfo(candidate, existing) == ERROR_SUCCESS) continue;
    if (fs.Rename(path, candidate) == ERROR_SUCCESS) {
      target = candidate;
      break;
    }
  }
  std::unique_ptr<IFileHandle> file;
  if (truncate && fs.Open(target, OpenMode::ReadWrite, file) == ERROR_SUCCESS) {
    file->SetSize(0);
    file->Flush();
    file.reset();
  }
  return fs.RemoveFile(target);
}

}  // namespace tc
