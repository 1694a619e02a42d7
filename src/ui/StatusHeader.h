// SPDX-License-Identifier: MIT
#pragma once

#include "Surface.h"

#include <QString>

namespace brevane {

class IconButton;
class Label;
class Spinner;
class SymbolView;

/// The top of the left pane: the application's name, the connection's state and the refresh button.
class StatusHeader : public Surface {
    Q_OBJECT
public:
    explicit StatusHeader(QWidget* parent = nullptr);

    void setStatus(bool isConnected, const QString& statusLine);
    void setLoading(bool isLoading);

Q_SIGNALS:
    void refreshRequested();

private:
    class Dot;

    Spinner* spinner_;
    Dot* dot_;
    Label* status_;
};

} // namespace brevane
