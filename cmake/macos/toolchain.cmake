# Compiles and links for macOS 13 on Apple silicon on another system, with zig, out of what
# script/check-macos lays out in build/macos. On a Mac Brevane is built with Apple's compiler, without this file.

set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 22.0) # Darwin 22 is macOS 13.
set(CMAKE_SYSTEM_PROCESSOR arm64)

cmake_path(SET macos_parts NORMALIZE ${CMAKE_CURRENT_LIST_DIR}/../../build/macos)

# CMake wants one file for each tool.
foreach(tool c++ ar ranlib)
  set(options "")
  if(tool STREQUAL "c++")
    set(options "-target aarch64-macos.13.0")
  endif()
  file(CONFIGURE OUTPUT ${macos_parts}/wrappers/${tool} NEWLINE_STYLE UNIX @ONLY CONTENT [[
#!/bin/sh
export ZIG_GLOBAL_CACHE_DIR="@macos_parts@/cache" ZIG_LOCAL_CACHE_DIR="@macos_parts@/cache"
exec "@macos_parts@/zig/ziglang/zig" @tool@ @options@ "$@"
]])
  file(CHMOD ${macos_parts}/wrappers/${tool} PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
endforeach()
set(CMAKE_CXX_COMPILER ${macos_parts}/wrappers/c++)
set(CMAKE_AR ${macos_parts}/wrappers/ar CACHE FILEPATH "" FORCE)
set(CMAKE_RANLIB ${macos_parts}/wrappers/ranlib CACHE FILEPATH "" FORCE)
set(CMAKE_CXX_COMPILER_AR ${CMAKE_AR} CACHE FILEPATH "" FORCE)
set(CMAKE_CXX_COMPILER_RANLIB ${CMAKE_RANLIB} CACHE FILEPATH "" FORCE)

# zig comes with a static libc++ and so turns off what libc++'s headers know of the releases of macOS. With it
# on again, using what the libc++ of macOS 13.0 lacks does not compile.
set(CMAKE_CXX_FLAGS_INIT "-U_LIBCPP_HAS_NO_VENDOR_AVAILABILITY_ANNOTATIONS -Werror=unguarded-availability-new -F${CMAKE_CURRENT_LIST_DIR}/frameworks")
# Nothing but the system's own libc++, by the symbols that are known to be in it.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-nostdlib++ ${CMAKE_CURRENT_LIST_DIR}/libc++.tbd")

# There is no SDK, and no need to say for which processor.
set(CMAKE_OSX_SYSROOT "" CACHE STRING "" FORCE)
set(CMAKE_OSX_ARCHITECTURES "" CACHE STRING "" FORCE)
set(CMAKE_INSTALL_NAME_TOOL true CACHE FILEPATH "" FORCE)

# Packages: by the stand-ins beside this file, nothing of the system.
set(Qt6_DIR ${CMAKE_CURRENT_LIST_DIR}/Qt6)
set(Boost_DIR ${CMAKE_CURRENT_LIST_DIR}/Boost)
set(CMAKE_FIND_ROOT_PATH ${macos_parts}/none)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# zig keeps what it compiled by itself.
set(CCACHE OFF)
