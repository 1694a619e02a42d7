// SPDX-License-Identifier: MIT

package main

import (
	"errors"
	"flag"
	"io"
	"os/exec"
	"slices"
	"strings"
	"testing"
)

func TestNodeNamesAreHostNames(t *testing.T) {
	names, err := nodeNames("host,peer-2")
	if err != nil || !slices.Equal(names, []string{"host", "peer-2"}) {
		t.Error(names, err)
	}
	for _, bad := range []string{"", "a,", "A", "a.b", "../a", "-a", "a-", "a,a", strings.Repeat("a", 64)} {
		if names, err := nodeNames(bad); err == nil {
			t.Errorf("%q: %q", bad, names)
		}
	}
}

func TestBinariesMustBeThere(t *testing.T) {
	if _, err := findBinaries(t.TempDir()); err == nil || !strings.Contains(err.Error(), "no tailscale in ") {
		t.Error(err)
	}
}

func TestReportGivesTheExitStatus(t *testing.T) {
	for _, c := range []struct {
		err  error
		want int
	}{
		{nil, 0}, {flag.ErrHelp, 0}, {errUsage, 2}, {exitStatus(7), 7}, {errors.New("broken"), 1},
	} {
		if got := report(c.err, io.Discard); got != c.want {
			t.Errorf("%v: %d, want %d", c.err, got, c.want)
		}
	}
}

func TestCommandStatusFollowsTheShell(t *testing.T) {
	for script, want := range map[string]error{"true": nil, "exit 3": exitStatus(3), "kill -TERM $$": exitStatus(143)} {
		if got := commandStatus(exec.Command("sh", "-c", script).Run()); got != want {
			t.Errorf("%s: %v, want %v", script, got, want)
		}
	}
}

func TestRequiredOptionsHaveNoDefault(t *testing.T) {
	for _, arguments := range [][]string{{"--dir", "x"}, {"--bin", "x"}, {"--bin", "x", "--dir", ""}, {"--nosuch"}} {
		if err := run(arguments); !errors.Is(err, errUsage) {
			t.Errorf("%q: %v", arguments, err)
		}
	}
}
