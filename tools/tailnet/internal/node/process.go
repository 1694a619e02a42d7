// SPDX-License-Identifier: MIT

package node

import (
	"os/exec"
	"runtime"
	"syscall"
)

// process is a child in its own process group: an interrupt from the terminal
// reaches only us, and we end the child in order.
type process struct {
	pid  int
	done chan struct{}
}

func launch(cmd *exec.Cmd) (*process, error) {
	p := &process{done: make(chan struct{})}
	started := make(chan error)
	go func() {
		// Pdeathsig kills the child when the thread that started it ends.
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

// signal sends a signal; it does nothing once the process has been waited for.
func (p *process) signal(sig syscall.Signal) {
	select {
	case <-p.done:
	default:
		syscall.Kill(p.pid, sig)
	}
}
