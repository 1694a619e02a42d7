// SPDX-License-Identifier: MIT
#include "JsonDecoding.h"

#include <boost/json/basic_parser_impl.hpp>
#include <boost/json/value_stack.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace brevane {

namespace {

namespace json = boost::json;
using Error = boost::system::error_code;

/// Event handler for `basic_parser`: builds only the wanted members of the outermost object. A
/// callback that returns false stops the parser.
class MemberSelector {
public:
    static constexpr std::size_t max_object_size = static_cast<std::size_t>(-1);
    static constexpr std::size_t max_array_size = static_cast<std::size_t>(-1);
    static constexpr std::size_t max_key_size = static_cast<std::size_t>(-1);
    static constexpr std::size_t max_string_size = static_cast<std::size_t>(-1);

    explicit MemberSelector(std::span<const std::string_view> wanted) : wanted_(wanted) {}

    json::object takeMembers() { return std::move(members_); }

    bool on_document_begin(Error&) { return true; }
    bool on_document_end(Error&) { return true; }

    bool on_object_begin(Error&) {
        ++depth_;
        return true;
    }
    bool on_object_end(std::size_t size, Error&) {
        --depth_;
        if (isBuilding_) stack_.push_object(size);
        return valueEnded();
    }
    bool on_array_begin(Error& error) {
        if (depth_ == 0) return failNotObject(error);
        ++depth_;
        return true;
    }
    bool on_array_end(std::size_t size, Error&) {
        --depth_;
        if (isBuilding_) stack_.push_array(size);
        return valueEnded();
    }

    bool on_key_part(json::string_view part, std::size_t, Error&) {
        if (isBuilding_)
            stack_.push_chars(part);
        else if (depth_ == 1)
            key_.append(part);
        return true;
    }
    bool on_key(json::string_view rest, std::size_t, Error&) {
        if (isBuilding_) {
            stack_.push_key(rest);
        } else if (depth_ == 1) {
            key_.append(rest);
            isBuilding_ = std::ranges::find(wanted_, key_) != wanted_.end();
            if (isBuilding_)
                stack_.reset();
            else
                key_.clear();
        }
        return true;
    }

    bool on_string_part(json::string_view part, std::size_t, Error& error) {
        if (depth_ == 0) return failNotObject(error);
        if (isBuilding_) stack_.push_chars(part);
        return true;
    }
    bool on_string(json::string_view rest, std::size_t, Error& error) {
        if (isBuilding_) stack_.push_string(rest);
        return scalarEnded(error);
    }

    bool on_number_part(json::string_view, Error&) { return true; }
    bool on_int64(std::int64_t number, json::string_view, Error& error) {
        if (isBuilding_) stack_.push_int64(number);
        return scalarEnded(error);
    }
    bool on_uint64(std::uint64_t number, json::string_view, Error& error) {
        if (isBuilding_) stack_.push_uint64(number);
        return scalarEnded(error);
    }
    bool on_double(double number, json::string_view, Error& error) {
        // Since Boost 1.83 the parser itself takes an exponent of any size.
        if (std::isinf(number)) {
            error = json::error::exponent_overflow;
            return false;
        }
        if (isBuilding_) stack_.push_double(number);
        return scalarEnded(error);
    }
    bool on_bool(bool truth, Error& error) {
        if (isBuilding_) stack_.push_bool(truth);
        return scalarEnded(error);
    }
    bool on_null(Error& error) {
        if (isBuilding_) stack_.push_null();
        return scalarEnded(error);
    }

    // `basic_parser` requires these, but never calls them: comments are rejected by default.
    bool on_comment_part(json::string_view, Error&) { return true; }
    bool on_comment(json::string_view, Error&) { return true; }

private:
    static bool failNotObject(Error& error) {
        error = json::error::not_object;
        return false;
    }

    bool scalarEnded(Error& error) { return depth_ == 0 ? failNotObject(error) : valueEnded(); }

    bool valueEnded() {
        if (isBuilding_ && depth_ == 1) {
            members_[key_] = stack_.release();
            key_.clear();
            isBuilding_ = false;
        }
        return true;
    }

    std::span<const std::string_view> wanted_;
    json::object members_;
    json::value_stack stack_; ///< builds the current wanted member
    std::string key_;         ///< key of the current member of the outermost object
    int depth_ = 0;           ///< number of open objects and arrays
    bool isBuilding_ = false;
};

} // namespace

std::optional<json::object> parseMembers(std::string_view document,
                                         std::span<const std::string_view> wanted) {
    json::parse_options options;
    options.max_depth = 512;
    json::basic_parser<MemberSelector> parser(options, wanted);
    Error error;
    const std::size_t parsed = parser.write_some(false, document.data(), document.size(), error);
    if (error || parsed != document.size()) return std::nullopt;
    return parser.handler().takeMembers();
}

bool read(const boost::json::value& value, std::string& text) {
    const auto* const string = value.if_string();
    if (string == nullptr) return false;
    text.assign(string->data(), string->size());
    return true;
}

bool read(const boost::json::value& value, bool& truth) {
    const bool* const boolean = value.if_bool();
    if (boolean == nullptr) return false;
    truth = *boolean;
    return true;
}

bool read(const boost::json::value& value, std::vector<std::string>& list) {
    const auto* const array = value.if_array();
    if (array == nullptr) return false;
    for (const auto& element : *array)
        if (!read(element, list.emplace_back())) return false;
    return true;
}

} // namespace brevane
