# Cross-compiles for macOS 13 on Apple silicon with zig, from the headers and frameworks that
# script/check-macos puts into build/macos. On a Mac, Apple's compiler builds Brevane, without this file.

set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 22.0) # Darwin 22 is macOS 13.
set(CMAKE_SYSTEM_PROCESSOR arm64)

cmake_path(SET macos_parts NORMALIZE ${CMAKE_CURRENT_LIST_DIR}/../../build/macos)

# CMake needs an executable per tool.
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

# zig brings a static libc++ and therefore disables the availability annotations in libc++'s headers. Enabled
# again, they make it an error to use what the libc++ of macOS 13.0 lacks.
set(CMAKE_CXX_FLAGS_INIT "-U_LIBCPP_HAS_NO_VENDOR_AVAILABILITY_ANNOTATIONS -Werror=unguarded-availability-new -F\"${CMAKE_CURRENT_LIST_DIR}/frameworks\"")
# Links only the system's libc++, by a list of the symbols in it.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-nostdlib++ \"${CMAKE_CURRENT_LIST_DIR}/libc++.tbd\"")

# moc asks no cross-compiler what it defines.
set(CMAKE_AUTOMOC_MOC_OPTIONS -D__APPLE__)

# There is no SDK, and the target option selects the processor.
set(CMAKE_OSX_SYSROOT "" CACHE STRING "" FORCE)
set(CMAKE_OSX_ARCHITECTURES "" CACHE STRING "" FORCE)
set(CMAKE_INSTALL_NAME_TOOL true CACHE FILEPATH "" FORCE)

# Find packages only by the stand-ins beside this file, never the system's.
set(Qt6_DIR ${CMAKE_CURRENT_LIST_DIR}/Qt6)
set(Boost_DIR ${CMAKE_CURRENT_LIST_DIR}/Boost)
set(CMAKE_FIND_ROOT_PATH ${macos_parts}/none)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# zig has its own cache.
set(CCACHE OFF)
