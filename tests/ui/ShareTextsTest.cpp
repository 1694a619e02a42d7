// SPDX-License-Identifier: MIT
#include "ShareTexts.h"

#include <gtest/gtest.h>

namespace brevane::test {
namespace {

using HandlerType = ServeEntry::HandlerType;

ServeEntry entry(const std::string& hostPort, const std::string& urlPath = "/",
                 HandlerType type = HandlerType::proxy, const std::string& detail = "",
                 bool isFunnel = false) {
    return {.id = makeEntryId(),
            .isFunnel = isFunnel,
            .hostPort = hostPort,
            .urlPath = urlPath,
            .handlerType = type,
            .handlerDetail = detail,
            .isBackground = true};
}

const ManagedServers::InfoMap servers{{49152, {.path = "/srv/site", .isDirectory = true}},
                                      {49153, {.path = "/tmp/report.pdf", .isDirectory = false}}};

TEST(DisplayURL, TheDefaultPortAndTheRootPathDoNotShow) {
    EXPECT_EQ(displayURL(entry("h.ts.net:443")), "https://h.ts.net");
}

TEST(DisplayURL, AnyOtherPortShows) {
    EXPECT_EQ(displayURL(entry("h.ts.net:8443")), "https://h.ts.net:8443");
}

TEST(DisplayURL, APortThatEndsInTheDigitsOfTheDefaultOneShows) {
    EXPECT_EQ(displayURL(entry("h.ts.net:10443")), "https://h.ts.net:10443");
}

TEST(DisplayURL, AnotherPathIsAppendedAsItStands) {
    EXPECT_EQ(displayURL(entry("h.ts.net:443", "/docs/")), "https://h.ts.net/docs/");
    EXPECT_EQ(displayURL(entry("h.ts.net:8443", "//")), "https://h.ts.net:8443//");
}

TEST(ManagedInfo, AProxyToOneOfOurServersIsWhatThatServerServes) {
    EXPECT_EQ(
        managedInfo(entry("h:443", "/", HandlerType::proxy, "http://127.0.0.1:49152"), servers),
        servers.at(49152));
}

TEST(ManagedInfo, NoneForAnotherPort) {
    EXPECT_FALSE(
        managedInfo(entry("h:443", "/", HandlerType::proxy, "http://127.0.0.1:3000"), servers));
}

TEST(ManagedInfo, NoneForATargetThatIsNoUrl) {
    EXPECT_FALSE(managedInfo(entry("h:443", "/", HandlerType::proxy, "not a url"), servers));
    EXPECT_FALSE(managedInfo(entry("h:443", "/", HandlerType::proxy, ""), servers));
}

TEST(ManagedInfo, NoneForEveryOtherKind) {
    for (const auto type : {HandlerType::filePath, HandlerType::text, HandlerType::tcp})
        EXPECT_FALSE(managedInfo(entry("h:443", "/", type, "http://127.0.0.1:49152"), servers));
}

TEST(ShareDetail, AManagedFolderShowsItsPathWithAFolder) {
    const auto share = entry("h:443", "/", HandlerType::proxy, "http://127.0.0.1:49152");
    const auto detail = shareDetail(share, managedInfo(share, servers));
    EXPECT_EQ(detail.symbol, "folder");
    EXPECT_EQ(detail.text, "/srv/site");
}

TEST(ShareDetail, AManagedFileShowsItsPathWithADocument) {
    const auto share = entry("h:443", "/", HandlerType::proxy, "http://127.0.0.1:49153");
    const auto detail = shareDetail(share, managedInfo(share, servers));
    EXPECT_EQ(detail.symbol, "doc");
    EXPECT_EQ(detail.text, "/tmp/report.pdf");
}

TEST(ShareDetail, ATcpForwardShowsArrowsAndItsTarget) {
    const auto detail = shareDetail(entry("h:22", "/", HandlerType::tcp, "localhost:22"), {});
    EXPECT_EQ(detail.symbol, "arrow.left.arrow.right");
    EXPECT_EQ(detail.text, "localhost:22");
}

TEST(ShareDetail, EveryOtherKindHasItsOwnSymbol) {
    EXPECT_EQ(shareDetail(entry("h:443", "/", HandlerType::proxy, "http://x"), {}).symbol,
              "network");
    EXPECT_EQ(shareDetail(entry("h:443", "/", HandlerType::filePath, "/x"), {}).symbol, "folder");
    EXPECT_EQ(shareDetail(entry("h:443", "/", HandlerType::text, "x"), {}).symbol, "text.quote");
}

TEST(SpokenShare, ReadsAsOneThing) {
    const auto share = entry("h.ts.net:443", "/", HandlerType::proxy, "http://127.0.0.1:49152");
    EXPECT_EQ(spokenShare(share, managedInfo(share, servers)),
              "Serve, https://h.ts.net, folder /srv/site");
    EXPECT_EQ(
        spokenShare(entry("h.ts.net:8443", "/a", HandlerType::proxy, "http://localhost:3000", true),
                    {}),
        "Funnel, https://h.ts.net:8443/a, proxy http://localhost:3000");
    EXPECT_EQ(spokenShare(entry("h.ts.net:443"), {}), "Serve, https://h.ts.net, proxy");
}

TEST(StopQuestion, NamesThePortAndWhatStopsWithIt) {
    EXPECT_EQ(stopTitle(entry("h.ts.net:8443")), "Stop share on port 8443");
    EXPECT_EQ(stopMessage(entry("h.ts.net:8443")),
              "This will stop all handlers on port 8443. All paths served on this port will become "
              "unavailable.");
}

} // namespace
} // namespace brevane::test
