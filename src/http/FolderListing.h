// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace brevane {

/// A generated HTML page of what is in a folder, hidden entries left out: folders, then all else,
/// each by name in code-point order. A symbolic link is no folder. A folder that cannot be read
/// gives a page without entries. All names stand as they are.
class FolderListing {
public:
    /// Reads the folder at `path`. `urlPath` is its path as asked for; it must outlive the page.
    FolderListing(const std::string& path, std::string_view urlPath);

    [[nodiscard]] std::size_t size() const;
    /// Writes the page, `size` bytes, from `next` on.
    void write(char* next) const;

private:
    // Many names, which all lie in one piece of memory.
    class Names {
    public:
        void add(std::string_view name);
        // Puts the names in the order of their bytes.
        void sort();

        [[nodiscard]] std::size_t size() const { return records_.size(); }
        // The length of all names together.
        [[nodiscard]] std::size_t byteCount() const { return bytes_.size(); }
        [[nodiscard]] std::string_view operator[](std::size_t index) const {
            return nameOf(records_[index]);
        }

    private:
        struct Record {
            std::uint64_t key; // orders most names faster than their bytes do
            std::size_t offset;
            std::size_t length;
        };
        // Leaves names with one key as they stood.
        void sortByKey();
        [[nodiscard]] std::string_view nameOf(const Record& record) const {
            return {bytes_.data() + record.offset, record.length};
        }

        std::string bytes_;
        std::vector<Record> records_;
    };

    Names folders_;
    Names files_;
    std::string_view urlPath_;
};

} // namespace brevane
