// The registry service against the live registry.
#include "LiveFixture.h"

namespace tc {
namespace {

using RegistryLive = LiveTest;

// Runs a system tool and waits for it; true when it exits with 0.
bool RunTool(String commandLine) {
  STARTUPINFOW si{};
  si.cb = sizeof(si);
  PROCESS_INFORMATION pi{};
  if (!CreateProcessW(nullptr, Wide(commandLine), nullptr, nullptr, FALSE, CREATE_NO_WINDOW,
                      nullptr, nullptr, &si, &pi))
    return false;
  WaitForSingleObject(pi.hProcess, 60000);
  DWORD code = 1;
  GetExitCodeProcess(pi.hProcess, &code);
  CloseHandle(pi.hThread);
  CloseHandle(pi.hProcess);
  return code == 0;
}

TEST_F(RegistryLive, ValuesWrittenByAnotherProgramAreReadRawAndUnexpanded) {
  ASSERT_TRUE(RunTool(u"reg.exe add \"HKCU\\" + key_ +
                  u"\" /v Tool /t REG_EXPAND_SZ /d \"%SystemRoot%\\tool.exe\" /f"));
  RegValue v;
  ASSERT_EQ(0u, Reg().QueryValue(kHKEY_CURRENT_USER, key_, u"tool", v, RegView::Default));
  EXPECT_EQ(uint32_t{REG_EXPAND_SZ}, v.Type);
  EXPECT_EQ(Utf16Z(u"%SystemRoot%\\tool.exe"), v.Data);
}

}  // namespace
}  // namespace tc
