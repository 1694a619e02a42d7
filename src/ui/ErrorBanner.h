// SPDX-License-Identifier: MIT
#pragma once

#include "Surface.h"

namespace brevane {

class SelectableText;

/// The last failure, until it is cleared.
class ErrorBanner : public Surface {
    Q_OBJECT
public:
    explicit ErrorBanner(QWidget* parent = nullptr);

    /// Shows the text and has it spoken; hides with the empty text.
    void setError(const QString& error);

Q_SIGNALS:
    void clearRequested();

private:
    SelectableText* text_;
};

} // namespace brevane
