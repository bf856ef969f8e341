#!/bin/sh
# Runs a Windows program under Wine the way the tests need it: in the build tree's own
# prefix and home (made on first use), headless, quiet. The program's output is passed on
# after it ends: Wine's background processes (services, explorer) inherit the output
# handles, and would otherwise keep ctest waiting for the end of the output.
#   tools/wine-run.sh BUILD_DIR PROGRAM.exe [ARGS...]
build=$1
shift
export HOME="$build/wine-home" XDG_DATA_HOME="$build/wine-home/.local/share"
export WINEPREFIX="$build/wineprefix" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
unset DISPLAY WAYLAND_DISPLAY
mkdir -p "$HOME"
if [ ! -f "$WINEPREFIX/system.reg" ]; then
  flock "$build/wineprefix.lock" sh -c \
    '[ -f "$WINEPREFIX/system.reg" ] || wine wineboot -i >/dev/null 2>&1 </dev/null'
fi
out=$(mktemp) && err=$(mktemp) || exit 1
# A program that printed nothing and failed never started (Wine loses a start now and then
# when many run at once): it gets two more tries.
for try in 1 2 3; do
  wine "$@" >"$out" 2>"$err" </dev/null
  rc=$?
  if [ "$rc" = 0 ] || [ -s "$out" ]; then break; fi
  echo "wine-run: $1 printed nothing and ended with $rc (try $try)" >&2
  sleep 1
done
cat "$out"
cat "$err" >&2
rm -f "$out" "$err"
exit $rc
