// SPDX-License-Identifier: MIT
#pragma once

#include "ServeMode.h"
#include "SourceType.h"

#include <string>
#include <string_view>

namespace brevane {

/// The form's texts for one kind of source.
struct SourceTexts {
    std::string_view fieldLabel;
    std::string_view placeholder;
    std::string_view hint;
};

[[nodiscard]] SourceTexts sourceTexts(SourceType sourceType);

/// Describes who can reach a share of this mode, for the top of the form.
[[nodiscard]] std::string_view modeDescription(ServeMode mode);

/// The same in a few words, for under the mode's control.
[[nodiscard]] std::string_view modeCaption(ServeMode mode);

/// The hint under the URL path.
[[nodiscard]] std::string_view urlPathHint(SourceType sourceType);

/// The label of the button that starts a share, such as "Start Serve".
[[nodiscard]] std::string startLabel(ServeMode mode);

/// The message when a share has been made, such as "Serve started successfully".
[[nodiscard]] std::string startedMessage(ServeMode mode);

/// The message when a share could not be made: the command's output, or advice if it printed
/// nothing. The result may refer to `output`.
[[nodiscard]] std::string_view startFailedMessage(std::string_view output);

/// The banner's text when a share could not be stopped: the command's output, or a fixed message if
/// it printed nothing. The result may refer to `output`.
[[nodiscard]] std::string_view stopFailedMessage(std::string_view output);

} // namespace brevane
