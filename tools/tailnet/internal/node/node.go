// SPDX-License-Identifier: MIT

// Package node runs tailscaled processes without root or a network.
package node

import (
	"fmt"
	"os"
	"os/exec"
	"path/filepath"
	"regexp"
	"syscall"
	"time"
)

// Options of a node.
type Options struct {
	Name   string // host name
	Dir    string // its own folder; gets the state, the log and the wrapper
	Socket string // where its daemon listens for the command line
	Bin    string // folder of tailscale and tailscaled
	Login  string // URL of the control server
	CA     string // certificate file of the authority that signed its certificates
	Trap   string // URL of the proxy for requests to outside addresses
}

// Node is one running daemon.
type Node struct {
	CLI    string // wrapper that runs the tailscale command on this node
	SOCKS5 string // address of its proxy into the tailnet
	Log    string
	Status Status // when Join returned

	options Options
	process *process
}

// State is the folder of the daemon's state under a node's own folder.
func State(dir string) string { return filepath.Join(dir, "state") }

// Start starts the daemon. Its folder must exist; its state may be seeded. On
// Linux the daemon ends with this process, however that ends.
func Start(o Options) (*Node, error) {
	n := &Node{CLI: filepath.Join(o.Dir, "tailscale"), Log: filepath.Join(o.Dir, "tailscaled.log"), options: o}
	if err := writeWrapper(n.CLI, filepath.Join(o.Bin, "tailscale"), o.Socket); err != nil {
		return nil, err
	}
	log, err := os.Create(n.Log)
	if err != nil {
		return nil, err
	}
	defer log.Close()
	cmd := exec.Command(filepath.Join(o.Bin, "tailscaled"),
		"--tun=userspace-networking",
		"--statedir="+State(o.Dir),
		"--socket="+o.Socket,
		"--socks5-server=127.0.0.1:0",
		"--port=0",
		"--no-logs-no-support",
	)
	cmd.Env = environment(o)
	cmd.Stdout, cmd.Stderr = log, log
	if n.process, err = launch(cmd); err != nil {
		return nil, err
	}
	return n, nil
}

// Done is closed when the daemon has ended.
func (n *Node) Done() <-chan struct{} { return n.process.done }

// PID is the daemon's process.
func (n *Node) PID() int { return n.process.pid }

// Stop ends the daemon with SIGTERM, or with SIGKILL after three seconds.
func (n *Node) Stop() {
	n.process.signal(syscall.SIGTERM)
	select {
	case <-n.Done():
	case <-time.After(3 * time.Second):
		n.process.signal(syscall.SIGKILL)
		<-n.Done()
	}
}

// Join waits for the daemon, joins the tailnet and waits until the node has
// its name, its addresses and its proxy.
func (n *Node) Join() error {
	if err := n.await("its proxy", n.findProxy); err != nil {
		return err
	}
	err := n.await("its command line", func() bool {
		status, err := n.readStatus()
		return err == nil && status.BackendState != "" && status.BackendState != "NoState"
	})
	if err != nil {
		return err
	}
	if _, err := n.run("up", "--login-server="+n.options.Login, "--hostname="+n.options.Name, "--accept-dns=false"); err != nil {
		return err
	}
	return n.await("the tailnet", func() bool {
		status, err := n.readStatus()
		n.Status = status
		return err == nil && status.BackendState == "Running" && status.Self.DNSName != "" && len(status.TailscaleIPs) > 0
	})
}

var proxyLine = regexp.MustCompile(`SOCKS5 listening on (\S+)`)

func (n *Node) findProxy() bool {
	log, _ := os.ReadFile(n.Log)
	if m := proxyLine.FindSubmatch(log); m != nil {
		n.SOCKS5 = string(m[1])
	}
	return n.SOCKS5 != ""
}

// await polls, since no version-independent notification exists for any of the
// conditions. It fails if the daemon ends, or after a minute.
func (n *Node) await(what string, ready func() bool) error {
	const patience = 60 * time.Second
	for deadline := time.Now().Add(patience); !ready(); {
		select {
		case <-n.Done():
			return fmt.Errorf("tailscaled of %s ended while waiting for %s; see %s", n.options.Name, what, n.Log)
		case <-time.After(20 * time.Millisecond):
		}
		if time.Now().After(deadline) {
			return fmt.Errorf("%s did not get %s within %v; see %s", n.options.Name, what, patience, n.Log)
		}
	}
	return nil
}
