// SPDX-License-Identifier: MIT
#pragma once

#include "Surface.h"

namespace brevane {

class SelectableText;

/// Shows the last error until it is cleared.
class ErrorBanner : public Surface {
    Q_OBJECT
public:
    explicit ErrorBanner(QWidget* parent = nullptr);

    /// Shows the text and announces it if it has changed; an empty text hides the banner.
    void setError(const QString& error);

Q_SIGNALS:
    void clearRequested();

private:
    SelectableText* text_;
};

} // namespace brevane
