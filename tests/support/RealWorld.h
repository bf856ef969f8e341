// The real files made outside this project live beside the repository; a clone on its own
// has none, and the tests that read them skip with the reason.
#pragma once
#include <gtest/gtest.h>

#include <filesystem>

#define TC_SKIP_WITHOUT_REALWORLD()                                 \
  if (!std::filesystem::is_directory(TC_REALWORLD_DIR "/hives"))    \
  GTEST_SKIP() << TC_REALWORLD_DIR " is not there (the real files made outside this project)"
