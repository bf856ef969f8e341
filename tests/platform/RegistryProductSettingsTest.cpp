#include "platform/common/RegistryProductSettings.h"

#include <gtest/gtest.h>

#include "platform/helpers/RegData.h"
#include "platform/helpers/TextCodec.h"
#include "platform/memory/MemoryPlatform.h"

namespace tc {
namespace {

TEST(RegistryProductSettingsTest, ReadsDwordFlagsAndFallsBackToTheDefault) {
  MemoryWindows mem = MakeMemoryWindows();
  IProductSettings& settings = *mem.Platform->ProductSettings;
  const String key = u"Software\\TraceCleaner\\Cookies\\IE";
  ASSERT_EQ(ERROR_SUCCESS, settings.WriteBool(u"Cookies\\IE", u"example.com", false));
  mem.Registry->PutDword(kHKEY_CURRENT_USER, key, u"two", 2);
  mem.Registry->PutString(kHKEY_CURRENT_USER, key, u"text", u"0");
  mem.Registry->PutBinary(kHKEY_CURRENT_USER, key, u"short", {0, 0});
  struct Case {
    const char16_t* section;
    const char16_t* name;
    bool def;
    bool expected;
  } cases[] = {
      {u"Cookies\\IE", u"EXAMPLE.COM", true, false},  {u"\\Cookies\\IE\\", u"example.com", true, false},
      {u"Cookies\\IE", u"two", false, true},          {u"Cookies\\IE", u"missing", true, true},
      {u"Cookies\\IE", u"text", true, true},          {u"Cookies\\IE", u"short", true, true},
      {u"Cookies\\OPERA", u"example.com", false, false},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(c.expected, settings.ReadBool(c.section, c.name, c.def)) << ToUtf8(c.name);
  }
  RegValue v;
  ASSERT_EQ(ERROR_SUCCESS, mem.Registry->QueryValue(kHKEY_CURRENT_USER, key, u"example.com", v,
                                                    RegView::Default));
  EXPECT_EQ(REG_DWORD, v.Type);
  EXPECT_EQ((Bytes{0, 0, 0, 0}), v.Data);
}

}  // namespace
}  // namespace tc
