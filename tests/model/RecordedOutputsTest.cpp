// SPDX-License-Identifier: MIT
#include "EntryExtraction.h"
#include "TailscaleStatusJSON.h"

#include "EntryLines.h"
#include "RecordedCases.h"

#include <boost/json/parse.hpp>
#include <boost/json/value_to.hpp>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace brevane::test {

namespace json = boost::json;

namespace {

using Lines = std::vector<std::string>;

/// Computes the rows of a configuration independently of Brevane's decoder, from the parsed
/// document. The daemon lists the members of a map in key order.
class Walk {
public:
    Walk(const json::object& config, std::string_view dnsName) {
        const json::object funnels = child(config, "AllowFunnel");
        walkWeb(config, funnels, true);
        for (const auto& [port, handler] : child(config, "TCP"))
            if (const json::value* target = handler.as_object().if_contains("TCPForward")) {
                const std::string hostPort = std::string(dnsName).append(":").append(port);
                append(funnels, hostPort, "/", "TCP Forward", target->as_string(), true);
            }
        for (const auto& [session, foreground] : child(config, "Foreground"))
            walkWeb(foreground.as_object(), child(foreground.as_object(), "AllowFunnel"), false);
    }

    Lines lines() const {
        Lines all = served;
        all.insert(all.end(), funnelled.begin(), funnelled.end());
        return all;
    }

private:
    static json::object child(const json::object& object, std::string_view key) {
        return object.contains(key) ? object.at(key).as_object() : json::object();
    }

    void walkWeb(const json::object& config, const json::object& funnels, bool isBackground) {
        for (const auto& [hostPort, server] : child(config, "Web"))
            for (const auto& [path, handler] : child(server.as_object(), "Handlers")) {
                std::string_view kind = "Port Proxy";
                std::string_view detail;
                if (const auto* text = handler.as_object().if_contains("Text"))
                    kind = "Text", detail = text->as_string();
                if (const auto* file = handler.as_object().if_contains("Path"))
                    kind = "File/Directory", detail = file->as_string();
                if (const auto* proxy = handler.as_object().if_contains("Proxy"))
                    kind = "Port Proxy", detail = proxy->as_string();
                append(funnels, hostPort, path, kind, detail, isBackground);
            }
    }

    void append(const json::object& funnels, std::string_view hostPort, std::string_view path,
                std::string_view kind, std::string_view detail, bool isBackground) {
        const bool isFunnel = funnels.contains(hostPort) && funnels.at(hostPort).as_bool();
        (isFunnel ? funnelled : served)
            .push_back(entryLine(isFunnel, hostPort, path, kind, detail, isBackground));
    }

