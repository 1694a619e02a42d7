// SPDX-License-Identifier: MIT

package reach

import (
	"bufio"
	"bytes"
	"io"
	"net"
	"net/http"
	"os"
	"path/filepath"
	"strings"
	"testing"
)

// peerAPI answers one ingress request with the given text.
func peerAPI(t *testing.T, answer string) (client net.Conn, asked <-chan *http.Request) {
	client, server := net.Pipe()
	t.Cleanup(func() { client.Close(); server.Close() })
	requests := make(chan *http.Request, 1)
	go func() {
		if request, err := http.ReadRequest(bufio.NewReader(server)); err == nil {
			requests <- request
			io.WriteString(server, answer)
		}
		server.Close()
	}()
	return client, requests
}

func TestIngressHandsTheConnectionOnWithWhatWasReadAhead(t *testing.T) {
	client, asked := peerAPI(t, "HTTP/1.1 101 Switching Protocols\r\n\r\nfirst bytes")
	conn, err := askIngress(client, "100.64.0.1:1", "host.example.ts.net:443")
	if err != nil {
		t.Fatal(err)
	}
	request := <-asked
	if request.Method != "POST" || request.URL.Path != "/v0/ingress" ||
		request.Header.Get("Tailscale-Ingress-Target") != "host.example.ts.net:443" ||
		request.Header.Get("Tailscale-Ingress-Src") != Visitor {
		t.Errorf("%+v", request)
	}
	if text, err := io.ReadAll(conn); err != nil || string(text) != "first bytes" {
		t.Errorf("%q %v", text, err)
	}
}

func TestIngressReportsARefusal(t *testing.T) {
	client, _ := peerAPI(t, "HTTP/1.1 403 Forbidden\r\nContent-Length: 6\r\n\r\ndenied")
	_, err := askIngress(client, "100.64.0.1:1", "host.example.ts.net:8443")
	if err == nil || !strings.Contains(err.Error(), "403 Forbidden: denied") {
		t.Error(err)
	}
}

func TestIngressReportsAClosedConnection(t *testing.T) {
	client, _ := peerAPI(t, "")
	if _, err := askIngress(client, "100.64.0.1:1", "host.example.ts.net:443"); err == nil {
		t.Error("took a closed connection for an answer")
	}
}

func read(t *testing.T, body []byte) (*Answer, string) {
	t.Helper()
	output := filepath.Join(t.TempDir(), "body")
	answer := &Answer{}
	if err := answer.read(bytes.NewReader(body), output); err != nil {
		t.Fatal(err)
	}
	written, err := os.ReadFile(output)
	if err != nil {
		t.Fatal(err)
	}
	return answer, string(written)
}

func TestAnswerHasTextOfUpToTheLimit(t *testing.T) {
	for size, shown := range map[int]bool{0: true, textLimit: true, textLimit + 1: false} {
		body := bytes.Repeat([]byte("x"), size)
		answer, written := read(t, body)
		if written != string(body) || answer.Bytes != int64(size) || (answer.Body != nil) != shown {
			t.Errorf("%d bytes: %d written, %d counted, body %v", size, len(written), answer.Bytes, answer.Body != nil)
		}
	}
}

func TestAnswerHasNoTextOfBytesThatAreNot(t *testing.T) {
	answer, _ := read(t, []byte{0xff})
	if answer.Body != nil || answer.SHA256 != "a8100ae6aa1940d0b663bb31cd466142ebbdbd5187131b92d93818987832eb89" {
		t.Errorf("%+v", answer)
	}
}
