// SPDX-License-Identifier: MIT

// Package control runs what a tailnet needs besides its nodes, on 127.0.0.1 and
// inside this process: a control server, a DERP relay and a STUN server.
package control

import (
	"fmt"
	"net/http/httptest"
	"sync"

	"tailscale.com/tailcfg"
	"tailscale.com/tstest/integration/testcontrol"
	"tailscale.com/types/dnstype"
	"tailscale.com/types/key"
	"tailscale.com/types/logger"
)

// Domain is the MagicDNS suffix of every tailnet started here.
const Domain = "tail-scale.ts.net"

// Control is a running control server with its relay.
type Control struct {
	URL  string // for "tailscale up --login-server="
	Trap *Trap  // proxy that refuses requests to outside addresses

	server  *testcontrol.Server
	closers []func()

	mu   sync.Mutex
	seen map[key.NodePublic]bool
}

// Start starts everything on free ports of 127.0.0.1. The servers log to logf.
func Start(logf logger.Logf) (*Control, error) {
	c := &Control{seen: map[key.NodePublic]bool{}}
	relays, err := c.startRelay(logf)
	if err != nil {
		c.Close()
		return nil, err
	}
	c.server = &testcontrol.Server{
		Logf:             logf,
		DERPMap:          relays,
		MagicDNSDomain:   Domain,
		AllNodesSameUser: true,
		AllOnline:        true,
		DNSConfig: &tailcfg.DNSConfig{
			Proxied:   true,
			Domains:   []string{Domain},
			Resolvers: []*dnstype.Resolver{}, // No resolver outside the tailnet.
		},
		// Without this the server also grants its own default capabilities.
		DefaultNodeCapabilities: &tailcfg.NodeCapMap{},
		HoldMapRequest:          c.admit,
	}
	hs := httptest.NewUnstartedServer(c.server)
	hs.Config.ErrorLog = logger.StdLogger(logf)
	hs.Start()
	c.server.HTTPTestServer = hs
	c.URL = hs.URL
	c.Trap = startTrap()
	c.closers = append(c.closers, func() { hs.CloseClientConnections(); hs.Close() }, c.Trap.close)
	return c, nil
}

// Close stops the servers. Stop the nodes first.
func (c *Control) Close() {
	for i := len(c.closers) - 1; i >= 0; i-- {
		c.closers[i]()
	}
	c.closers = nil
}

// admit runs before each map request is answered. On its first request, a node
// gets the capabilities that an administrator would enable.
func (c *Control) admit(r *tailcfg.MapRequest) func() {
	c.mu.Lock()
	first := !c.seen[r.NodeKey]
	c.seen[r.NodeKey] = true
	c.mu.Unlock()
	if !first {
		return nil
	}
	c.server.SetNodeCapMap(r.NodeKey, capabilities())
	if node := c.server.Node(r.NodeKey); node != nil {
		// Nodes before 1.80 read their peers' home relay from this field; the server
		// sets only the one that later nodes read.
		node.LegacyDERPString = fmt.Sprintf("%s:%d", tailcfg.DerpMagicIP, region)
		c.server.UpdateNode(node)
	}
	return nil
}

// capabilities are those of a tailnet with HTTPS and Funnel enabled.
func capabilities() tailcfg.NodeCapMap {
	const ports = "?ports=443,8443,10000" // Those that Tailscale allows for Funnel.
	return tailcfg.NodeCapMap{
		tailcfg.CapabilityHTTPS:               nil,
		tailcfg.NodeAttrFunnel:                nil,
		tailcfg.CapabilityFunnelPorts + ports: nil,
		// Keeps nodes from probing public endpoints.
		tailcfg.NodeAttrDisableCaptivePortalDetection: nil,
	}
}
