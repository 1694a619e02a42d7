// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace brevane {

/// What is in a folder, in the order of its listing. All names lie in one piece of memory.
class FolderEntries {
public:
    struct Entry {
        std::string_view name;
        bool isFolder;
    };

    /// Reads the folder; nothing where that fails.
    explicit FolderEntries(const std::string& folder);

    [[nodiscard]] std::size_t size() const { return records.size(); }
    [[nodiscard]] std::size_t nameBytes() const { return names.size(); }
    [[nodiscard]] Entry operator[](std::size_t index) const;

private:
    struct Record {
        std::uint64_t key; // orders most names faster than their bytes do
        std::size_t offset;
        std::uint16_t length;
        bool isFolder;
    };
    [[nodiscard]] std::string_view nameOf(const Record& record) const;
    void add(std::string_view name, bool isFolder);
    void sort(std::span<Record> group);

    std::string names;
    std::vector<Record> records;
};

} // namespace brevane
