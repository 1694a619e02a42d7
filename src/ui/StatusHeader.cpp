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

/// The filled circle before the status: green if connected, otherwise red.
class StatusHeader::Dot : public QWidget {
public:
    Dot() { setFixedSize(6, 6); }
    void setConnected(bool on) {
        isConnected_ = on;
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme().color(isConnected_ ? &Colors::green : &Colors::red));
        painter.drawEllipse(rect());
    }

private:
    bool isConnected_ = false;
};

StatusHeader::StatusHeader(QWidget* parent)
    : Surface(&Colors::pane, 1, 0, parent), spinner_(new Spinner(12)), dot_(new Dot),
      status_(new Label(TextStyle::caption, &Colors::secondary)) {
    const QKeySequence keys(Qt::CTRL | Qt::Key_R);
    auto* refresh =
        new IconButton(QStringLiteral("arrow.clockwise"),
                       QStringLiteral("Refresh (%1)").arg(keys.toString(QKeySequence::NativeText)));
    refresh->setShortcut(keys);
    connect(refresh, &IconButton::clicked, this, &StatusHeader::refreshRequested);
    status_->setElided();
    spinner_->hide();

    auto* firstLine = new QHBoxLayout;
    firstLine->setSpacing(Theme::near);
    firstLine->addWidget(new Label(TextStyle::headline, &Colors::text, QStringLiteral("Brevane")));
    firstLine->addWidget(spinner_);
    firstLine->addStretch();
    auto* secondLine = new QHBoxLayout;
    secondLine->setSpacing(6);
    secondLine->addWidget(dot_);
    secondLine->addWidget(status_, 1);
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
    dot_->setConnected(isConnected);
    status_->setPlainText(statusLine);
}

void StatusHeader::setLoading(bool isLoading) {
    spinner_->setVisible(isLoading);
}

} // namespace brevane
