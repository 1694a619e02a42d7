// SPDX-License-Identifier: MIT
#include "Theme.h"

#include "Accessibility.h"
#include "Style.h"
#include "SystemAppearance.h"

#include <QApplication>
#include <QEvent>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QToolTip>
#include <QWindow>

#include <algorithm>
#include <array>
#include <utility>

namespace brevane {

namespace {

Theme* instance = nullptr;

struct Type {
    int pixels;
    QFont::Weight weight;
    bool monospaced = false;
};

#ifdef __APPLE__ // the system's own sizes
constexpr int headlinePixels = 13;
constexpr int subheadlinePixels = 11;
constexpr int captionPixels = 10;
#else
constexpr int headlinePixels = 15;
constexpr int subheadlinePixels = 12;
constexpr int captionPixels = 11;
#endif

constexpr std::array<std::pair<TextStyle, Type>, 11> types{{
    {TextStyle::headline, {headlinePixels, QFont::DemiBold}},
    {TextStyle::subheadline, {subheadlinePixels, QFont::DemiBold}},
    {TextStyle::body, {13, QFont::Normal}},
    {TextStyle::rowTitle, {13, QFont::Medium}},
    {TextStyle::callout, {12, QFont::Normal}},
    {TextStyle::caption, {captionPixels, QFont::Normal}},
    {TextStyle::section, {11, QFont::DemiBold}},
    {TextStyle::tag, {9, QFont::Bold}},
    {TextStyle::button, {13, QFont::DemiBold}},
    {TextStyle::field, {12, QFont::Normal, true}},
    {TextStyle::code, {11, QFont::Normal, true}},
}};

// QFontInfo would load the font.
double pixelSize(const QFont& font) {
    if (font.pixelSize() > 0) return font.pixelSize();
    const QScreen* const screen = QGuiApplication::primaryScreen(); // there may be none for a while
    return font.pointSizeF() * (screen == nullptr ? 96 : screen->logicalDotsPerInchY()) / 72;
}

// Qt's title bars on Wayland take their colours from the palette only when they are created. A
// window without a margin has the desktop's title bar, and would get Qt's in addition.
void recreateTitleBars() {
    if (!QGuiApplication::platformName().startsWith("wayland")) return;
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        if (window->frameMargins().isNull()) continue;
        const Qt::WindowFlags flags = window->flags();
        window->setFlags(flags | Qt::FramelessWindowHint);
        window->setFlags(flags);
    }
}

} // namespace

Theme::Theme(Scheme scheme) : look_{.isDark = scheme == Scheme::dark} {
    Q_ASSERT(instance == nullptr);
    instance = this;
    installAccessibleInterfaces();
    if (scheme == Scheme::system) {
        appearance_ = new SystemAppearance(this);
        look_ = appearance_->look();
        connect(appearance_, &SystemAppearance::changed, this,
                [this] { setLook(appearance_->look()); });
    }
    colors_ = Colors::of(look_);
    QApplication::setStyle(new Style);
    QApplication::setPalette(palette());
    qApp->installEventFilter(this);
}

Theme::~Theme() {
    instance = nullptr;
}

const Theme& Theme::current() {
    Q_ASSERT(instance != nullptr);
    return *instance;
}

double Theme::textScale() const {
    constexpr double tenPoints = 10 * 96.0 / 72;
    return std::max(1.0, pixelSize(QApplication::font()) / tenPoints);
}

int Theme::scaled(int length) const {
    return qRound(length * textScale());
}

int Theme::symbolSize(int fontSize) const {
    return scaled(qRound(fontSize * 16 / 13.0));
}

QFont Theme::font(TextStyle style) const {
    const auto type = std::ranges::find(types, style, &std::pair<TextStyle, Type>::first)->second;
    QFont font = QApplication::font();
    if (type.monospaced)
        font.setFamilies(QFontDatabase::systemFont(QFontDatabase::FixedFont).families());
    font.setPixelSize(scaled(type.pixels));
    font.setWeight(type.weight);
    if (style == TextStyle::section || style == TextStyle::tag)
        font.setLetterSpacing(QFont::AbsoluteSpacing, 0.4);
    return font;
}

void Theme::loadFonts() const {
    for (const auto style :
         {TextStyle::headline, TextStyle::subheadline, TextStyle::body, TextStyle::callout,
          TextStyle::caption, TextStyle::section, TextStyle::button, TextStyle::field})
        static_cast<void>(QFontMetrics(font(style)).horizontalAdvance(QStringLiteral("Share")));
}

void Theme::awaitDesktop() const {
    if (appearance_ != nullptr) appearance_->awaitFirstAnswer();
}

void Theme::setDark(bool isDark) {
    Look look = look_;
    look.isDark = isDark;
    setLook(look);
}

void Theme::setLook(const Look& look) {
    if (look_ == look) return;
    look_ = look;
    colors_ = Colors::of(look_);
    if (look.font && *look.font != QApplication::font()) QApplication::setFont(*look.font);
    // Sends every widget a palette change, on which it repaints.
    QApplication::setPalette(palette());
    recreateTitleBars();
    Q_EMIT changed();
}

bool Theme::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::ApplicationFontChange:
        if (watched == qApp) Q_EMIT changed();
        break;
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Alt)
            setMnemonics(event->type() == QEvent::KeyPress);
        break;
    // Alt may be released in another window.
    case QEvent::WindowDeactivate:
        setMnemonics(false);
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void Theme::setMnemonics(bool on) {
    if (mnemonics_ == on) return;
    mnemonics_ = on;
    for (QWidget* widget : QApplication::allWidgets())
        if (qobject_cast<QMenuBar*>(widget) || qobject_cast<QMenu*>(widget)) widget->update();
}

QPalette Theme::palette() const {
    const Colors& c = colors();
    QPalette palette(isDark() ? QColor(0x3a, 0x3a, 0x3c) : QColor(0xec, 0xec, 0xee), c.window);
    palette.setColor(QPalette::Base, c.popup);
    palette.setColor(QPalette::ToolTipBase, c.popup);
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        palette.setColor(role, c.text);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, c.secondary);
    palette.setColor(QPalette::PlaceholderText, c.secondary);
    palette.setColor(QPalette::Highlight, c.accentFill);
    palette.setColor(QPalette::HighlightedText, c.onFill);
    palette.setColor(QPalette::Link, c.blue);
    return palette;
}

} // namespace brevane
