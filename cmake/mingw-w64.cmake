# Cross build for 64-bit Windows with Debian's MinGW-w64 (posix threads), tests run by Wine.
# Usage: cmake -S . -B build-win -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64.cmake
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(TC_MINGW_TRIPLET x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${TC_MINGW_TRIPLET}-gcc-posix)
set(CMAKE_CXX_COMPILER ${TC_MINGW_TRIPLET}-g++-posix)
set(CMAKE_RC_COMPILER ${TC_MINGW_TRIPLET}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${TC_MINGW_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Static runtime (libgcc, libstdc++, winpthread): one .exe that runs without extra DLLs.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")

# Every test and discovery run goes through Wine in the build tree's own prefix and with a
# home of its own, so nothing the tests delete (recycle bin, profile folders) is the user's.
# tools/wine-tests.sh makes that prefix fresh before a run.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../tools/wine-run.sh ${CMAKE_BINARY_DIR})
