// SPDX-License-Identifier: MIT

// Package reach connects to shares as their visitors do: from another device of
// the tailnet, or from the internet through Funnel.
package reach

import (
	"bufio"
	"context"
	"errors"
	"fmt"
	"io"
	"net"
	"net/http"
	"net/url"
	"strings"
	"syscall"
	"time"

	"golang.org/x/net/proxy"

	"tailnet/internal/node"
	"tailnet/internal/place"
)

// Visitor is the address from which a connection through Funnel claims to
// come (RFC 5737, section 3: for documentation).
const Visitor = "203.0.113.9:4444"

// Dialer opens connections into the tailnet as one of its nodes.
type Dialer struct {
	Record place.Record
	From   place.Node
	Funnel bool // connect as Funnel's relay
}

// Dial connects to HOST:PORT of the tailnet.
func (d Dialer) Dial(ctx context.Context, address string) (net.Conn, error) {
	if !d.Funnel {
		return d.dialNode(ctx, address)
	}
	host, _, err := net.SplitHostPort(address)
	if err != nil {
		return nil, err
	}
	target, err := d.Record.Owner(host)
	if err != nil {
		return nil, err
	}
	return d.dialFunnel(ctx, target, address)
}

func (d Dialer) dialNode(ctx context.Context, address string) (net.Conn, error) {
	through, err := proxy.SOCKS5("tcp", d.From.SOCKS5, nil, proxy.Direct)
	if err != nil {
		return nil, err
	}
	conn, err := through.(proxy.ContextDialer).DialContext(ctx, "tcp", address)
	if errors.Is(err, syscall.ECONNREFUSED) {
		return nil, fmt.Errorf("%s does not run any more: %w", d.From.Name, err)
	}
	return conn, err
}

// dialFunnel asks the target's peer API to accept a connection from outside.
func (d Dialer) dialFunnel(ctx context.Context, target place.Node, address string) (net.Conn, error) {
	status, err := node.ReadStatus(target.CLI)
	if err != nil {
		return nil, err
	}
	if len(status.Self.PeerAPIURL) == 0 {
		return nil, fmt.Errorf("%s has no peer API", target.Name)
	}
	api, err := url.Parse(status.Self.PeerAPIURL[0])
	if err != nil {
		return nil, err
	}
	conn, err := d.dialNode(ctx, api.Host)
	if err != nil {
		return nil, err
	}
	if stop, ok := ctx.Deadline(); ok {
		conn.SetDeadline(stop)
	}
	through, err := askIngress(conn, api.Host, address)
	if err != nil {
		conn.Close()
		return nil, err
	}
	conn.SetDeadline(time.Time{})
	return through, nil
}

// askIngress sends the request with which Funnel's relay forwards a connection.
func askIngress(conn net.Conn, api, address string) (net.Conn, error) {
	fmt.Fprintf(conn, "POST /v0/ingress HTTP/1.1\r\nHost: %s\r\nTailscale-Ingress-Src: %s\r\nTailscale-Ingress-Target: %s\r\n\r\n", api, Visitor, address)
	in := bufio.NewReader(conn)
	response, err := http.ReadResponse(in, nil)
	if err != nil {
		return nil, fmt.Errorf("%s: ingress: %w", address, err)
	}
	if response.StatusCode != http.StatusSwitchingProtocols {
		text, _ := io.ReadAll(response.Body)
		return nil, fmt.Errorf("%s: ingress: %s: %s", address, response.Status, strings.TrimSpace(string(text)))
	}
	return &buffered{conn, in}, nil
}

// buffered is a connection of which some bytes have been read ahead.
type buffered struct {
	net.Conn
	in *bufio.Reader
}

func (b *buffered) Read(p []byte) (int, error) { return b.in.Read(p) }

// CloseWrite closes the writing side, if the connection supports that.
func (b *buffered) CloseWrite() error {
	if half, ok := b.Conn.(interface{ CloseWrite() error }); ok {
		return half.CloseWrite()
	}
	return nil
}
