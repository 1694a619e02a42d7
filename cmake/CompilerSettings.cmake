# Flags that every target of the project is compiled with.

set(CMAKE_CXX_STANDARD 23)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(CCACHE ccache)
if(CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor
                    -Woverloaded-virtual -Wimplicit-fallthrough)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  add_compile_options(-Wthread-safety)
else()
  # GCC 14 reports the destructor of an empty std::optional.
  add_compile_options(-Wno-maybe-uninitialized)
endif()
# One section per function, so that the linker can drop library functions that are never called.
add_compile_options(-ffunction-sections -fdata-sections)
if(APPLE)
  add_link_options(-Wl,-dead_strip)
else()
  add_link_options(-Wl,--gc-sections)
  include(CheckLinkerFlag)
  check_linker_flag(CXX -Wl,-z,pack-relative-relocs HAS_PACKED_RELOCATIONS)
  if(HAS_PACKED_RELOCATIONS)
    add_link_options(-Wl,-z,pack-relative-relocs)
  endif()
endif()
if(BREVANE_WERROR)
  add_compile_options(-Werror)
endif()
# Whether the standard library differs from that of the distribution's libraries.
if(CMAKE_CXX_FLAGS MATCHES "-stdlib=libc\\+\\+")
  set(BREVANE_OTHER_LIBRARY ON)
endif()
if(BREVANE_SANITIZE)
  add_compile_options(-fsanitize=${BREVANE_SANITIZE} -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${BREVANE_SANITIZE})
  if(BREVANE_SANITIZE MATCHES "undefined")
    # The vptr check probes memory through a pipe, and so reports every object in a test that has used
    # up the descriptors.
    add_compile_options(-fno-sanitize-recover=undefined -fno-sanitize=vptr)
  endif()
  if(BREVANE_SANITIZE MATCHES "thread" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # Asio uses fences, which ThreadSanitizer does not support; its mutexes order the same accesses.
    add_compile_options(-Wno-tsan)
  endif()
endif()
