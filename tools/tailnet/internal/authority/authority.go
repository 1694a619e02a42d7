// SPDX-License-Identifier: MIT

// Package authority signs the HTTPS certificates of a loopback tailnet.
package authority

import (
	"crypto/ecdsa"
	"crypto/elliptic"
	"crypto/rand"
	"crypto/x509"
	"crypto/x509/pkix"
	"encoding/pem"
	"math/big"
	"os"
	"path/filepath"
	"time"
)

// Authority is the certificate authority of one tailnet.
type Authority struct {
	PEM []byte // its certificate, for clients to trust

	certificate *x509.Certificate
	key         *ecdsa.PrivateKey
}

// New creates an authority with a new key.
func New() (*Authority, error) {
	key, err := ecdsa.GenerateKey(elliptic.P256(), rand.Reader)
	if err != nil {
		return nil, err
	}
	template := &x509.Certificate{
		SerialNumber: big.NewInt(1), Subject: pkix.Name{CommonName: "Loopback tailnet"},
		NotBefore: time.Now().Add(-time.Hour), NotAfter: time.Now().AddDate(0, 3, 0),
		IsCA: true, BasicConstraintsValid: true, KeyUsage: x509.KeyUsageCertSign,
	}
	der, err := x509.CreateCertificate(rand.Reader, template, template, &key.PublicKey, key)
	if err != nil {
		return nil, err
	}
	certificate, err := x509.ParseCertificate(der)
	if err != nil {
		return nil, err
	}
	return &Authority{encode("CERTIFICATE", der), certificate, key}, nil
}

// Seed writes a certificate for host where tailscaled stores those it obtained:
// STATE/certs/HOST.crt and HOST.key. The daemon uses it without renewal for the
// first two thirds of its lifetime.
func (a *Authority) Seed(state, host string) error {
	key, err := ecdsa.GenerateKey(elliptic.P256(), rand.Reader)
	if err != nil {
		return err
	}
	template := &x509.Certificate{
		SerialNumber: big.NewInt(time.Now().UnixNano()), Subject: pkix.Name{CommonName: host},
		DNSNames:  []string{host},
		NotBefore: time.Now().Add(-time.Hour), NotAfter: time.Now().AddDate(0, 2, 0),
		KeyUsage: x509.KeyUsageDigitalSignature, ExtKeyUsage: []x509.ExtKeyUsage{x509.ExtKeyUsageServerAuth},
	}
	der, err := x509.CreateCertificate(rand.Reader, template, a.certificate, &key.PublicKey, a.key)
	if err != nil {
		return err
	}
	keyDER, err := x509.MarshalECPrivateKey(key)
	if err != nil {
		return err
	}
	dir := filepath.Join(state, "certs")
	if err := os.MkdirAll(dir, 0o700); err != nil {
		return err
	}
	if err := os.WriteFile(filepath.Join(dir, host+".crt"), encode("CERTIFICATE", der), 0o600); err != nil {
		return err
	}
	return os.WriteFile(filepath.Join(dir, host+".key"), encode("EC PRIVATE KEY", keyDER), 0o600)
}

func encode(kind string, der []byte) []byte {
	return pem.EncodeToMemory(&pem.Block{Type: kind, Bytes: der})
}
