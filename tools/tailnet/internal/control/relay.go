// SPDX-License-Identifier: MIT

package control

import (
	"crypto/tls"
	"net"
	"net/http"
	"net/http/httptest"
	"net/netip"

	"tailscale.com/derp/derpserver"
	"tailscale.com/net/stun"
	"tailscale.com/tailcfg"
	"tailscale.com/types/key"
	"tailscale.com/types/logger"
)

const (
	loopback = "127.0.0.1"
	region   = 1 // The relay's region, and every node's home.
)

// startRelay starts a DERP relay and a STUN server, and returns the map with
// them as the tailnet's only region.
func (c *Control) startRelay(logf logger.Logf) (*tailcfg.DERPMap, error) {
	udp, err := net.ListenUDP("udp4", &net.UDPAddr{IP: net.ParseIP(loopback)})
	if err != nil {
		return nil, err
	}
	go serveSTUN(udp)

	derp := derpserver.New(key.NewNode(), logf)
	hs := httptest.NewUnstartedServer(derpserver.Handler(derp))
	hs.Config.ErrorLog = logger.StdLogger(logf)
	// The relay hijacks connections, which HTTP/2 does not support.
	hs.Config.TLSNextProto = map[string]func(*http.Server, *tls.Conn, http.Handler){}
	hs.StartTLS()
	c.closers = append(c.closers, func() {
		hs.CloseClientConnections()
		hs.Close()
		derp.Close()
		udp.Close()
	})
	return &tailcfg.DERPMap{
		OmitDefaultRegions: true,
		Regions: map[int]*tailcfg.DERPRegion{region: {
			RegionID: region, RegionCode: "loopback", RegionName: "loopback",
			Nodes: []*tailcfg.DERPNode{{
				Name: "1", RegionID: region, HostName: loopback, IPv4: loopback, IPv6: "none",
				STUNPort: udp.LocalAddr().(*net.UDPAddr).Port, STUNTestIP: loopback,
				DERPPort:         hs.Listener.Addr().(*net.TCPAddr).Port,
				InsecureForTests: true, // Its certificate is httptest's.
			}},
		}},
	}, nil
}

func serveSTUN(udp *net.UDPConn) {
	buf := make([]byte, 64<<10)
	for {
		n, from, err := udp.ReadFromUDPAddrPort(buf)
		if err != nil {
			return
		}
		if tx, err := stun.ParseBindingRequest(buf[:n]); err == nil {
			from = netip.AddrPortFrom(from.Addr().Unmap(), from.Port())
			udp.WriteToUDPAddrPort(stun.Response(tx, from), from)
		}
	}
}
