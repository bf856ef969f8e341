#include "platform/memory/MemoryEventLogs.h"

#include <algorithm>

#include "platform/helpers/TextCodec.h"

namespace tc {

MemoryEventLogs::MemoryEventLogs() {
  for (const char16_t* name : {u"Application", u"Security", u"System"}) SetLog(name, 0);
}

MemoryEventLogs::Log* MemoryEventLogs::Find(const String& log) {
  auto it = std::find_if(logs_.begin(), logs_.end(),
                         [&](const Log& l) { return SameText(l.Name, log); });
  return it == logs_.end() ? nullptr : &*it;
}

const MemoryEventLogs::Log* MemoryEventLogs::Find(const String& log) const {
  return const_cast<MemoryEventLogs*>(this)->Find(log);
}

uint32_t MemoryEventLogs::ListLogs(StringList& names) {
  names.clear();
  if (failure_) return failure_;
  // The three classic logs lead, in this order, wherever they were added.
  const String first[] = {u"Application", u"Security", u"System"};
  for (const String& name : first) {
    if (const Log* l = Find(name)) names.push_back(l->Name);
  }
  for (const Log& l : logs_) {
    if (std::none_of(std::begin(first), std::end(first),
                     [&](const String& f) { return SameText(f, l.Name); })) {
      names.push_back(l.Name);
    }
  }
  return ERROR_SUCCESS;
}

uint32_t MemoryEventLogs::CountRecords(const String& log, uint32_t& count) {
  count = 0;
  if (failure_) return failure_;
  Log* l = Find(log);
  if (!l) return ERROR_FILE_NOT_FOUND;
  if (l->AccessError) return l->AccessError;
  count = l->Records;
  return ERROR_SUCCESS;
}

uint32_t MemoryEventLogs::ClearLog(const String& log) {
  if (failure_) return failure_;
  Log* l = Find(log);
  if (!l) return ERROR_FILE_NOT_FOUND;
  if (l->AccessError) return l->AccessError;
  l->Records = 0;
  return ERROR_SUCCESS;
}

void MemoryEventLogs::SetLog(const String& log, uint32_t records) {
  if (Log* l = Find(log)) {
    l->Records = records;
  } else {
    logs_.push_back({log, records, ERROR_SUCCESS});
  }
}

void MemoryEventLogs::RemoveLog(const String& log) {
  logs_.erase(std::remove_if(logs_.begin(), logs_.end(),
                             [&](const Log& l) { return SameText(l.Name, log); }),
              logs_.end());
}

uint32_t MemoryEventLogs::Records(const String& log) const {
  const Log* l = Find(log);
  return l ? l->Records : 0;
}

void MemoryEventLogs::SetAccessError(const String& log, uint32_t code) {
  if (Log* l = Find(log)) l->AccessError = code;
}

}  // namespace tc
