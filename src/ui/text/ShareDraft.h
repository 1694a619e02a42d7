// SPDX-License-Identifier: MIT
#pragma once

#include "ServeMode.h"
#include "SourceType.h"

#include <string>
#include <string_view>

namespace brevane {

/// A share that the user is entering, with texts as typed.
struct ShareDraft {
    ServeMode mode = ServeMode::serve;
    SourceType sourceType = SourceType::port;
    std::string source;
    std::string urlPath = "/";
    bool background = true;
};

/// Whether the draft has a source. For a file or folder, white space alone is none: trimmed, it
/// would refer to the whole disk.
[[nodiscard]] bool canStart(const ShareDraft& draft);

/// The URL path for `TailscaleService::add`, which puts it into a command line: as typed, but in
/// single quotes if the shell would split or interpret it. For a file at "/", the service appends
/// the file's name unquoted; if that needs quoting, the result is the quoted path with the name.
[[nodiscard]] std::string mountPathWord(const ShareDraft& draft);

/// Describes to the user what starting the draft will do: a sentence for files and folders,
/// otherwise the command, which is not quoted for a shell and must not be run. `dnsName` is this
/// machine's full DNS name.
[[nodiscard]] std::string commandPreview(const ShareDraft& draft, std::string_view dnsName);

} // namespace brevane
