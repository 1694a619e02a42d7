// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace brevane {

/// Many names, which all lie in one piece of memory.
class NameList {
public:
    void add(std::string_view name);
    /// Puts the names in the order of their bytes.
    void sort();

    [[nodiscard]] std::size_t size() const { return records.size(); }
    /// The length of all names together.
    [[nodiscard]] std::size_t byteCount() const { return bytes.size(); }
    [[nodiscard]] std::string_view operator[](std::size_t index) const {
        return nameOf(records[index]);
    }

private:
    struct Record {
        std::uint64_t key; // orders most names faster than their bytes do
        std::size_t offset;
        std::size_t length;
    };
    [[nodiscard]] std::string_view nameOf(const Record& record) const {
        return {bytes.data() + record.offset, record.length};
    }

    std::string bytes;
    std::vector<Record> records;
};

} // namespace brevane
