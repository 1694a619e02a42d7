// SPDX-License-Identifier: MIT
#include "ManagedServerRecord.h"

#include <charconv>
#include <future>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <variant>

namespace brevane {

namespace {

// A decimal number with an optional sign, and nothing else.
std::optional<std::int64_t> parsePort(std::string_view text) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) return std::nullopt;
    }
    std::int64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc{} || rest != end) return std::nullopt;
    return number;
}

std::optional<ManagedServerInfo> toInfo(const Preferences::Entry& entry) {
    const auto* const record = std::get_if<Preferences::Record>(&entry);
    if (record == nullptr) return std::nullopt;
    const auto path = record->find("path");
    if (path == record->end()) return std::nullopt;
    const auto type = record->find("type");
    return ManagedServerInfo{.path = path->second,
                             .isDirectory = type != record->end() && type->second == "directory"};
}

std::string nodeUnder(const std::string& name, const Preferences::Dictionary& nodes) {
    const auto found = nodes.find(name);
    if (found == nodes.end()) return {};
    const auto* const node = std::get_if<std::string>(&found->second);
    return node == nullptr ? std::string() : *node;
}

} // namespace

ManagedServerRecord::ManagedServerRecord(Preferences& preferences) : preferences_(preferences) {}

ManagedServerRecord::~ManagedServerRecord() {
    std::promise<void> written;
    thread_.post([&] {
        write();
        written.set_value();
    });
    written.get_future().wait();
}

void ManagedServerRecord::read(std::function<void(const Entries&)> then) {
    thread_.post([this, then = std::move(then)]() mutable {
        then_ = std::move(then);
        readAgain();
    });
}

bool ManagedServerRecord::claim(std::int64_t port, const Entry& entry, std::chrono::seconds limit) {
    const auto isFree = std::make_shared<std::promise<bool>>();
    auto answer = isFree->get_future();
    thread_.post([=, this] {
        readAgain();
        const bool entered = entries_.try_emplace(port, entry).second;
        if (entered) {
            isWritten_ = false;
            write();
        }
        isFree->set_value(entered);
    });
    // A disk that does not respond is no reason to reject the share: it is recorded once the disk
    // responds.
    return answer.wait_for(limit) != std::future_status::ready || answer.get();
}

void ManagedServerRecord::change(Entries entries, std::vector<std::int64_t> removed) {
    thread_.post([this, entries = std::move(entries), removed = std::move(removed)]() mutable {
        for (const std::int64_t port : removed) {
            entries_.erase(port);
            obsolete_.insert(std::to_string(port));
        }
        for (auto& [port, entry] : entries)
            entries_.insert_or_assign(port, std::move(entry));
        isWritten_ = false;
        write();
    });
}

void ManagedServerRecord::save(std::function<void(std::error_code)> then) {
    thread_.post([this, then = std::move(then)] { then(write()); });
}

bool ManagedServerRecord::wait(std::chrono::milliseconds limit) {
    const auto done = std::make_shared<std::promise<void>>();
    thread_.post([this, done] {
        write();
        done->set_value();
    });
    return done->get_future().wait_for(limit) == std::future_status::ready;
}

std::error_code ManagedServerRecord::readAgain() {
    if (isRead_) return {};
    const auto servers = preferences_.dictionary(managedServersKey);
    if (!servers) return servers.error();
    const auto nodes = preferences_.dictionary(managedServerNodesKey);
    if (!nodes) return nodes.error();

    // The record is read again if it is empty: its folder may be mounted later.
    isRead_ = !servers->empty();
    Entries found;
    for (const auto& [name, entry] : *servers) {
        const auto port = parsePort(name);
        const auto info = toInfo(entry);
        if (!port || !info) continue;
        const std::string plainName = std::to_string(*port);
        const bool isForgotten = obsolete_.contains(plainName);
        if (name != plainName) obsolete_.insert(name);
        // Entries added or removed meanwhile are newer.
        if (isForgotten || entries_.contains(*port)) continue;
        found.insert_or_assign(*port, Entry{.info = *info, .node = nodeUnder(name, *nodes)});
    }
    entries_.insert(found.begin(), found.end());
    if (then_ && (!std::exchange(hasAnswered_, true) || !found.empty())) then_(found);
    return {};
}

std::error_code ManagedServerRecord::write() {
    if (const std::error_code error = readAgain()) return error;
    if (isWritten_) return {};

    Preferences::Changes servers;
    Preferences::Changes nodes;
    for (const std::string& name : obsolete_) {
        servers[name] = std::nullopt;
        nodes[name] = std::nullopt;
    }
    for (const auto& [port, entry] : entries_) {
        const std::string name = std::to_string(port);
        servers[name] = Preferences::Record{
            {"path", entry.info.path}, {"type", entry.info.isDirectory ? "directory" : "file"}};
        nodes[name] =
            entry.node.empty() ? std::nullopt : std::optional(Preferences::Entry(entry.node));
    }
    const std::error_code error = preferences_.update(
        {{managedServersKey, std::move(servers)}, {managedServerNodesKey, std::move(nodes)}});
    if (error) return error;
    isRead_ = true;
    isWritten_ = true;
    obsolete_.clear();
    return {};
}

} // namespace brevane
