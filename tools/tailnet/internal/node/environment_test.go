// SPDX-License-Identifier: MIT

package node

import (
	"os"
	"os/exec"
	"path/filepath"
	"slices"
	"testing"
)

func TestWrapperHandsOnSocketAndArguments(t *testing.T) {
	dir := filepath.Join(t.TempDir(), "it's $HOME")
	if err := os.Mkdir(dir, 0o755); err != nil {
		t.Fatal(err)
	}
	command, wrapper := filepath.Join(dir, "command"), filepath.Join(dir, "tailscale")
	if err := os.WriteFile(command, []byte("#!/bin/sh\nprintf '%s\\n' \"$@\"\n"), 0o755); err != nil {
		t.Fatal(err)
	}
	if err := writeWrapper(wrapper, command, "/run/a 'b'.sock"); err != nil {
		t.Fatal(err)
	}
	out, err := exec.Command(wrapper, "serve", "a b", "*").Output()
	if want := "--socket=/run/a 'b'.sock\nserve\na b\n*\n"; err != nil || string(out) != want {
		t.Errorf("%q %v, want %q", out, err, want)
	}
}

func TestEnvironmentKeepsNothingThatChangesTheDaemon(t *testing.T) {
	t.Setenv("TS_DEBUG_X", "1")
	t.Setenv("https_proxy", "http://elsewhere.example")
	t.Setenv("KEPT", "yes")
	env := environment(Options{Trap: "http://127.0.0.1:1"})
	for _, gone := range []string{"TS_DEBUG_X=1", "https_proxy=http://elsewhere.example"} {
		if slices.Contains(env, gone) {
			t.Errorf("%s is still there", gone)
		}
	}
	for _, there := range []string{"KEPT=yes", "HTTPS_PROXY=http://127.0.0.1:1"} {
		if !slices.Contains(env, there) {
			t.Errorf("%s is missing", there)
		}
	}
}

func TestProcessEndsBySignalAndCanBeSignalledAgain(t *testing.T) {
	p, err := launch(exec.Command("sleep", "60"))
	if err != nil {
		t.Fatal(err)
	}
	p.signal(9)
	<-p.done
	p.signal(9)
}

func TestLaunchReportsAMissingProgram(t *testing.T) {
	if _, err := launch(exec.Command("/nonexistent/tailscaled")); err == nil {
		t.Error("launched a program that does not exist")
	}
}
