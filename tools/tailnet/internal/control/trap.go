// SPDX-License-Identifier: MIT

package control

import (
	"net/http"
	"net/http/httptest"
	"slices"
	"strings"
	"sync"
)

// Trap is an HTTP proxy that refuses and records every request. Nodes use it as
// their proxy, so that requests to outside addresses do not leave the machine.
type Trap struct {
	URL string

	close  func()
	mu     sync.Mutex
	caught []string
}

func startTrap() *Trap {
	t := &Trap{}
	hs := httptest.NewServer(t)
	t.URL, t.close = hs.URL, hs.Close
	return t
}

// ServeHTTP refuses a request. It does not record one for the trap itself, whose
// URL replaces outside addresses that can be configured.
func (t *Trap) ServeHTTP(w http.ResponseWriter, r *http.Request) {
	if !strings.HasPrefix(r.RequestURI, "/") {
		t.mu.Lock()
		t.caught = append(t.caught, r.Method+" "+r.RequestURI)
		t.mu.Unlock()
	}
	http.Error(w, "no traffic leaves this machine", http.StatusForbidden)
}

// Caught lists the requests refused so far.
func (t *Trap) Caught() []string {
	t.mu.Lock()
	defer t.mu.Unlock()
	return slices.Clone(t.caught)
}
