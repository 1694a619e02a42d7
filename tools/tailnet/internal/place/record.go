// SPDX-License-Identifier: MIT

package place

import (
	"encoding/json"
	"errors"
	"fmt"
	"io/fs"
	"os"
	"path/filepath"
	"strings"
)

// Node describes a running node to other programs.
type Node struct {
	Name   string `json:"name"`
	FQDN   string `json:"fqdn"`
	IP     string `json:"ip"`     // its first address in the tailnet
	CLI    string `json:"cli"`    // runs the tailscale command on this node
	SOCKS5 string `json:"socks5"` // proxy into the tailnet, as this node
	PID    int    `json:"pid"`
	Log    string `json:"log"`
}

// Record describes a running tailnet to other programs.
type Record struct {
	PID     int             `json:"pid"`
	Version string          `json:"version"` // of the nodes
	Control string          `json:"control"`
	CA      string          `json:"ca"` // file that holds the authority's certificate
	Nodes   map[string]Node `json:"nodes"`
}

func recordPath(dir string) string { return filepath.Join(dir, "tailnet.json") }

// Publish writes the record that Find reads.
func (p *Place) Publish(r Record) error {
	text, err := json.Marshal(r)
	if err != nil {
		return err
	}
	fresh := recordPath(p.Dir) + ".new"
	if err := os.WriteFile(fresh, append(text, '\n'), 0o644); err != nil {
		return err
	}
	return os.Rename(fresh, recordPath(p.Dir))
}

// Find reads the record of the tailnet that runs on dir.
func Find(dir string) (Record, error) {
	var r Record
	text, err := os.ReadFile(recordPath(dir))
	if errors.Is(err, fs.ErrNotExist) {
		return r, fmt.Errorf("no tailnet runs on %s", dir)
	}
	if err != nil {
		return r, err
	}
	if err := json.Unmarshal(text, &r); err != nil {
		return r, fmt.Errorf("%s: %w", recordPath(dir), err)
	}
	return r, nil
}

// Node returns the node of that name.
func (r Record) Node(name string) (Node, error) {
	if n, ok := r.Nodes[name]; ok {
		return n, nil
	}
	return Node{}, fmt.Errorf("the tailnet has no node %q", name)
}

// Owner returns the node whose full name is host.
func (r Record) Owner(host string) (Node, error) {
	for _, n := range r.Nodes {
		if strings.EqualFold(n.FQDN, host) {
			return n, nil
		}
	}
	return Node{}, fmt.Errorf("no node of the tailnet is called %q", host)
}
