// SPDX-License-Identifier: MIT

package control

import (
	"net/http"
	"net/url"
	"slices"
	"testing"
)

func TestTrapRefusesAndReports(t *testing.T) {
	trap := startTrap()
	defer trap.close()
	proxy, _ := url.Parse(trap.URL)
	client := http.Client{Transport: &http.Transport{Proxy: http.ProxyURL(proxy)}}
	response, err := client.Get("http://outside.example/x")
	if err != nil {
		t.Fatal(err)
	}
	response.Body.Close()
	if response.StatusCode != http.StatusForbidden {
		t.Error(response.Status)
	}
	if _, err := client.Get("https://outside.example/"); err == nil {
		t.Error("a tunnel was opened")
	}
	if response, err := http.Get(trap.URL + "/acme-directory"); err != nil || response.StatusCode != http.StatusForbidden {
		t.Error(response, err)
	}
	want := []string{"GET http://outside.example/x", "CONNECT outside.example:443"}
	if got := trap.Caught(); !slices.Equal(got, want) {
		t.Errorf("caught %q, want %q", got, want)
	}
}
