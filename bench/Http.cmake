# The programs that bench/http uses: its client, the limit, many servers in one process, and a folder
# that hangs. Linux only.
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
  add_executable(http-client http-client.cpp HttpExchange.cpp)
  add_executable(http-limit http-limit.cpp)
  add_executable(http-many http-many.cpp)
  add_executable(http-hung http-hung.cpp)
  target_link_libraries(http-many PRIVATE brevane_http)
  add_custom_target(bench-http DEPENDS serve-folder http-client http-limit http-many http-hung)
  file(GENERATE OUTPUT bench-http
       CONTENT "#!/bin/sh\nexec ${CMAKE_CURRENT_SOURCE_DIR}/http --build ${CMAKE_BINARY_DIR} \"$@\"\n"
       FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
endif()
