# Fails when a file includes a header of a layer it may not use (also header-only code,
# which the layering link checks cannot see). Run: cmake -DROOT=<source dir> -P this file.
set(rules
  "engine|browsers|plugins" "platform/(common|memory|offline|win32)/"
  "platform/helpers" "platform/(common|memory|offline|win32)/"
  "platform/common" "platform/(memory|offline|win32)/"
  "platform" "platform/(helpers|common|memory|offline|win32)/")
set(bad "")
list(LENGTH rules n)
math(EXPR last "${n} - 1")
foreach(i RANGE 0 ${last} 2)
  math(EXPR j "${i} + 1")
  list(GET rules ${i} dirs)
  list(GET rules ${j} forbidden)
  string(REPLACE "|" ";" dirlist "${dirs}")
  foreach(dir ${dirlist})
    file(GLOB files ${ROOT}/${dir}/*.h ${ROOT}/${dir}/*.cpp)
    foreach(f ${files})
      file(STRINGS ${f} lines REGEX "^#include \"${forbidden}")
      foreach(line ${lines})
        string(APPEND bad "${f}: ${line}\n")
      endforeach()
    endforeach()
  endforeach()
endforeach()
if(bad)
  message(FATAL_ERROR "includes against the layering:\n${bad}")
endif()
