# Boost for the build with toolchain.cmake: its headers, as script/check-macos lays them out in build/macos.

cmake_path(SET include NORMALIZE ${CMAKE_CURRENT_LIST_DIR}/../../../build/macos/include)
add_library(Boost::headers INTERFACE IMPORTED)
target_include_directories(Boost::headers INTERFACE ${include})
