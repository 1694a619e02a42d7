// SPDX-License-Identifier: MIT
#pragma once

#include "ManagedServers.h"
#include "ServeEntry.h"

#include <optional>
#include <string>
#include <string_view>

namespace brevane {

/// The URL of an entry, without the default port and the root path.
[[nodiscard]] std::string displayURL(const ServeEntry& entry);

/// What our file server behind this entry serves; none if the entry does not proxy to one.
[[nodiscard]] std::optional<ManagedServerInfo> managedInfo(const ServeEntry& entry,
                                                           const ManagedServers::InfoMap& servers);

/// The second line of a share.
struct ShareDetail {
    std::string_view symbol; ///< name of the symbol before the text
    std::string_view kind;   ///< the same in a word, for screen readers
    std::string text;        ///< the served file or folder, or the entry's target
};

[[nodiscard]] ShareDetail shareDetail(const ServeEntry& entry,
                                      const std::optional<ManagedServerInfo>& managed);

/// A share as one sentence for screen readers, such as "Serve, https://host, folder /srv/site".
[[nodiscard]] std::string spokenShare(const ServeEntry& entry,
                                      const std::optional<ManagedServerInfo>& managed);

/// Title and message of the question before a share is stopped.
[[nodiscard]] std::string stopTitle(const ServeEntry& entry);
[[nodiscard]] std::string stopMessage(const ServeEntry& entry);

} // namespace brevane
