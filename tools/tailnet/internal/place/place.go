// SPDX-License-Identifier: MIT

// Package place is the folder of one tailnet: who may use it, what an earlier
// tailnet left in it, and the record by which other programs find the nodes.
package place

import (
	"crypto/sha256"
	"errors"
	"fmt"
	"io/fs"
	"os"
	"path/filepath"
	"strconv"
	"strings"
	"syscall"
)

const lockName = "tailnet.lock"

// socketLimit is the longest path of a Unix socket, without the closing NUL:
// 107 bytes on Linux, 103 on macOS.
const socketLimit = 103

// Place is a folder claimed by this process.
type Place struct {
	Dir string // absolute

	lock    *os.File
	sockets string // folder of the sockets where Dir is too long, else ""
}

// Claim makes dir if needed and takes it for this process. It fails where
// another tailnet runs on it, and where it holds things that no tailnet made.
func Claim(dir string) (*Place, error) {
	dir, err := filepath.Abs(dir)
	if err != nil {
		return nil, err
	}
	if err := os.MkdirAll(dir, 0o755); err != nil {
		return nil, err
	}
	if err := refuseForeign(dir); err != nil {
		return nil, err
	}
	lock, err := os.OpenFile(filepath.Join(dir, lockName), os.O_RDWR|os.O_CREATE, 0o644)
	if err != nil {
		return nil, err
	}
	if err := syscall.Flock(int(lock.Fd()), syscall.LOCK_EX|syscall.LOCK_NB); err != nil {
		pid, _ := os.ReadFile(lock.Name())
		lock.Close()
		return nil, fmt.Errorf("another tailnet runs on %s (process %s)", dir, strings.TrimSpace(string(pid)))
	}
	lock.Truncate(0)
	lock.WriteAt([]byte(strconv.Itoa(os.Getpid())+"\n"), 0)
	p := &Place{Dir: dir, lock: lock}
	if err := os.Remove(recordPath(dir)); err != nil && !errors.Is(err, fs.ErrNotExist) {
		p.Release()
		return nil, err
	}
	return p, nil
}

// refuseForeign protects a folder named by mistake: node folders are emptied.
func refuseForeign(dir string) error {
	entries, err := os.ReadDir(dir)
	if err != nil || len(entries) == 0 {
		return err
	}
	if _, err := os.Stat(filepath.Join(dir, lockName)); err != nil {
		return fmt.Errorf("%s is neither empty nor the folder of an earlier tailnet", dir)
	}
	return nil
}

// Release withdraws the record and lets others claim the folder. Logs stay.
func (p *Place) Release() {
	os.Remove(recordPath(p.Dir))
	if p.sockets != "" {
		os.RemoveAll(p.sockets)
	}
	p.lock.Close()
}

// NodeDir makes the folder of a node, without what an earlier tailnet left in
// it: the control server's keys are new, so old identities are of no use.
func (p *Place) NodeDir(name string) (string, error) {
	dir := filepath.Join(p.Dir, name)
	if err := os.RemoveAll(dir); err != nil {
		return "", err
	}
	return dir, os.Mkdir(dir, 0o755)
}

// Socket is a path for a node's socket: in its folder, or in a short one under
// the temporary folder where that would be longer than a socket's path may be.
func (p *Place) Socket(name string) (string, error) {
	socket := filepath.Join(p.Dir, name, "tailscaled.sock")
	if len(socket) <= socketLimit {
		return socket, nil
	}
	short := filepath.Join(os.TempDir(), fmt.Sprintf("tailnet-%x", sha256.Sum256([]byte(p.Dir)))[:24])
	socket = filepath.Join(short, name+".sock")
	if len(socket) > socketLimit {
		return "", fmt.Errorf("no path for the socket of %s fits in %d bytes: %s is too long, and so is %s", name, socketLimit, p.Dir, os.TempDir())
	}
	if p.sockets == "" {
		if err := os.RemoveAll(short); err != nil { // Of an earlier run that was killed.
			return "", err
		}
		if err := os.Mkdir(short, 0o700); err != nil {
			return "", err
		}
		p.sockets = short
	}
	return socket, nil
}
