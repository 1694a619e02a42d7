// SPDX-License-Identifier: MIT
#include "EntryExtraction.h"

#include "EntryLines.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace brevane::test {
namespace {

using Names = std::vector<std::string>;

// Few names, so that the maps often refer to each other.
const Names ports{"22", "443", "8443"};
const Names hostPorts{"n:22", "n:443", "n:8443", ":22"};
const Names mountPaths{"/", "/a", "/a/"};

/// Absent one time in five.
template <class Make>
auto maybe(const Make& make) -> std::optional<decltype(make())> {
    if (*rc::gen::inRange(0, 5) == 0) return std::nullopt;
    return make();
}

template <class Make>
auto mapOf(const Names& keys, const Make& make) {
    JsonMap<decltype(make())> map;
    for (const std::string& key : keys)
        if (*rc::gen::arbitrary<bool>()) map.emplace(key, make());
    return map;
}

bool anyBool() {
    return *rc::gen::arbitrary<bool>();
}
std::string anyText() {
    return *rc::gen::element<std::string>("", "x", "http://127.0.0.1:1");
}

HTTPHandlerJSON anyHandler() {
    return {maybe(anyText), maybe(anyText), maybe(anyText)};
}
TCPPortHandlerJSON anyPortHandler() {
    return {maybe(anyBool), maybe(anyText)};
}
WebServerConfigJSON anyServer() {
    return {maybe([] { return mapOf(mountPaths, anyHandler); })};
}

auto anyTCP() {
    return mapOf(ports, anyPortHandler);
}
auto anyWeb() {
    return mapOf(hostPorts, anyServer);
}
auto anyFunnels() {
    return mapOf(hostPorts, anyBool);
}

ServeConfigFgJSON anyForeground() {
    return {maybe(anyTCP), maybe(anyWeb), maybe(anyFunnels)};
}
ServeConfigJSON anyConfig() {
    const auto sessions = [] { return mapOf({"s1", "s2"}, anyForeground); };
    return {maybe(anyTCP), maybe(anyWeb), maybe(anyFunnels), maybe(sessions)};
}

std::size_t handlersIn(const std::optional<JsonMap<WebServerConfigJSON>>& web) {
    std::size_t count = 0;
    if (web)
        for (const auto& [hostPort, server] : *web)
            if (server.Handlers) count += server.Handlers->size();
    return count;
}

/// Ranks background web handlers, then TCP forwards, then foreground web handlers.
int rankOf(const ServeEntry& entry) {
    if (!entry.isBackground) return 2;
    return entry.handlerType == ServeEntry::HandlerType::tcp ? 1 : 0;
}

RC_GTEST_PROP(ExtractEntriesOfAnyConfig, ThereIsOneRowForEachHandlerAndTcpForward, ()) {
    const ServeConfigJSON config = anyConfig();
    std::size_t expected = handlersIn(config.Web);
    if (config.TCP)
        for (const auto& [port, handler] : *config.TCP)
            expected += handler.TCPForward ? 1U : 0U;
    if (config.Foreground)
        for (const auto& [session, foreground] : *config.Foreground)
            expected += handlersIn(foreground.Web);
    RC_ASSERT(extractEntries(config, "n").size() == expected);
}

RC_GTEST_PROP(ExtractEntriesOfAnyConfig, FunnelledRowsComeLastAndBothGroupsKeepTheirOrder, ()) {
    const auto entries = extractEntries(anyConfig(), "n");
    RC_ASSERT(std::is_sorted(entries.begin(), entries.end(), [](const auto& a, const auto& b) {
        return std::pair(a.isFunnel, rankOf(a)) < std::pair(b.isFunnel, rankOf(b));
    }));
    // Within a group and rank, rows are in the order of the maps, except for sessions, which rows
    // do not show.
    RC_ASSERT(std::is_sorted(entries.begin(), entries.end(), [](const auto& a, const auto& b) {
        const auto key = [](const ServeEntry& entry) {
            return std::tuple(entry.isFunnel, rankOf(entry),
                              entry.isBackground ? entry.hostPort : "",
                              entry.isBackground ? entry.urlPath : "");
        };
        return key(a) < key(b);
    }));
}

RC_GTEST_PROP(ExtractEntriesOfAnyConfig, ARowIsFunnelledJustWhenItsOwnMapSaysSo, ()) {
    ServeConfigJSON config = anyConfig();
    const auto foreground = std::exchange(config.Foreground, std::nullopt);
    for (const ServeEntry& entry : extractEntries(config, "n"))
        RC_ASSERT(entry.isFunnel ==
                  (config.AllowFunnel && config.AllowFunnel->contains(entry.hostPort) &&
                   config.AllowFunnel->at(entry.hostPort)));
    if (!foreground) return;
    for (const auto& [session, own] : *foreground) {
        config = {.TCP = {}, .Web = {}, .AllowFunnel = config.AllowFunnel, .Foreground = {}};
        config.Foreground.emplace().emplace(session, own);
        for (const ServeEntry& entry : extractEntries(config, "n"))
            RC_ASSERT(entry.isFunnel ==
                      (own.AllowFunnel && own.AllowFunnel->contains(entry.hostPort) &&
                       own.AllowFunnel->at(entry.hostPort)));
    }
}

RC_GTEST_PROP(ExtractEntriesOfAnyConfig, ASecondCallGivesTheSameRowsWithOtherIds, ()) {
    const ServeConfigJSON config = anyConfig();
    const auto first = extractEntries(config, "n");
    const auto second = extractEntries(config, "n");
    RC_ASSERT(entryLines(first) == entryLines(second));
    std::set<boost::uuids::uuid> ids;
    for (const ServeEntry& entry : first)
        ids.insert(entry.id);
    for (const ServeEntry& entry : second)
        ids.insert(entry.id);
    RC_ASSERT(ids.size() == first.size() + second.size());
}

} // namespace
} // namespace brevane::test
