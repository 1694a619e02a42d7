// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace brevane {

/// The home directory of the user that runs the program, as the user database says; $HOME is not
/// asked. "/" where the database does not know the user. The first answer is kept, since asking
/// takes a descriptor, and later there may be none. Any thread.
[[nodiscard]] std::string homeDirectory();

} // namespace brevane
