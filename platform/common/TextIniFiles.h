// Private-profile files read and edited as text over IFileSystem. ANSI (Windows-1252),
// UTF-16LE with BOM and UTF-8 with BOM are read; a change rewrites only the lines it
// touches, in the file's own encoding and line ends, through an all-or-nothing replace.
#pragma once
#include <memory>

#include "platform/FileSystem.h"
#include "platform/IniFiles.h"

namespace tc {

// Reading follows the system's rules: blanks around names and values are dropped, a value
// in matching single or double quotes loses them, lines starting with ';' are comments,
// the first of repeated sections or keys counts.
class TextIniFiles : public IIniFiles {
 public:
  explicit TextIniFiles(std::shared_ptr<IFileSystem> files);

  String ReadString(const String& file, const String& section, const String& key,
                    const String& defaultValue) override;
  // Section names in file order, each once; ERROR_FILE_NOT_FOUND for a missing file.
  uint32_t ReadSections(const String& file, StringList& sections) override;
  // Key names of the section in file order; a missing section is an empty list.
  uint32_t ReadKeys(const String& file, const String& section, StringList& keys) override;
  // A new key goes after the section's last line that is not blank, a new section at the
  // end; a new file is ANSI with CRLF line ends.
  uint32_t WriteString(const String& file, const String& section, const String& key,
                       const String& value) override;
  // Nothing to delete (missing file, section or key) is success.
  uint32_t DeleteKey(const String& file, const String& section, const String& key) override;

 private:
  struct Document;
  uint32_t Load(const String& file, Document& doc);
  uint32_t Save(const String& file, const Document& doc);

  std::shared_ptr<IFileSystem> files_;
};

}  // namespace tc
