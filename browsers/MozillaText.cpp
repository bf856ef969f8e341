#include "browsers/MozillaText.h"

#include "platform/Platform.h"
#include "platform/helpers/FileContents.h"
#include "platform/helpers/TextCodec.h"

namespace tc {

bool ReadProfileFile(const String& Path, std::string& Data) {
  std::unique_ptr<IFileHandle> file;
  uint64_t size = 0;
  if (Services().Files->Open(Path, OpenMode::Read, file) != ERROR_SUCCESS ||
      file->GetSize(size) != ERROR_SUCCESS)
    return false;
  Data.resize(static_cast<size_t>(size));
  size_t total = 0;
  while (total < Data.size()) {
    size_t done = 0;
    if (file->Read(total, Data.data() + total, Data.size() - total, done) != ERROR_SUCCESS)
      return false;
    if (done == 0) break;  // the file shrank while it was read
    total += done;
  }
  Data.resize(total);
  return true;
}

bool ReplaceProfileFile(const String& Path, std::string_view Data) {
  return FileContents::Replace(*Services().Files, Path, Bytes(Data.begin(), Data.end())) ==
         ERROR_SUCCESS;
}

bool IsText(std::string_view Data) { return Data.find('\0') == std::string_view::npos; }

StringList AnsiLines(std::string_view Data) {
  StringList lines;
  ForEachLine(Data, [&](std::string_view line) { lines.push_back(FromAnsi(line)); });
  return lines;
}

String DecodeBase64Utf8(const String& Text) {
  std::string bytes;
  uint32_t bits = 0;
  int count = 0;
  for (char16_t c : Text) {
    int v;
    if (c >= u'A' && c <= u'Z') v = c - u'A';
    else if (c >= u'a' && c <= u'z') v = c - u'a' + 26;
    else if (c >= u'0' && c <= u'9') v = c - u'0' + 52;
    else if (c == u'+') v = 62;
    else if (c == u'/') v = 63;
    else break;  // padding or damage ends the value
    bits = bits << 6 | static_cast<uint32_t>(v);
    if ((count += 6) >= 8) {
      count -= 8;
      bytes += static_cast<char>((bits >> count) & 0xFF);
    }
  }
  return FromUtf8(bytes);
}

}  // namespace tc
