# Boost for builds with toolchain.cmake: the headers that script/check-macos puts into build/macos.

cmake_path(SET include NORMALIZE ${CMAKE_CURRENT_LIST_DIR}/../../../build/macos/include)
add_library(Boost::headers INTERFACE IMPORTED)
target_include_directories(Boost::headers INTERFACE ${include})
