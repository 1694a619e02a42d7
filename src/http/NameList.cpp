// SPDX-License-Identifier: MIT
#include "NameList.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace brevane {

namespace {

// The first 8 bytes as a number; numbers compare as the bytes do.
std::uint64_t keyOf(std::string_view name) {
    std::uint64_t key = 0;
    std::memcpy(&key, name.data(), std::min(name.size(), sizeof key));
    return std::endian::native == std::endian::little ? std::byteswap(key) : key;
}

} // namespace

void NameList::add(std::string_view name) {
    records.push_back({.key = 0, .offset = bytes.size(), .length = name.size()});
    bytes += name;
}

void NameList::sort() {
    if (records.empty()) return;
    // What follows the start that all names share tells more of them apart.
    std::string_view shared = nameOf(records.front());
    for (const Record& record : records) {
        const std::string_view name = nameOf(record);
        if (name.starts_with(shared)) continue;
        shared = {shared.begin(), std::ranges::mismatch(shared, name).in1};
    }
    for (Record& record : records)
        record.key = keyOf(nameOf(record).substr(shared.size()));

    std::ranges::sort(records, [this](const Record& one, const Record& other) {
        return one.key != other.key ? one.key < other.key : nameOf(one) < nameOf(other);
    });
}

} // namespace brevane
