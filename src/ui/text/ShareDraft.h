// SPDX-License-Identifier: MIT
#pragma once

#include "ServeMode.h"
#include "SourceType.h"

#include <string>
#include <string_view>

namespace brevane {

/// A share as the user is entering it, every text as typed.
struct ShareDraft {
    ServeMode mode = ServeMode::serve;
    SourceType sourceType = SourceType::port;
    std::string source;
    std::string urlPath = "/";
    bool background = true;
};

/// Whether there is enough to start the share with. A file or folder of nothing but blanks is not:
/// without its blanks it would stand for the whole disk.
[[nodiscard]] bool canStart(const ShareDraft& draft);

/// The URL path as `TailscaleService::add` takes it, which stands in a command line: as typed, but
/// in single quotes if the shell would split or interpret it. For a file at "/" it is the file's
/// name that decides: the service would append it unquoted.
[[nodiscard]] std::string mountPathWord(const ShareDraft& draft);

/// What starting the draft will do, for the user to read: a sentence for files and folders, else
/// the command in plain words. Nothing in it is quoted for a shell, so it is not to be run.
/// `dnsName` is this machine's full DNS name.
[[nodiscard]] std::string commandPreview(const ShareDraft& draft, std::string_view dnsName);

} // namespace brevane
