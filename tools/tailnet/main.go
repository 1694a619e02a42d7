// SPDX-License-Identifier: MIT

// Command tailnet runs a real tailnet on loopback and visits its nodes' shares.
// See README.md.
package main

import (
	"errors"
	"flag"
	"fmt"
	"io"
	"os"
)

const usage = `Runs a real Tailscale tailnet on this machine's loopback interface: a control
server and a relay in this process, and real tailscaled processes that need
neither root nor an account and send nothing outside.

Usage:
  tailnet run --bin DIR --dir DIR [--nodes NAME,...] [--until-eof] [-- COMMAND...]
  tailnet fetch --dir DIR --from NODE [--funnel] [--head] [--output FILE] URL
  tailnet dial --dir DIR --from NODE [--funnel] HOST:PORT

"tailnet COMMAND --help" says more. The exit status is 0 for success, 1 for a
failure and 2 for a wrong command line.
`

// errUsage is a wrong command line for which a message has been printed.
var errUsage = errors.New("usage")

// exitStatus is the failure of the command that "run" has run.
type exitStatus int

func (s exitStatus) Error() string { return fmt.Sprintf("exit status %d", int(s)) }

var commands = map[string]func([]string) error{"run": run, "fetch": fetch, "dial": dial}

func main() {
	if len(os.Args) < 2 {
		fmt.Fprint(os.Stderr, usage)
		os.Exit(2)
	}
	switch os.Args[1] {
	case "-h", "-help", "--help", "help":
		fmt.Print(usage)
		return
	}
	command, known := commands[os.Args[1]]
	if !known {
		fmt.Fprintf(os.Stderr, "tailnet: no command %q\n\n%s", os.Args[1], usage)
		os.Exit(2)
	}
	os.Exit(report(command(os.Args[2:]), os.Stderr))
}

// report prints a failure's message and returns its exit status.
func report(err error, to io.Writer) int {
	var status exitStatus
	switch {
	case err == nil || errors.Is(err, flag.ErrHelp):
		return 0
	case errors.Is(err, errUsage):
		return 2
	case errors.As(err, &status):
		return int(status)
	}
	fmt.Fprintln(to, "tailnet:", err)
	return 1
}
