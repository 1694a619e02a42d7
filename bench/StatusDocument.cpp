// SPDX-License-Identifier: MIT
#include "StatusDocument.h"

#include <array>
#include <cstdint>
#include <random>
#include <sstream>
#include <string_view>

namespace brevane::bench {
namespace {

constexpr std::array<std::string_view, 5> names{"laptop", "build-runner", "db", "phone",
                                                "k8s-operator-ingress"};
constexpr std::array<std::string_view, 5> systems{"linux", "macOS", "windows", "iOS", "android"};
constexpr std::array<std::string_view, 4> relays{"fra", "nyc", "sin", ""};

/// Generates nodes that differ from each other but are the same in every run.
class Nodes {
public:
    std::string key() { return hex("nodekey:", 64); }

    /// One node's record, from "{" to "}", with its lines indented by `indent`.
    std::string record(std::string_view indent) {
        const std::string name = std::string(pick(names)).append("-").append(number(1, 9999));
        const std::string ip = "100.64." + number(0, 255) + "." + number(1, 254);
        const std::string ip6 = hex(hex("fd7a:115c:a1e0::", 4) + ":", 4);
        const bool isOnline = random() % 3 != 0;
        const std::string_view truth = isOnline ? "true" : "false";
        const std::string address = isOnline ? "192.0.2." + number(1, 254) + ":41641" : "";

        std::ostringstream out;
        std::string_view separator = "{\n";
        const auto add = [&](std::string_view field, std::string_view value) {
            out << separator << indent << "  \"" << field << "\": " << value;
            separator = ",\n";
        };
        const auto addText = [&](std::string_view field, std::string_view text) {
            add(field, "\"");
            out << text << '"';
        };
        const auto addList = [&](std::string_view field, std::string_view one,
                                 std::string_view two) {
            add(field, "[\n");
            out << indent << "    \"" << one << "\",\n"
                << indent << "    \"" << two << "\"\n"
                << indent << "  ]";
        };
        addText("ID", hex("n", 10) + "CNTRL");
        addText("PublicKey", key());
        addText("HostName", name);
        addText("DNSName", name + ".tail-scale.ts.net.");
        addText("OS", pick(systems));
        add("UserID", number(1'000'000'000, 2'000'000'000));
        addList("TailscaleIPs", ip, ip6);
        addList("AllowedIPs", ip + "/32", ip6 + "/128");
        if (random() % 8 == 0) addList("Tags", "tag:server", "tag:prod");
        add("Addrs", "null");
        addText("CurAddr", address);
        addText("Relay", pick(relays));
        addText("PeerRelay", "");
        add("RxBytes", number(0, 2'000'000'000));
        add("TxBytes", number(0, 2'000'000'000));
        addText("Created", date());
        addText("LastWrite", date());
        addText("LastSeen", isOnline ? "0001-01-01T00:00:00Z" : date());
        addText("LastHandshake", date());
        add("Online", truth);
        add("ExitNode", "false");
        add("ExitNodeOption", "false");
        add("Active", truth);
        addList("PeerAPIURL", "http://" + ip + ":58436", "http://[" + ip6 + "]:58436");
        add("TaildropTarget", number(0, 8));
        addText("NoFileSharingReason", "");
        add("InNetworkMap", "true");
        add("InMagicSock", "true");
        add("InEngine", truth);
        addText("KeyExpiry", date());
        out << '\n' << indent << '}';
        return out.str();
    }

private:
    template <std::size_t Size>
    std::string_view pick(const std::array<std::string_view, Size>& choices) {
        return choices[random() % Size];
    }

    std::string number(std::uint32_t least, std::uint32_t most) {
        return std::to_string(least + random() % (most - least + 1));
    }

    std::string hex(std::string text, int digits) {
        for (int i = 0; i < digits; ++i)
            text += "0123456789abcdef"[random() % 16];
        return text;
    }

    std::string date() {
        return "2025-0" + number(1, 9) + "-" + number(10, 28) + "T" + number(10, 23) + ":" +
               number(10, 59) + ":" + number(10, 59) + "." + number(100'000'000, 999'999'999) + "Z";
    }

    std::mt19937 random; // with its default seed
};

} // namespace

std::string statusDocument(int peers) {
    Nodes nodes;
    std::ostringstream out;
    out << "{\n  \"Version\": \"1.102.5\",\n  \"TUN\": true,\n  \"BackendState\": \"Running\",\n"
        << "  \"HaveNodeKey\": true,\n  \"AuthURL\": \"\",\n  \"Self\": " << nodes.record("  ")
        << ",\n  \"Health\": [],\n  \"Peer\": {";
    for (int i = 0; i < peers; ++i)
        out << (i == 0 ? "\n" : ",\n") << "    \"" << nodes.key() << "\": " << nodes.record("    ");
    out << "\n  },\n  \"User\": null,\n  \"ClientVersion\": null\n}\n";
    return out.str();
}

} // namespace brevane::bench
