# Helpers for the Windows build: the cross toolchain, the DLL's export table, and programs run
# under Wine in a private prefix inside the build folder. Every Wine call is bounded by a timeout.

# The export table TQVSPOOL.dll must have: ordinal base 10 and exactly these names at these ordinals.
TQV_EXPECTED_EXPORTS="10 S_Initialise
11 S_Shutdown
15 S_GetNumUsers
20 S_FaxPending
21 S_FaxSent
25 S_CreateReceiveFaxFile
26 S_FaxReceived
30 S_Scan
31 S_ScannedEventAccepted
40 S_JfaxReady"

# The DLLs a Windows system has of its own; anything else would have to ship beside the library.
TQV_SYSTEM_DLLS="ADVAPI32.dll KERNEL32.dll msvcrt.dll USER32.dll"

# check_dll_exports OBJDUMP DLL: fails with the difference when the export table, the version
# resource's description or the imported DLLs are not as they must be.
check_dll_exports() {
  local objdump=$1 dll=$2 dump base actual dlls
  dump=$("$objdump" -p "$dll")
  base=$(awk '/^Ordinal Base/ { print $3; exit }' <<<"$dump")
  [ "$base" = 10 ] || { echo "$dll: ordinal base is '$base', not 10" >&2; return 1; }
  # Lines "[  n] S_Name" of the name table give ordinal - base.
  actual=$(sed -n '/^\[Ordinal\/Name Pointer\] Table/,/^$/p' <<<"$dump" |
    sed -n 's/^[[:space:]]*\[ *\([0-9]*\)\] \(.*\)$/\1 \2/p' |
    awk -v base="$base" '{ print $1 + base, $2 }' | sort -n)
  if [ "$actual" != "$TQV_EXPECTED_EXPORTS" ]; then
    echo "$dll: the exports differ (expected, then actual):" >&2
    diff <(echo "$TQV_EXPECTED_EXPORTS") <(echo "$actual") >&2 || true
    return 1
  fi
  dlls=$(awk '/DLL Name:/ { print $3 }' <<<"$dump" | sort -u | tr '\n' ' ')
  for name in $dlls; do
    [[ " $TQV_SYSTEM_DLLS " == *" $name "* ]] || { echo "$dll: imports $name, which Windows does not have" >&2; return 1; }
  done
  # The version resource stores its strings in UTF-16.
  if ! strings -el "$dll" | grep -qx 'TQVSPOOL.DLL GateWay File-converter'; then
    echo "$dll: no FileDescription \"TQVSPOOL.DLL GateWay File-converter\"" >&2
    return 1
  fi
}

# wine_start PREFIX: makes or updates the private prefix; fails with a reason when Wine cannot start.
wine_start() {
  export WINEPREFIX=$1 WINEDEBUG=-all WINEARCH=win64 WINEDLLOVERRIDES="mscoree,mshtml="
  mkdir -p "$WINEPREFIX"
  if ! timeout 300 wine wineboot --init >"$WINEPREFIX.boot.log" 2>&1; then
    echo "Wine cannot start (wineboot failed or took over 300 s); see $WINEPREFIX.boot.log" >&2
    tail -n 20 "$WINEPREFIX.boot.log" >&2
    return 1
  fi
  timeout 120 wineserver -w || true
}

# wine_stop: waits for the prefix's programs to end, then ends its server.
wine_stop() {
  timeout 60 wineserver -w || true
  timeout 30 wineserver -k 2>/dev/null || true
}

# windows_path UNIX_PATH: the same file as Wine's Z: drive names it.
windows_path() {
  local path
  path=$(realpath -m "$1")
  echo "Z:${path//\//\\}"
}
