#include "platform/common/SqliteMemoryVfs.h"

#include <cstring>
#include <map>
#include <memory>
#include <mutex>

namespace tc::SqliteMemoryVfs {

namespace {

constexpr char kName[] = "tc-memory";
using Buffer = std::shared_ptr<std::string>;

struct Store {
  std::mutex lock;
  std::map<std::string, Buffer> files;
  std::map<const SqliteApi*, std::unique_ptr<sqlite3_vfs>> registered;
};

Store& TheStore() {
  static Store store;
  return store;
}

struct MemFile {
  sqlite3_file base;
  Buffer data;
  std::string* name;  // owned; removed from the store on close when set
};

sqlite3_vfs* DefaultOf(sqlite3_vfs* vfs) {
  return static_cast<const SqliteApi*>(vfs->pAppData)->vfs_find(nullptr);
}

int Close(sqlite3_file* f) {
  auto* file = reinterpret_cast<MemFile*>(f);
  if (file->name) {
    Drop(*file->name);
    delete file->name;
  }
  file->data.~Buffer();
  return SQLITE_OK;
}

int Read(sqlite3_file* f, void* out, int amount, sqlite3_int64 offset) {
  const std::string& d = *reinterpret_cast<MemFile*>(f)->data;
  const size_t start = static_cast<size_t>(offset);
  const size_t have = start < d.size() ? std::min(d.size() - start, size_t(amount)) : 0;
  if (have) std::memcpy(out, d.data() + start, have);
  if (have == size_t(amount)) return SQLITE_OK;
  std::memset(static_cast<char*>(out) + have, 0, size_t(amount) - have);
  return SQLITE_IOERR_SHORT_READ;
}

int Write(sqlite3_file* f, const void* in, int amount, sqlite3_int64 offset) {
  std::string& d = *reinterpret_cast<MemFile*>(f)->data;
  const size_t end = static_cast<size_t>(offset) + size_t(amount);
  if (d.size() < end) d.resize(end);
  std::memcpy(d.data() + offset, in, size_t(amount));
  return SQLITE_OK;
}

int Truncate(sqlite3_file* f, sqlite3_int64 size) {
  std::string& d = *reinterpret_cast<MemFile*>(f)->data;
  if (d.size() > size_t(size)) d.resize(size_t(size));
  return SQLITE_OK;
}

int Sync(sqlite3_file*, int) { return SQLITE_OK; }

int FileSize(sqlite3_file* f, sqlite3_int64* size) {
  *size = static_cast<sqlite3_int64>(reinterpret_cast<MemFile*>(f)->data->size());
  return SQLITE_OK;
}

int Lock(sqlite3_file*, int) { return SQLITE_OK; }
int CheckReservedLock(sqlite3_file*, int* out) {
  *out = 0;  // nobody else: a journal left behind is hot and gets rolled back
  return SQLITE_OK;
}
int FileControl(sqlite3_file*, int, void*) { return SQLITE_NOTFOUND; }
int SectorSize(sqlite3_file*) { return 4096; }
int DeviceCharacteristics(sqlite3_file*) { return 0; }

const sqlite3_io_methods kMethods = {
    1,    Close, Read, Write, Truncate, Sync, FileSize, Lock,
    Lock, CheckReservedLock, FileControl, SectorSize, DeviceCharacteristics,
    nullptr, nullptr, nullptr, nullptr, nullptr, nullptr};

int Open(sqlite3_vfs*, const char* zName, sqlite3_file* f, int flags, int* outFlags) {
  auto* file = reinterpret_cast<MemFile*>(f);
  file->base.pMethods = nullptr;
  Buffer data;
  std::string* owned = nullptr;
  if (zName == nullptr) {
    data = std::make_shared<std::string>();
  } else {
    Store& s = TheStore();
    std::lock_guard<std::mutex> guard(s.lock);
    auto it = s.files.find(zName);
    if (it != s.files.end()) {
      data = it->second;
    } else if (flags & SQLITE_OPEN_CREATE) {
      data = s.files[zName] = std::make_shared<std::string>();
    } else {
      return SQLITE_CANTOPEN;
    }
    if (flags & SQLITE_OPEN_DELETEONCLOSE) owned = new std::string(zName);
  }
  new (&file->data) Buffer(std::move(data));
  file->name = owned;
  file->base.pMethods = &kMethods;
  if (outFlags) *outFlags = flags;
  return SQLITE_OK;
}

int Delete(sqlite3_vfs*, const char* name, int) {
  Drop(name);
  return SQLITE_OK;
}

int Access(sqlite3_vfs*, const char* name, int, int* out) {
  Store& s = TheStore();
  std::lock_guard<std::mutex> guard(s.lock);
  auto it = s.files.find(name);
  *out = it != s.files.end() && !it->second->empty();  // an empty journal is no journal
  return SQLITE_OK;
}

int FullPathname(sqlite3_vfs*, const char* name, int size, char* out) {
  std::snprintf(out, size_t(size), "%s", name);
  return SQLITE_OK;
}

void* DlOpen(sqlite3_vfs*, const char*) { return nullptr; }
void DlError(sqlite3_vfs*, int size, char* out) { std::snprintf(out, size_t(size), "no"); }
void (*DlSym(sqlite3_vfs*, void*, const char*))(void) { return nullptr; }
void DlClose(sqlite3_vfs*, void*) {}

int Randomness(sqlite3_vfs* vfs, int n, char* out) {
  sqlite3_vfs* d = DefaultOf(vfs);
  return d->xRandomness(d, n, out);
}
int Sleep(sqlite3_vfs* vfs, int micros) {
  sqlite3_vfs* d = DefaultOf(vfs);
  return d->xSleep(d, micros);
}
int CurrentTime(sqlite3_vfs* vfs, double* now) {
  sqlite3_vfs* d = DefaultOf(vfs);
  return d->xCurrentTime(d, now);
}
int GetLastError(sqlite3_vfs*, int, char*) { return 0; }

}  // namespace

const char* Register(const SqliteApi& api) {
  Store& s = TheStore();
  std::lock_guard<std::mutex> guard(s.lock);
  auto& vfs = s.registered[&api];
  if (!vfs) {
    vfs = std::make_unique<sqlite3_vfs>();
    *vfs = sqlite3_vfs{1,       sizeof(MemFile), 512,    nullptr,      kName,    const_cast<SqliteApi*>(&api),
                       Open,    Delete,          Access, FullPathname, DlOpen,   DlError,
                       DlSym,   DlClose,         Randomness, Sleep,   CurrentTime, GetLastError,
                       nullptr, nullptr,         nullptr, nullptr};
    api.vfs_register(vfs.get(), 0);
  }
  return kName;
}

void Put(const std::string& name, std::string data) {
  Store& s = TheStore();
  std::lock_guard<std::mutex> guard(s.lock);
  s.files[name] = std::make_shared<std::string>(std::move(data));
}

bool Get(const std::string& name, std::string& data) {
  Store& s = TheStore();
  std::lock_guard<std::mutex> guard(s.lock);
  auto it = s.files.find(name);
  if (it == s.files.end()) return false;
  data = *it->second;
  return true;
}

void Drop(const std::string& name) {
  Store& s = TheStore();
  std::lock_guard<std::mutex> guard(s.lock);
  s.files.erase(name);
}

}  // namespace tc::SqliteMemoryVfs
