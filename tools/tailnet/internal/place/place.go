// SPDX-License-Identifier: MIT

// Package place manages the folder of one tailnet: its lock, what an earlier
// tailnet left in it, and the record from which other programs find the nodes.
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
	sockets string // folder of the sockets if Dir is too long, otherwise ""
}

// Claim creates dir if needed and locks it for this process. It fails if another
// tailnet runs on it, or if it contains files that are not a tailnet's.
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

// refuseForeign protects a folder named by mistake, since NodeDir deletes.
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

// Release deletes the record and unlocks the folder. Logs stay.
func (p *Place) Release() {
	os.Remove(recordPath(p.Dir))
	if p.sockets != "" {
		os.RemoveAll(p.sockets)
	}
	p.lock.Close()
}

// NodeDir creates the folder of a node, deleting what an earlier tailnet left
// there: the control server's keys are new, so old identities are useless.
func (p *Place) NodeDir(name string) (string, error) {
	dir := filepath.Join(p.Dir, name)
	if err := os.RemoveAll(dir); err != nil {
		return "", err
	}
	return dir, os.Mkdir(dir, 0o755)
}

// Socket returns a path for a node's socket: in its folder, or, if that exceeds
// the limit of a socket's path, in a short one under the temporary folder.
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
		if err := os.RemoveAll(short); err != nil { // Left by an earlier run that was killed.
			return "", err
		}
		if err := os.Mkdir(short, 0o700); err != nil {
			return "", err
		}
		p.sockets = short
	}
	return socket, nil
}
