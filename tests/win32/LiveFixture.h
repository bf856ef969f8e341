// Tests on the live system: the win32 platform as the engine's services, and a registry
// key and a folder of the test's own that are removed afterwards.
#pragma once
#include <gtest/gtest.h>

#include "platform/Platform.h"
#include "platform/helpers/TextCodec.h"
#include "platform/win32/Win32Platform.h"
#include "platform/win32/Win32Text.h"
#include "tests/win32/LiveSystemLock.h"

#include <windows.h>

namespace tc {

class LiveTest : public ::testing::Test {
 protected:
  void SetUp() override {
    platform_ = MakeWin32Platform();
    SetServices(platform_);
    const String unique = FromUtf8(::testing::UnitTest::GetInstance()->current_test_info()->name()) +
                          u"_" + FromUtf8(std::to_string(GetCurrentProcessId()));
    key_ = u"Software\\TraceCleanerLiveTests\\" + unique;
    ASSERT_EQ(0u, Reg().CreateKey(kHKEY_CURRENT_USER, key_, RegView::Default));
    wchar_t temp[MAX_PATH + 1];
    GetTempPathW(MAX_PATH + 1, temp);
    folder_ = FromWide(temp) + u"tc-live-" + unique;
    ASSERT_EQ(0u, Files().MakeFolder(folder_));
  }

  void TearDown() override {
    Reg().DeleteKeyTree(kHKEY_CURRENT_USER, key_, RegView::Default);
    RemoveTree(folder_);
    SetServices(nullptr);
  }

  IRegistry& Reg() { return *platform_->Registry; }
  IFileSystem& Files() { return *platform_->Files; }

  String WriteFile(const String& name, std::string_view content) {
    const String path = folder_ + u"\\" + name;
    std::unique_ptr<IFileHandle> f;
    EXPECT_EQ(0u, Files().Open(path, OpenMode::CreateAlways, f));
    if (f) {
      EXPECT_EQ(0u, f->Write(0, content.data(), content.size()));
    }
    return path;
  }

  void RemoveTree(const String& folder) {
    std::vector<FileInfo> entries;
    Files().ListFolder(folder, entries);
    for (const auto& e : entries) {
      const String path = folder + u"\\" + e.Name;
      if (e.IsDirectory() && !e.IsReparsePoint())
        RemoveTree(path);
      else
        Files().RemoveFile(path);
    }
    Files().RemoveFolder(folder);
  }

  LiveSystemLock lock_;  // first: held before SetUp and until after TearDown
  std::shared_ptr<Platform> platform_;
  String key_;
  String folder_;
};

}  // namespace tc