    Lines served;
    Lines funnelled;
};

constexpr std::string_view dnsName = "host.tail-scale.ts.net";

Lines rowsOf(std::string_view document) {
    const auto config = decodeServeConfig(document);
    EXPECT_TRUE(config);
    return config ? entryLines(extractEntries(*config, dnsName)) : Lines{"undecodable"};
}

Lines walkedRowsOf(std::string_view document) {
    const json::value config = json::parse(document);
    return Walk(config.as_object(), dnsName).lines();
}

/// The node's state in each case of a group.
std::vector<TailscaleStatusJSON> statusesOf(std::string_view group) {
    std::vector<TailscaleStatusJSON> statuses;
    for (const RecordedCase& recorded : recordedCases())
        if (recorded.group == group && recorded.isStatusQuery())
            if (auto status = decodeTailscaleStatus(recorded.output)) statuses.push_back(*status);
    return statuses;
}

Lines backendStatesOf(std::string_view group) {
    Lines states;
    for (const auto& status : statusesOf(group))
        states.push_back(status.BackendState);
    return states;
}

TEST(RecordedOutputs, AreThoseOfTwoVersions) {
    EXPECT_EQ(recordedCases().size(), 428U);
}

TEST(RecordedOutputs, OfTheStatusQueryDecode) {
    int decoded = 0;
    for (const RecordedCase& recorded : recordedCases()) {
        if (!recorded.isStatusQuery() || recorded.exitStatus != 0) continue;
        SCOPED_TRACE(recorded.name);
        const auto status = decodeTailscaleStatus(recorded.output);
        ASSERT_TRUE(status && status->selfNode);
        ++decoded;

        const json::value document = json::parse(recorded.output);
        const json::value& node = document.at("Self");
        EXPECT_EQ(status->BackendState, document.at("BackendState").as_string());
        EXPECT_EQ(status->selfNode->DNSName, json::value_to<std::string>(node.at("DNSName")));
        EXPECT_EQ(status->selfNode->HostName, json::value_to<std::string>(node.at("HostName")));
        EXPECT_EQ(status->selfNode->Online, node.at("Online").as_bool());
        ASSERT_EQ(status->selfNode->TailscaleIPs.has_value(), node.at("TailscaleIPs").is_array());
        if (status->selfNode->TailscaleIPs) {
            EXPECT_EQ(*status->selfNode->TailscaleIPs,
                      json::value_to<std::vector<std::string>>(node.at("TailscaleIPs")));
        }
    }
    EXPECT_EQ(decoded, 12);
}

TEST(RecordedOutputs, OfTheServeStatusQueryGiveTheRowsOfThatConfiguration) {
    int decoded = 0;
    for (const RecordedCase& recorded : recordedCases()) {
        if (!recorded.isServeStatusQuery() || recorded.exitStatus != 0) continue;
        EXPECT_EQ(rowsOf(recorded.output), walkedRowsOf(recorded.output)) << recorded.name;
        ++decoded;
    }
    EXPECT_EQ(decoded, 16);
}

TEST(RecordedOutputs, EveryConfigurationGivesItsRows) {
    std::set<std::string> kinds;
    for (const RecordedCase& recorded : recordedCases()) {
        if (recorded.group == "tailscaled not running") {
            EXPECT_FALSE(decodeServeConfig(recorded.serveStatusAfter)) << recorded.name;
            continue;
        }
        const Lines rows = rowsOf(recorded.serveStatusAfter);
        EXPECT_EQ(rows, walkedRowsOf(recorded.serveStatusAfter)) << recorded.name;
        for (const std::string& row : rows) {
            kinds.insert(row.substr(0, row.find(' ')));
            kinds.insert(row.substr(row.rfind(' ') + 1));
            for (std::string_view kind : {"Port Proxy", "File/Directory", "Text", "TCP Forward"})
                if (row.contains(kind)) kinds.emplace(kind);
        }
    }
    // The recording contains every kind of row.
    EXPECT_EQ(kinds,
              (std::set<std::string>{"serve", "funnel", "background", "foreground", "Port Proxy",
                                     "File/Directory", "Text", "TCP Forward"}));
}

TEST(RecordedOutputs, OfEveryOtherCommandDecodeToNothing) {
    int others = 0;
    for (const RecordedCase& recorded : recordedCases()) {
        const bool isAnswered = recorded.exitStatus == 0;
        if (isAnswered && (recorded.isStatusQuery() || recorded.isServeStatusQuery())) continue;
        ++others;
        EXPECT_FALSE(decodeTailscaleStatus(recorded.output)) << recorded.name;
        if (recorded.command != "version --json") { // an object, but with nothing to decode
            EXPECT_FALSE(decodeServeConfig(recorded.output)) << recorded.name;
        }
    }
    EXPECT_EQ(others, 428 - 12 - 16);
}

TEST(RecordedOutputs, OfOneQueryAreNoAnswerToTheOther) {
    for (const RecordedCase& recorded : recordedCases()) {
        if (recorded.isServeStatusQuery()) {
            EXPECT_FALSE(decodeTailscaleStatus(recorded.output)) << recorded.name;
        }
        if (recorded.isStatusQuery() && recorded.exitStatus == 0) {
            EXPECT_EQ(rowsOf(recorded.output), Lines{}) << recorded.name;
        }
    }
}

TEST(RecordedOutputs, AreUndecodableWithAWarningBesideThem) {
    for (const RecordedCase& recorded : recordedCases()) {
        if (recorded.errors.empty()) continue;
        EXPECT_FALSE(decodeServeConfig("{}\n" + recorded.errors)) << recorded.name;
        EXPECT_FALSE(decodeTailscaleStatus("{\"BackendState\":\"Running\"}\n" + recorded.errors))
            << recorded.name;
    }
}

TEST(RecordedOutputs, OfARunningNodeNameIt) {
    const auto statuses = statusesOf("running, nothing configured yet");
    ASSERT_EQ(statuses.size(), 4U);
    for (const auto& status : statuses) {
        EXPECT_EQ(status.BackendState, "Running");
        EXPECT_EQ(status.selfNode->DNSName, std::string(dnsName) + ".");
        EXPECT_EQ(status.selfNode->TailscaleIPs->front(), "100.64.0.1");
    }
}

TEST(RecordedOutputs, OfANodeThatNeverLoggedInHaveNoName) {
    const auto statuses = statusesOf("never logged in");
    ASSERT_EQ(statuses.size(), 2U);
    for (const auto& status : statuses) {
        EXPECT_EQ(status.BackendState, "NeedsLogin");
        EXPECT_EQ(status.selfNode->DNSName, "");
        EXPECT_FALSE(status.selfNode->TailscaleIPs);
    }
}

TEST(RecordedOutputs, OfALoggedOutNodeSayThatItNeedsALogin) {
    EXPECT_EQ(backendStatesOf("logged out"), (Lines{"NeedsLogin", "NeedsLogin"}));
}

TEST(RecordedOutputs, OfAStoppedNodeSaySo) {
    EXPECT_EQ(backendStatesOf("tailscale down"), (Lines{"Stopped", "Stopped"}));
}

TEST(RecordedOutputs, OfAUserWhoIsNoOperatorDecodeAllTheSame) {
    EXPECT_EQ(backendStatesOf("not root, not the operator (uid 65534)"),
              (Lines{"Running", "Running"}));
}

TEST(RecordedOutputs, WithoutADaemonDecodeToNothing) {
    int queries = 0;
    for (const RecordedCase& recorded : recordedCases()) {
        if (recorded.group != "tailscaled not running") continue;
        queries += recorded.isStatusQuery() || recorded.isServeStatusQuery() ? 1 : 0;
        EXPECT_FALSE(decodeTailscaleStatus(recorded.output)) << recorded.name;
    }
    EXPECT_EQ(queries, 4);
}

TEST(MissingCommand, LeavesTheShellsOwnMessageWhichDecodesToNothing) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> shell(
        popen("/bin/zsh -l -c '/nonexistent/tailscale status --json' 2>&1 </dev/null", "r"),
        pclose);
    ASSERT_TRUE(shell);
    std::array<char, 4096> buffer;
    const std::size_t size = std::fread(buffer.data(), 1, buffer.size(), shell.get());
    const std::string_view output(buffer.data(), size);
    EXPECT_TRUE(output.contains("/nonexistent/tailscale")) << output;
    EXPECT_FALSE(decodeTailscaleStatus(output));
    EXPECT_FALSE(decodeServeConfig(output));
}

} // namespace
} // namespace brevane::test
