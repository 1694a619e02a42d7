# What bench/http measures with: its client, the limit, and many servers in one process. Linux only.
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
  add_executable(http-client http-client.cpp HttpExchange.cpp)
  add_executable(http-limit http-limit.cpp)
  add_executable(http-many http-many.cpp)
  target_link_libraries(http-many PRIVATE brevane_http)
  file(GENERATE OUTPUT bench-http
       CONTENT "#!/bin/sh\nexec ${CMAKE_CURRENT_SOURCE_DIR}/http --build ${CMAKE_BINARY_DIR} \"$@\"\n"
       FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
endif()
