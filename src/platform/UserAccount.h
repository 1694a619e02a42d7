// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace brevane {

/// The home directory of the current user in the user database; $HOME is ignored. "/" if the
/// database does not know the user. A directory once found is cached, since a look-up takes a
/// descriptor and later none may be left. Any thread.
[[nodiscard]] std::string homeDirectory();

} // namespace brevane
