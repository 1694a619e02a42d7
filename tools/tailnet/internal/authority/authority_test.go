// SPDX-License-Identifier: MIT

package authority

import (
	"crypto/tls"
	"crypto/x509"
	"path/filepath"
	"testing"
)

func TestSeededCertificateIsTrustedForItsHostAlone(t *testing.T) {
	a, err := New()
	if err != nil {
		t.Fatal(err)
	}
	state := t.TempDir()
	if err := a.Seed(state, "host.example.ts.net"); err != nil {
		t.Fatal(err)
	}
	pair := filepath.Join(state, "certs", "host.example.ts.net")
	certificate, err := tls.LoadX509KeyPair(pair+".crt", pair+".key")
	if err != nil {
		t.Fatal(err)
	}
	roots := x509.NewCertPool()
	if !roots.AppendCertsFromPEM(a.PEM) {
		t.Fatal("the authority's own certificate cannot be read")
	}
	verify := func(name string) error {
		_, err := certificate.Leaf.Verify(x509.VerifyOptions{Roots: roots, DNSName: name})
		return err
	}
	if err := verify("host.example.ts.net"); err != nil {
		t.Error(err)
	}
	if verify("peer.example.ts.net") == nil {
		t.Error("trusted for another host")
	}
}
