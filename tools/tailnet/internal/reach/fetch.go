// SPDX-License-Identifier: MIT

package reach

import (
	"context"
	"crypto/sha256"
	"crypto/tls"
	"crypto/x509"
	"encoding/hex"
	"fmt"
	"io"
	"net"
	"net/http"
	"os"
	"time"
	"unicode/utf8"
)

// textLimit is the size up to which an answer includes the body as text.
const textLimit = 64 << 10

// Answer is a share's response.
type Answer struct {
	URL     string      `json:"url"`
	Status  int         `json:"status"`
	Proto   string      `json:"proto"`
	Headers http.Header `json:"headers"`
	Bytes   int64       `json:"bytes"`
	SHA256  string      `json:"sha256"`
	Body    *string     `json:"body,omitempty"` // absent if long or not UTF-8
}

// Fetch makes one request through the dialer and follows no redirect. It also
// writes the body to the file output, unless that is empty.
func Fetch(d Dialer, method, url, output string) (*Answer, error) {
	roots, err := os.ReadFile(d.Record.CA)
	if err != nil {
		return nil, err
	}
	trusted := x509.NewCertPool()
	if !trusted.AppendCertsFromPEM(roots) {
		return nil, fmt.Errorf("%s holds no certificate", d.Record.CA)
	}
	client := http.Client{
		Timeout: time.Minute,
		Transport: &http.Transport{
			DialContext: func(ctx context.Context, _, address string) (net.Conn, error) {
				return d.Dial(ctx, address)
			},
			TLSClientConfig:    &tls.Config{RootCAs: trusted},
			ForceAttemptHTTP2:  true, // As browsers do.
			DisableCompression: true,
		},
		CheckRedirect: func(*http.Request, []*http.Request) error { return http.ErrUseLastResponse },
	}
	defer client.CloseIdleConnections()
	request, err := http.NewRequest(method, url, nil)
	if err != nil {
		return nil, err
	}
	response, err := client.Do(request)
	if err != nil {
		return nil, err
	}
	defer response.Body.Close()
	answer := &Answer{URL: url, Status: response.StatusCode, Proto: response.Proto, Headers: response.Header}
	return answer, answer.read(response.Body, output)
}

func (a *Answer) read(body io.Reader, output string) error {
	hash := sha256.New()
	start := &prefix{}
	to := []io.Writer{hash, start}
	if output != "" {
		file, err := os.Create(output)
		if err != nil {
			return err
		}
		defer file.Close()
		to = append(to, file)
	}
	n, err := io.Copy(io.MultiWriter(to...), body)
	if err != nil {
		return fmt.Errorf("after %d bytes: %w", n, err)
	}
	a.Bytes, a.SHA256 = n, hex.EncodeToString(hash.Sum(nil))
	if n <= textLimit && utf8.Valid(start.bytes) {
		text := string(start.bytes)
		a.Body = &text
	}
	return nil
}

// prefix keeps the first textLimit bytes written to it.
type prefix struct{ bytes []byte }

func (p *prefix) Write(b []byte) (int, error) {
	p.bytes = append(p.bytes, b[:min(len(b), textLimit-len(p.bytes))]...)
	return len(b), nil
}
