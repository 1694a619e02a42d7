// SPDX-License-Identifier: MIT
#include "TailscaleStatusJSON.h"

#include "JsonDecoding.h"

#include <boost/json/basic_parser_impl.hpp>
#include <boost/json/value_stack.hpp>

#include <cstdint>
#include <limits>

namespace brevane {

namespace json = boost::json;

namespace {

using Error = boost::system::error_code;

// Builds the top-level members "BackendState" and "Self"; all others, the peers above all, are
// only checked.
struct WantedMembers {
    static constexpr std::size_t max_object_size = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t max_array_size = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t max_key_size = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t max_string_size = std::numeric_limits<std::size_t>::max();

    bool on_document_begin(Error&) { return true; }
    bool on_document_end(Error&) { return true; }

    bool on_object_begin(Error&) {
        ++depth;
        return true;
    }
    bool on_object_end(std::size_t size, Error&) {
        --depth;
        if (depth == 0)
            stack.push_object(wantedMembers);
        else if (isWanted)
            stack.push_object(size);
        return true;
    }
    bool on_array_begin(Error&) {
        ++depth;
        return true;
    }
    bool on_array_end(std::size_t size, Error&) {
        --depth;
        if (isWanted) stack.push_array(size);
        return true;
    }

    bool on_key_part(json::string_view part, std::size_t, Error&) {
        if (depth == 1)
            key.append(part.data(), part.size());
        else if (isWanted)
            stack.push_chars(part);
        return true;
    }
    bool on_key(json::string_view part, std::size_t, Error&) {
        if (depth > 1) {
            if (isWanted) stack.push_key(part);
            return true;
        }
        key.append(part.data(), part.size());
        isWanted = key == "BackendState" || key == "Self";
        if (isWanted) {
            stack.push_key(key);
            ++wantedMembers;
        }
        key.clear();
        return true;
    }

    bool on_string_part(json::string_view part, std::size_t, Error&) {
        if (isWanted) stack.push_chars(part);
        return true;
    }
    bool on_string(json::string_view part, std::size_t, Error&) {
        if (isWanted) stack.push_string(part);
        return true;
    }
    bool on_number_part(json::string_view, Error&) { return true; }
    bool on_int64(std::int64_t number, json::string_view, Error&) {
        if (isWanted) stack.push_int64(number);
        return true;
    }
    bool on_uint64(std::uint64_t number, json::string_view, Error&) {
        if (isWanted) stack.push_uint64(number);
        return true;
    }
    bool on_double(double number, json::string_view, Error&) {
        if (isWanted) stack.push_double(number);
        return true;
    }
    bool on_bool(bool truth, Error&) {
        if (isWanted) stack.push_bool(truth);
        return true;
    }
    bool on_null(Error&) {
        if (isWanted) stack.push_null();
        return true;
    }
    bool on_comment_part(json::string_view, Error&) { return true; }
    bool on_comment(json::string_view, Error&) { return true; }

    json::value_stack stack;
    std::string key; // of a top-level member, while it is read
    std::size_t depth = 0;
    std::size_t wantedMembers = 0;
    bool isWanted = false;
};

} // namespace

static bool read(const json::value& value, TailscaleStatusJSON::SelfNode& node) {
    const auto* const object = value.if_object();
    return object != nullptr && read(*object, "DNSName", node.DNSName) &&
           read(*object, "TailscaleIPs", node.TailscaleIPs) &&
           read(*object, "Online", node.Online) && read(*object, "HostName", node.HostName);
}

std::optional<TailscaleStatusJSON> decodeTailscaleStatus(std::string_view document) {
    json::basic_parser<WantedMembers> parser(strictJson());
    parser.handler().stack.reset();
    Error error;
    const std::size_t length = parser.write_some(false, document.data(), document.size(), error);
    if (error || length != document.size()) return std::nullopt;

    // Only an object leaves something to release: a lone number or text was never wanted.
    const auto first = document.find_first_not_of(" \t\r\n");
    if (document[first] != '{') return std::nullopt;
    const json::value value = parser.handler().stack.release();
    const json::object& object = value.get_object();

    TailscaleStatusJSON status;
    std::optional<std::string> backendState;
    if (!read(object, "BackendState", backendState) || !backendState) return std::nullopt;
    if (!read(object, "Self", status.selfNode)) return std::nullopt;
    status.BackendState = std::move(*backendState);
    return status;
}

} // namespace brevane
