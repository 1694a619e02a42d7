// SPDX-License-Identifier: MIT

//go:build !linux

package node

import "syscall"

// Only Linux ends a child with its parent; elsewhere the daemons of a killed
// tailnet keep running.
func childAttributes() *syscall.SysProcAttr {
	return &syscall.SysProcAttr{Setpgid: true}
}
