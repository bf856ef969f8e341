// prefs.js lines: a cut gives back exactly the text it cut, and a setting is found or not.
// Seeds: realworld/*prefs*.js tools/demo/tree/*prefs.js
// Options: -max_len=4096
#include <cstdlib>
#include <string>

#include "browsers/TC_MozillaBrowser.h"
#include "platform/helpers/TextCodec.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const tc::String text = tc::FromAnsi(std::string(reinterpret_cast<const char*>(data), size));
  for (const tc::String delimiter : {u"(", u"\"", u",", u")", u"-->"}) {
    tc::String rest = text, before;
    if (tc::Parse_StripThrough(rest, delimiter, before) && before + delimiter + rest != text)
      std::abort();
  }
  tc::StringList lines;
  size_t start = 0;
  for (size_t nl; (nl = text.find(u'\n', start)) != tc::String::npos; start = nl + 1)
    lines.push_back(text.substr(start, nl - start));
  lines.push_back(text.substr(start));
  tc::String value;
  for (const tc::String name : {u"signon.SignonFileName", u"wallet.SchemaValueFileName", u""})
    tc::FindPrefsSetting(lines, name, value);
  return 0;
}
