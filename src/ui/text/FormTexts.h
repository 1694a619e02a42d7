// SPDX-License-Identifier: MIT
#pragma once

#include "ServeMode.h"
#include "SourceType.h"

#include <string>
#include <string_view>

namespace brevane {

/// What the form says about one kind of source.
struct SourceTexts {
    std::string_view fieldLabel;
    std::string_view placeholder;
    std::string_view hint;
};

/// The texts of one kind of source.
[[nodiscard]] SourceTexts sourceTexts(SourceType sourceType);

/// Who can reach a share of this mode, at the top of the form.
[[nodiscard]] std::string_view modeDescription(ServeMode mode);

/// The same in a few words, under the choice of the mode.
[[nodiscard]] std::string_view modeCaption(ServeMode mode);

/// What the form says under the URL path.
[[nodiscard]] std::string_view urlPathHint(SourceType sourceType);

/// The label of the button that starts a share, such as "Start Serve".
[[nodiscard]] std::string startLabel(ServeMode mode);

/// What is said when a share has been made, such as "Serve started successfully".
[[nodiscard]] std::string startedMessage(ServeMode mode);

/// What is said when a share could not be made: the command's output, or where it printed nothing a
/// text that says what to look at. Lives no longer than `output`.
[[nodiscard]] std::string_view startFailedMessage(std::string_view output);

/// The banner's text when a share could not be stopped: the command's output, if there is any.
/// Lives no longer than that.
[[nodiscard]] std::string_view stopFailedMessage(std::string_view output);

} // namespace brevane
