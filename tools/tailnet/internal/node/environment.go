// SPDX-License-Identifier: MIT

package node

import (
	"os"
	"path/filepath"
	"strings"
)

// environment returns the daemon's environment: ours without variables that
// could change its behaviour.
func environment(o Options) []string {
	var env []string
	for _, entry := range os.Environ() {
		name, _, _ := strings.Cut(entry, "=")
		if !strings.HasPrefix(name, "TS_") && !strings.HasSuffix(strings.ToUpper(name), "_PROXY") {
			env = append(env, entry)
		}
	}
	return append(env,
		"TS_NO_LOGS_NO_SUPPORT=true",
		"TS_LOGS_DIR="+o.Dir,
		"TS_PANIC_IF_HIT_MAIN_CONTROL=1",
		"TS_DISABLE_PORTMAPPER=1",
		"TS_NETCHECK_GENERATE_204_URL="+o.Login+"/generate_204",
		// With only loopback, the daemon would consider the network down.
		"TS_ASSUME_NETWORK_UP_FOR_TEST=1",
		"HTTP_PROXY="+o.Trap,
		"HTTPS_PROXY="+o.Trap,
		"NO_PROXY=127.0.0.1,localhost",
		// The daemon uses a stored certificate only if it trusts its authority,
		"SSL_CERT_FILE="+o.CA,
		// and on macOS and from 1.82 on only if its ACME directory is not Let's Encrypt's.
		"TS_DEBUG_ACME_DIRECTORY_URL="+o.Trap+"/acme-directory",
		// From 1.82 on this keeps it from requesting new ones there.
		"TS_CERT_SHARE_MODE=ro",
	)
}

// writeWrapper writes a script that runs the tailscale command of one node. It
// replaces itself by exec, so that signals reach the command.
func writeWrapper(path, command, socket string) error {
	command, err := filepath.Abs(command)
	if err != nil {
		return err
	}
	script := "#!/bin/sh\nexec " + quote(command) + " --socket=" + quote(socket) + " \"$@\"\n"
	return os.WriteFile(path, []byte(script), 0o755)
}

func quote(text string) string { return "'" + strings.ReplaceAll(text, "'", `'\''`) + "'" }
