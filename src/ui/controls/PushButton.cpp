// SPDX-License-Identifier: MIT
#include "PushButton.h"

#include "Spinner.h"

#include <QStyle>

#include <algorithm>
#include <utility>

namespace brevane {

namespace {

constexpr int symbolFrame = 16;
constexpr int indicatorSide = 13;
constexpr int afterSymbol = 6;

} // namespace

PushButton::PushButton(Kind kind, const QString& text, QWidget* parent)
    : QPushButton(text, parent), kind_(kind), tint_(kind == Kind::prominent ? &Colors::blueFill
                                                    : kind == Kind::link    ? &Colors::blue
                                                                            : &Colors::text) {
    const bool prominent = kind == Kind::prominent;
    setSizePolicy(prominent ? QSizePolicy::Minimum : QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFocusPolicy(Qt::TabFocus);
    // Lets Return press it.
    setAutoDefault(true);
    const auto style = prominent            ? TextStyle::button
                       : kind == Kind::link ? TextStyle::caption
                                            : TextStyle::body;
    setFont(theme().font(style));
    connect(&theme(), &Theme::changed, this, [this, style] { setFont(theme().font(style)); });
}

void PushButton::setSymbol(const QString& name) {
    if (symbol_ == name) return;
    symbol_ = name;
    updateGeometry();
    update();
}

void PushButton::setTint(ColorRole role) {
    if (tint_ == role) return;
    tint_ = role;
    update();
}

void PushButton::setBusy(bool on) {
    if (isBusy() == on) return;
    if (on) {
        spinner_ =
            new Spinner(indicatorSide, kind_ == Kind::prominent ? &Colors::onFill : tint_, this);
        placeSpinner();
        spinner_->show();
    } else {
        delete std::exchange(spinner_, nullptr);
    }
    updateGeometry();
    update();
}

int PushButton::leadingWidth() const {
    return symbol_.isEmpty() && !isBusy()
               ? 0
               : std::max(symbolFrame, theme().symbolSize(12)) + afterSymbol;
}

PushButton::Parts PushButton::parts() const {
    const int textWidth = fontMetrics().horizontalAdvance(text());
    const int lead = leadingWidth();
    const QRect content((width() - textWidth - lead) / 2, 0, textWidth + lead, height());
    const int side = std::max(0, lead - afterSymbol);
    const auto mirrored = [&](const QRect& box) {
        return QStyle::visualRect(layoutDirection(), content, box);
    };
    return {.symbol = mirrored({content.x(), (height() - side) / 2, side, side}),
            .text = mirrored(content.adjusted(lead, 0, 1, 0))};
}

void PushButton::placeSpinner() {
    if (spinner_ == nullptr) return;
    QRect box = spinner_->rect();
    box.moveCenter(parts().symbol.center());
    spinner_->move(box.topLeft());
}

void PushButton::resizeEvent(QResizeEvent* event) {
    QPushButton::resizeEvent(event);
    placeSpinner();
}

QSize PushButton::sizeHint() const {
    const int textWidth = fontMetrics().horizontalAdvance(text());
    const int padding = kind_ == Kind::link ? 4 : 14;
    const int height = theme().scaled(kind_ == Kind::prominent ? 34
                                      : kind_ == Kind::link    ? 20
                                                               : 28);
    return {textWidth + leadingWidth() + 2 * padding, std::max(height, fontMetrics().height() + 4)};
}

// Qt calls this on a focused widget that is disabled; true keeps the focus.
bool PushButton::focusNextPrevChild(bool next) {
    return !isEnabled() || QPushButton::focusNextPrevChild(next);
}

} // namespace brevane
