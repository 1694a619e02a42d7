// SPDX-License-Identifier: MIT

package node

import (
	"os/exec"
	"runtime"
	"syscall"
)

// process is a child that ends with this process, in a process group of its
// own: the terminal's interrupt goes to us, and we end it in order.
type process struct {
	pid  int
	done chan struct{}
}

func launch(cmd *exec.Cmd) (*process, error) {
	p := &process{done: make(chan struct{})}
	started := make(chan error)
	go func() {
		// Linux ends the child with the thread that started it.
		runtime.LockOSThread()
		defer runtime.UnlockOSThread()
		cmd.SysProcAttr = childAttributes()
		err := cmd.Start()
		if err == nil {
			p.pid = cmd.Process.Pid
		}
		started <- err
		if err == nil {
			cmd.Wait()
			close(p.done)
		}
	}()
	return p, <-started
}

// signal does nothing once the process has been waited for.
func (p *process) signal(sig syscall.Signal) {
	select {
	case <-p.done:
	default:
		syscall.Kill(p.pid, sig)
	}
}
