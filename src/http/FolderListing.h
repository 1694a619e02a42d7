// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace brevane {

/// A generated HTML page that lists a folder without its hidden entries: folders, then everything
/// else, each in code-point order of the names. A symbolic link is not a folder. A folder that
/// cannot be read results in a page without entries. Names are not escaped.
class FolderListing {
public:
    /// Reads the folder at `path`. `urlPath` is the path that was requested; it must outlive this
    /// object.
    FolderListing(const std::string& path, std::string_view urlPath);

    [[nodiscard]] std::size_t size() const;
    /// Writes the page, size() bytes, to `next`.
    void write(char* next) const;

private:
    // Names, stored in one contiguous buffer.
    class Names {
    public:
        void add(std::string_view name);
        // Sorts the names bytewise.
        void sort();

        [[nodiscard]] std::size_t size() const { return records_.size(); }
        // The total length of all names.
        [[nodiscard]] std::size_t byteCount() const { return bytes_.size(); }
        [[nodiscard]] std::string_view operator[](std::size_t index) const {
            return nameOf(records_[index]);
        }

    private:
        struct Record {
            std::uint64_t key; // decides most comparisons without the bytes
            std::size_t offset;
            std::size_t length;
        };
        // Stable.
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
