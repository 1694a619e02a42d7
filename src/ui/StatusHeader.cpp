// SPDX-License-Identifier: MIT
#include "StatusHeader.h"

#include "IconButton.h"
#include "Label.h"
#include "Spinner.h"
#include "TailscaleIcon.h"

#include <QHBoxLayout>
#include <QKeySequence>
#include <QPainter>

namespace brevane {

/// The filled circle before the status: green when connected, else red.
class StatusHeader::Dot : public QWidget {
public:
    Dot() { setFixedSize(6, 6); }
    void setConnected(bool on) {
        isConnected = on;
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme().color(isConnected ? &Colors::green : &Colors::red));
        painter.drawEllipse(rect());
    }

private:
    bool isConnected = false;
};

StatusHeader::StatusHeader(QWidget* parent)
    : Surface(&Colors::pane, 1, 0, parent), spinner(new Spinner(12)), dot(new Dot),
      status(new Label(TextStyle::caption, &Colors::secondary)) {
    const QKeySequence keys(Qt::CTRL | Qt::Key_R);
    auto* refresh = new IconButton(QStringLiteral("arrow.clockwise"),
                                   tr("Refresh (%1)").arg(keys.toString(QKeySequence::NativeText)));
    refresh->setShortcut(keys);
    connect(refresh, &IconButton::clicked, this, &StatusHeader::refreshRequested);
    status->setElided();
    spinner->hide();

    auto* firstLine = new QHBoxLayout;
    firstLine->setSpacing(Theme::near);
    firstLine->addWidget(new Label(TextStyle::headline, &Colors::text, QStringLiteral("Brevane")));
    firstLine->addWidget(spinner);
    firstLine->addStretch();
    auto* secondLine = new QHBoxLayout;
    secondLine->setSpacing(6);
    secondLine->addWidget(dot);
    secondLine->addWidget(status, 1);
    auto* lines = new QVBoxLayout;
    lines->setSpacing(2);
    lines->addStretch();
    lines->addLayout(firstLine);
    lines->addLayout(secondLine);
    lines->addStretch();

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(Theme::headerPadding, Theme::headerPadding, Theme::headerPadding,
                            Theme::headerPadding);
    row->setSpacing(10);
    row->addWidget(new TailscaleIcon(30));
    row->addLayout(lines, 1);
    row->addWidget(refresh);
}

void StatusHeader::setStatus(bool isConnected, const QString& statusLine) {
    dot->setConnected(isConnected);
    status->setPlainText(statusLine);
}

void StatusHeader::setLoading(bool isLoading) {
    spinner->setVisible(isLoading);
}

} // namespace brevane
