# Each of these characters must make configuring fail and be named in the message.
foreach(character IN ITEMS " " "'" "\"" "$" "&" "|" "<" ">" "(" ")" "*" "?" "!" "#" "~" "{" "`" "=" "^" "\;" "\\" "[" "ä")
  execute_process(
    COMMAND ${CMAKE_COMMAND} "-DBREVANE_TAILSCALE_BIN=/opt/a${character}b/tailscale" -P ${CONFIGURATION}
    RESULT_VARIABLE status ERROR_VARIABLE message OUTPUT_QUIET)
  string(FIND "${message}" "'${character}'" named)
  if(status EQUAL 0 OR named EQUAL -1)
    message(SEND_ERROR "a path with ${character} was not refused by name (status ${status}): ${message}")
  endif()
endforeach()

execute_process(COMMAND ${CMAKE_COMMAND} -DBREVANE_TAILSCALE_BIN=tailscale -P ${CONFIGURATION}
                RESULT_VARIABLE status ERROR_QUIET OUTPUT_QUIET)
if(status EQUAL 0)
  message(SEND_ERROR "a relative path was not refused")
endif()
