# The part of the mingw-w64 cross builds (Debian's packages) that both processors share; the
# toolchain files for each set CMAKE_SYSTEM_PROCESSOR and include it. The runtime is linked
# statically, so the DLL and the programs need no DLLs beyond the system's own.
set(CMAKE_SYSTEM_NAME Windows)

set(TQV_MINGW_TRIPLET ${CMAKE_SYSTEM_PROCESSOR}-w64-mingw32)
# The posix thread model: the standard library's threads and mutexes need it with GCC 12.
set(CMAKE_C_COMPILER ${TQV_MINGW_TRIPLET}-gcc-posix)
set(CMAKE_CXX_COMPILER ${TQV_MINGW_TRIPLET}-g++-posix)
set(CMAKE_RC_COMPILER ${TQV_MINGW_TRIPLET}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${TQV_MINGW_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
# Header-only packages (CLI11) come from the build machine; GoogleTest is built from source.
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)

set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
