// SPDX-License-Identifier: MIT

package node

import (
	"bytes"
	"context"
	"encoding/json"
	"fmt"
	"os/exec"
	"strings"
	"time"
)

// Status holds the members of "tailscale status --json" that are used here.
type Status struct {
	Version      string
	BackendState string
	TailscaleIPs []string
	Self         struct {
		DNSName    string
		PeerAPIURL []string
	}
}

// FQDN is the node's full name without the closing dot.
func (s Status) FQDN() string { return strings.TrimSuffix(s.Self.DNSName, ".") }

// ReadStatus runs "tailscale status --json" with the given command.
func ReadStatus(cli string) (Status, error) {
	var status Status
	out, err := run(cli, "status", "--json")
	if err != nil {
		return status, err
	}
	return status, json.Unmarshal(out, &status)
}

func (n *Node) readStatus() (Status, error)        { return ReadStatus(n.CLI) }
func (n *Node) run(args ...string) ([]byte, error) { return run(n.CLI, args...) }

// run returns the command's standard output; if it fails, the error contains
// both streams.
func run(cli string, args ...string) ([]byte, error) {
	ctx, cancel := context.WithTimeout(context.Background(), time.Minute)
	defer cancel()
	cmd := exec.CommandContext(ctx, cli, args...)
	var out, errors bytes.Buffer
	cmd.Stdout, cmd.Stderr = &out, &errors
	if err := cmd.Run(); err != nil {
		return nil, fmt.Errorf("%s %s: %w: %s%s", cli, strings.Join(args, " "), err, out.Bytes(), bytes.TrimSpace(errors.Bytes()))
	}
	return out.Bytes(), nil
}
