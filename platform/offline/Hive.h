// One registry hive file, loaded once through hivex and written back as a whole.
#pragma once
#include <map>
#include <memory>
#include <string>
#include <unordered_map>

#include "platform/Registry.h"

struct hive_h;

namespace tc {

class Hive {
 public:
  using Node = size_t;  // 0 is no node

  // Opens a hive for reading and writing. A file that is not a clean, complete NT hive is
  // refused (nullptr) and not touched; `error` then says why, naming the file.
  static std::unique_ptr<Hive> Open(const std::string& path, std::string& error);
  ~Hive();
  Hive(const Hive&) = delete;
  Hive& operator=(const Hive&) = delete;

  const std::string& Path() const { return path_; }
  Node Root() const;
  // The sub-key with that name (case-insensitive), 0 if there is none.
  Node Child(Node parent, const String& name);
  uint32_t ChildNames(Node node, StringList& names);
  // Values in stored order; changes made since the last Commit included.
  uint32_t Values(Node node, const std::vector<RegNamedValue>*& values);
  // Replaces all values of the node; written to the file by Commit.
  uint32_t SetValues(Node node, std::vector<RegNamedValue> values);
  // One value by name, without regard to case: `value` is null when there is none.
  uint32_t FindValue(Node node, const String& name, const RegValue*& value);
  // Sets one value in its place, keeping its name's case, or appends it.
  uint32_t SetValue(Node node, const String& name, const RegValue& value);
  // Removes the values of that name; ERROR_FILE_NOT_FOUND when there is none.
  uint32_t DeleteValue(Node node, const String& name);
  uint32_t AddChild(Node parent, const String& name, Node& child);
  // Deletes the node with everything below it; the root cannot be deleted.
  uint32_t DeleteTree(Node node);

  bool Dirty() const { return dirty_; }
  // Whether Commit could replace the file now: its folder takes a new file, the volume has
  // room for the copy, the file is not immutable. ERROR_SUCCESS, or the code and `error`.
  uint32_t CheckReplaceable(std::string& error) const;
  // Writes the hive to a new file beside it, wipes its free cells, flushes it and renames
  // it over the original: the original stays intact if anything fails. Does nothing
  // when nothing changed.
  uint32_t Commit(std::string& error);

 private:
  Hive(hive_h* h, std::string path) : h_(h), path_(std::move(path)) {}
  bool IsBelow(Node node, Node ancestor);

  // A key's values as read and changed since. Single-value changes go through a name index
  // and mark removed values, so that a key of many values is cleaned in linear time; the
  // list is compacted before anyone reads it whole.
  struct CachedValues {
    std::vector<RegNamedValue> values;
    bool changed = false;
    bool indexed = false;
    bool duplicates = false;  // names that differ only in case: found one by one
    std::unordered_map<String, size_t> index;  // upper-cased name -> position
    std::vector<bool> removed;                 // empty until a value is removed
  };
  uint32_t Load(Node node, CachedValues*& cached);
  static void Compact(CachedValues& cached);
  static void Index(CachedValues& cached);
  hive_h* h_;
  std::string path_;
  std::map<Node, CachedValues> values_;
  bool dirty_ = false;
};

}  // namespace tc
