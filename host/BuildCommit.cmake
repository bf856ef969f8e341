# Writes BuildCommit.h with the commit the sources are at; the file changes only when the
# commit does, so an unchanged tree rebuilds nothing.
execute_process(COMMAND git -C ${SOURCE_DIR} rev-parse --short=12 HEAD
                OUTPUT_VARIABLE commit OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
if(NOT commit)
  set(commit "unknown")
endif()
execute_process(COMMAND git -C ${SOURCE_DIR} status --porcelain --untracked-files=no
                OUTPUT_VARIABLE dirty ERROR_QUIET)
if(dirty)
  set(commit "${commit}+changes")
endif()
set(text "#define TC_BUILD_COMMIT \"${commit}\"\n")
if(EXISTS ${OUT})
  file(READ ${OUT} old)
endif()
if(NOT old STREQUAL text)
  file(WRITE ${OUT} "${text}")
endif()
