// SPDX-License-Identifier: MIT

package place

import (
	"os"
	"path/filepath"
	"strings"
	"testing"
)

func claim(t *testing.T, dir string) *Place {
	t.Helper()
	p, err := Claim(dir)
	if err != nil {
		t.Fatal(err)
	}
	t.Cleanup(p.Release)
	return p
}

func TestClaimRefusesAFolderThatIsInUse(t *testing.T) {
	dir := filepath.Join(t.TempDir(), "made", "by", "us")
	claim(t, dir)
	if _, err := Claim(dir); err == nil || !strings.Contains(err.Error(), "another tailnet runs on "+dir) {
		t.Errorf("second claim: %v", err)
	}
}

func TestClaimTakesAFolderThatWasReleased(t *testing.T) {
	dir := t.TempDir()
	p, err := Claim(dir)
	if err != nil {
		t.Fatal(err)
	}
	p.Release()
	claim(t, dir)
}

func TestClaimRefusesAFolderOfOthers(t *testing.T) {
	dir := t.TempDir()
	precious := filepath.Join(dir, "host")
	if err := os.WriteFile(precious, nil, 0o644); err != nil {
		t.Fatal(err)
	}
	if _, err := Claim(dir); err == nil {
		t.Error("claimed a folder that held other things")
	}
	if _, err := os.Stat(precious); err != nil {
		t.Error(err)
	}
}

func TestClaimWithdrawsTheRecordOfAKilledRun(t *testing.T) {
	dir := t.TempDir()
	p := claim(t, dir)
	if err := p.Publish(Record{}); err != nil {
		t.Fatal(err)
	}
	p.lock.Close() // As the system does for a killed process.
	claim(t, dir)
	if _, err := Find(dir); err == nil {
		t.Error("found a tailnet that does not run")
	}
}

func TestNodeDirIsEmptyAgain(t *testing.T) {
	p := claim(t, t.TempDir())
	for range 2 {
		dir, err := p.NodeDir("host")
		if err != nil {
			t.Fatal(err)
		}
		if left, _ := os.ReadDir(dir); len(left) != 0 {
			t.Errorf("%v left behind", left)
		}
		if err := os.WriteFile(filepath.Join(dir, "state"), nil, 0o644); err != nil {
			t.Fatal(err)
		}
	}
}

func TestSocketsOfALongFolderAreElsewhereAndGoWithTheRun(t *testing.T) {
	t.Setenv("TMPDIR", "/tmp")
	p, err := Claim(filepath.Join(t.TempDir(), strings.Repeat("x", socketLimit)))
	if err != nil {
		t.Fatal(err)
	}
	defer p.Release()
	host, err := p.Socket("host")
	if err != nil {
		t.Fatal(err)
	}
	peer, err := p.Socket("peer")
	if err != nil {
		t.Fatal(err)
	}
	if len(host) > socketLimit || host == peer || filepath.Dir(host) != filepath.Dir(peer) {
		t.Error(host, peer)
	}
	info, err := os.Stat(filepath.Dir(host))
	if err != nil || info.Mode().Perm() != 0o700 {
		t.Error(info, err)
	}
	p.Release()
	if _, err := os.Stat(filepath.Dir(host)); err == nil {
		t.Error("the folder is still there")
	}
}

func TestSocketSaysWhenNoFolderIsShortEnough(t *testing.T) {
	long := t.TempDir() + "/" + strings.Repeat("x", socketLimit)
	t.Setenv("TMPDIR", long)
	if _, err := claim(t, long).Socket("host"); err == nil || !strings.Contains(err.Error(), "too long") {
		t.Error(err)
	}
}

func TestFindGivesWhatWasPublished(t *testing.T) {
	dir := t.TempDir()
	want := Node{Name: "host", FQDN: "host.example.ts.net", SOCKS5: "127.0.0.1:1", PID: 7}
	if err := claim(t, dir).Publish(Record{Nodes: map[string]Node{"host": want}}); err != nil {
		t.Fatal(err)
	}
	record, err := Find(dir)
	if err != nil {
		t.Fatal(err)
	}
	if got, err := record.Node("host"); err != nil || got != want {
		t.Error(got, err)
	}
	if got, err := record.Owner("HOST.example.ts.net"); err != nil || got != want {
		t.Error(got, err)
	}
	if _, err := record.Node("other"); err == nil {
		t.Error("found a node that is not there")
	}
	if _, err := record.Owner("other.example.ts.net"); err == nil {
		t.Error("found the owner of an unknown name")
	}
}
