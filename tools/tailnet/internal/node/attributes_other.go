// SPDX-License-Identifier: MIT

//go:build !linux

package node

import "syscall"

// Only Linux ends a child with its parent; elsewhere a killed tailnet leaves
// its daemons to the user.
func childAttributes() *syscall.SysProcAttr {
	return &syscall.SysProcAttr{Setpgid: true}
}
