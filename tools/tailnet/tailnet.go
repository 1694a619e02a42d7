// SPDX-License-Identifier: MIT

package main

import (
	"errors"
	"fmt"
	"log"
	"os"
	"os/exec"
	"os/signal"
	"path/filepath"
	"sync"
	"syscall"

	"tailnet/internal/authority"
	"tailnet/internal/control"
	"tailnet/internal/node"
	"tailnet/internal/place"
)

// tailnet owns everything that one "run" has started.
type tailnet struct {
	record place.Record
	lost   chan string // names of nodes whose daemon has ended

	place   *place.Place
	control *control.Control
	log     *os.File
	nodes   []*node.Node
	names   []string
}

// startTailnet starts the servers and the daemons; join makes the nodes join.
func startTailnet(dir, binaries string, names []string) (*tailnet, error) {
	claimed, err := place.Claim(dir)
	if err != nil {
		return nil, err
	}
	t := &tailnet{lost: make(chan string, len(names)), place: claimed, names: names}
	if err := t.start(binaries); err != nil {
		t.stop()
		return nil, err
	}
	return t, nil
}

func (t *tailnet) start(binaries string) (err error) {
	if t.log, err = os.Create(filepath.Join(t.place.Dir, "control.log")); err != nil {
		return err
	}
	if t.control, err = control.Start(log.New(t.log, "", log.LstdFlags|log.Lmicroseconds).Printf); err != nil {
		return err
	}
	signer, err := authority.New()
	if err != nil {
		return err
	}
	t.record = place.Record{
		PID: os.Getpid(), Control: t.control.URL,
		CA: filepath.Join(t.place.Dir, "ca.pem"), Nodes: map[string]place.Node{},
	}
	if err := os.WriteFile(t.record.CA, signer.PEM, 0o644); err != nil {
		return err
	}
	for _, name := range t.names {
		if err := t.startNode(name, binaries, signer); err != nil {
			return fmt.Errorf("node %s: %w", name, err)
		}
	}
	return nil
}

func (t *tailnet) startNode(name, binaries string, signer *authority.Authority) error {
	dir, err := t.place.NodeDir(name)
	if err != nil {
		return err
	}
	socket, err := t.place.Socket(name)
	if err != nil {
		return err
	}
	if err := signer.Seed(node.State(dir), name+"."+control.Domain); err != nil {
		return err
	}
	n, err := node.Start(node.Options{
		Name: name, Dir: dir, Socket: socket, Bin: binaries,
		Login: t.control.URL, CA: t.record.CA, Trap: t.control.Trap.URL,
	})
	if err != nil {
		return err
	}
	t.nodes = append(t.nodes, n)
	go func() { <-n.Done(); t.lost <- name }()
	return nil
}

// errInterrupted ends a run that got a signal before it was ready.
var errInterrupted = errors.New("interrupted before the tailnet was ready")

// join brings all nodes into the tailnet and publishes the record.
func (t *tailnet) join(ended <-chan os.Signal) error {
	joined := make(chan error, len(t.nodes))
	for _, n := range t.nodes {
		go func() { joined <- n.Join() }()
	}
	for range t.nodes {
		select {
		case err := <-joined:
			if err != nil {
				return err
			}
		case <-ended:
			return errInterrupted
		}
	}
	for i, n := range t.nodes {
		t.record.Version = n.Status.Version
		t.record.Nodes[t.names[i]] = place.Node{
			Name: t.names[i], FQDN: n.Status.FQDN(), IP: n.Status.TailscaleIPs[0],
			CLI: n.CLI, SOCKS5: n.SOCKS5, PID: n.PID(), Log: n.Log,
		}
	}
	return t.place.Publish(t.record)
}

func (t *tailnet) lossOf(name string) error {
	return fmt.Errorf("tailscaled of %s ended by itself; see %s", name, filepath.Join(t.place.Dir, name, "tailscaled.log"))
}

// serveCommand runs the user's command and returns its failure. It fails too if
// a daemon ends before the command.
func (t *tailnet) serveCommand(command []string, ended <-chan os.Signal) error {
	cmd := exec.Command(command[0], command[1:]...)
	cmd.Stdin, cmd.Stdout, cmd.Stderr = os.Stdin, os.Stdout, os.Stderr
	if err := cmd.Start(); err != nil {
		return err
	}
	done := make(chan error, 1)
	go func() { done <- cmd.Wait() }()
	for {
		select {
		case err := <-done:
			return commandStatus(err)
		case sig := <-ended:
			// The terminal sends an interrupt to the command itself.
			if sig != syscall.SIGINT {
				cmd.Process.Signal(sig)
			}
		case name := <-t.lost:
			cmd.Process.Signal(syscall.SIGTERM)
			<-done
			return t.lossOf(name)
		}
	}
}

// commandStatus returns the exit status as a shell does: 128 plus the number of
// a fatal signal.
func commandStatus(err error) error {
	var exit *exec.ExitError
	if !errors.As(err, &exit) {
		return err
	}
	if status, ok := exit.Sys().(syscall.WaitStatus); ok && status.Signaled() {
		return exitStatus(128 + int(status.Signal()))
	}
	return exitStatus(exit.ExitCode())
}

// stop ends what was started, the nodes before the servers.
func (t *tailnet) stop() {
	signal.Ignore(syscall.SIGINT, syscall.SIGTERM, syscall.SIGHUP) // They must not interrupt the clean-up.
	var stopping sync.WaitGroup
	for _, n := range t.nodes {
		stopping.Go(n.Stop)
	}
	stopping.Wait()
	if t.control != nil {
		for _, request := range t.control.Trap.Caught() {
			fmt.Fprintln(os.Stderr, "tailnet: kept from leaving this machine:", request)
		}
		t.control.Close()
	}
	if t.log != nil {
		t.log.Close()
	}
	t.place.Release()
}
