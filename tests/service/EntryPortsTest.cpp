// SPDX-License-Identifier: MIT
#include "EntryPorts.h"

#include "ServiceTest.h"

namespace brevane::test {
namespace {

std::string stopPortOf(const std::string& hostPort) {
    return stopPort(proxyEntry(hostPort, ""));
}

TEST(StopPort, IsWhatFollowsTheLastColon) {
    EXPECT_EQ(stopPortOf("h.tail.ts.net:8443"), "8443");
    EXPECT_EQ(stopPortOf("[fd7a::1]:10000"), "10000");
    EXPECT_EQ(stopPortOf(":22"), "22");
}

TEST(StopPort, TakesColonsAtTheEndForNothing) {
    EXPECT_EQ(stopPortOf("h:443:"), "443");
    EXPECT_EQ(stopPortOf("h:8443::"), "8443");
}

TEST(StopPort, IsTheWholeTextWhereThereIsNoColon) {
    EXPECT_EQ(stopPortOf("host"), "host");
}

TEST(StopPort, Is443WhereThereIsNothingToSplit) {
    EXPECT_EQ(stopPortOf(""), "443");
    EXPECT_EQ(stopPortOf(":"), "443");
}

TEST(ProxiedPort, IsTheExplicitPortOfAProxyTarget) {
    EXPECT_EQ(proxiedPort(proxyEntry("h:443", "http://127.0.0.1:49231")), 49231);
    EXPECT_EQ(proxiedPort(proxyEntry("h:443", "http://localhost/")), std::nullopt);
    EXPECT_EQ(proxiedPort(proxyEntry("h:443", "")), std::nullopt);
}

TEST(ProxiedPort, IsNoneForEveryOtherKindOfEntry) {
    auto entry = proxyEntry("h:443", "http://127.0.0.1:49231");
    for (const auto type : {ServeEntry::HandlerType::filePath, ServeEntry::HandlerType::text,
                            ServeEntry::HandlerType::tcp}) {
        entry.handlerType = type;
        EXPECT_EQ(proxiedPort(entry), std::nullopt);
    }
}

} // namespace
} // namespace brevane::test
