// SPDX-License-Identifier: MIT

package main

import (
	"encoding/json"
	"fmt"
	"io"
	"os"
	"os/signal"
	"path/filepath"
	"strings"
	"syscall"
)

const runUsage = `Usage: tailnet run --bin DIR --dir DIR [--nodes NAME,...] [--until-eof] [-- COMMAND...]

Starts a tailnet and, once all nodes have joined it, prints one line of JSON:
for each node its name, address, command-line wrapper (DIR/NODE/tailscale),
SOCKS5 proxy, process and log, and for all of them the file of the certificate
authority. DIR/tailnet.json contains the same line. The tailnet runs until
SIGINT, SIGTERM or SIGHUP.

With a COMMAND the line is not printed; the command runs once the tailnet is
ready. The tailnet ends with it, and exits with its status.

Every run is a new tailnet and replaces what an earlier one left in DIR. Two
runs cannot share a DIR, and a DIR with other files is refused.`

func run(arguments []string) error {
	o := newOptions("run", runUsage)
	bin := o.require("bin", "folder that holds tailscale and tailscaled")
	dir := o.require("dir", "folder of this tailnet: state, logs, command-line wrappers")
	names := o.String("nodes", "host,peer", "names of the nodes")
	untilEOF := o.Bool("until-eof", false, "end also when standard input ends")
	if err := o.parse(arguments); err != nil {
		return err
	}
	nodes, err := nodeNames(*names)
	if err != nil {
		return o.wrong("%v", err)
	}
	if *untilEOF && o.NArg() > 0 {
		return o.wrong("with --until-eof there can be no command: it has the standard input")
	}
	binaries, err := findBinaries(*bin)
	if err != nil {
		return err
	}

	ended := make(chan os.Signal, 4)
	signal.Notify(ended, syscall.SIGINT, syscall.SIGTERM, syscall.SIGHUP)
	if *untilEOF {
		go func() {
			io.Copy(io.Discard, os.Stdin)
			ended <- syscall.SIGTERM
		}()
	}

	t, err := startTailnet(*dir, binaries, nodes)
	if err != nil {
		return err
	}
	defer t.stop()
	if err := t.join(ended); err != nil {
		return err
	}
	if o.NArg() > 0 {
		return t.serveCommand(o.Args(), ended)
	}
	if err := json.NewEncoder(os.Stdout).Encode(t.record); err != nil {
		return err
	}
	select {
	case <-ended:
		return nil
	case name := <-t.lost:
		return t.lossOf(name)
	}
}

// nodeNames splits the list and refuses names that are not host names (RFC 1123,
// section 2.1), since they are also names of folders.
func nodeNames(list string) ([]string, error) {
	names := strings.Split(list, ",")
	seen := map[string]bool{}
	for _, name := range names {
		legal := name != "" && len(name) <= 63 && !strings.HasPrefix(name, "-") && !strings.HasSuffix(name, "-") &&
			strings.Trim(name, "abcdefghijklmnopqrstuvwxyz0123456789-") == ""
		if !legal {
			return nil, fmt.Errorf("%q is no node name: lower-case letters, digits and inner hyphens, 63 at most", name)
		}
		if seen[name] {
			return nil, fmt.Errorf("there are two nodes called %q", name)
		}
		seen[name] = true
	}
	return names, nil
}

// findBinaries returns the absolute path of dir, which must have both programs.
func findBinaries(dir string) (string, error) {
	dir, err := filepath.Abs(dir)
	if err != nil {
		return "", err
	}
	for _, program := range []string{"tailscale", "tailscaled"} {
		info, err := os.Stat(filepath.Join(dir, program))
		if err != nil {
			return "", fmt.Errorf("no %s in %s: %w", program, dir, err)
		}
		if info.IsDir() || info.Mode()&0o111 == 0 {
			return "", fmt.Errorf("%s is not a program", filepath.Join(dir, program))
		}
	}
	return dir, nil
}
