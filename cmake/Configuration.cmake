# The paths on the user's machine that are compiled in. The program has no settings at run time.

if(APPLE)
  set(default_tailscale_bin /Applications/Tailscale.app/Contents/MacOS/tailscale)
else()
  set(default_tailscale_bin /usr/bin/tailscale)
endif()
set(BREVANE_TAILSCALE_BIN ${default_tailscale_bin} CACHE STRING "Path of the tailscale executable")
set(BREVANE_SHELL /bin/zsh CACHE STRING "Login shell that runs every command line")
set(BREVANE_SEARCH_PATH /usr/local/bin:/opt/homebrew/bin:/usr/bin:/bin:/usr/sbin:/sbin
    CACHE STRING "PATH of every command")
# On macOS the user defaults, and with them the record of shares, have this name.
set(BREVANE_BUNDLE_IDENTIFIER com.brevane.brevane CACHE STRING "Identifier of the application bundle")

# Command lines contain the path unquoted, so the shell must read it as one literal word.
string(REGEX REPLACE "[A-Za-z0-9_./+,:@%-]" "" unsafe "${BREVANE_TAILSCALE_BIN}")
if(NOT unsafe STREQUAL "")
  message(FATAL_ERROR
    "BREVANE_TAILSCALE_BIN holds '${unsafe}', which the shell may split or interpret: "
    "${BREVANE_TAILSCALE_BIN}\nChoose a path of letters, digits and _ . / + , : @ % - only.")
endif()
if(NOT BREVANE_TAILSCALE_BIN MATCHES "^/")
  message(FATAL_ERROR "BREVANE_TAILSCALE_BIN must be an absolute path: '${BREVANE_TAILSCALE_BIN}'")
endif()
