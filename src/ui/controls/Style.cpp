// SPDX-License-Identifier: MIT
#include "Style.h"

#include "ButtonDrawing.h"
#include "FieldDrawing.h"
#include "IconButton.h"
#include "MenuDrawing.h"
#include "Painting.h"
#include "PushButton.h"
#include "Symbol.h"
#include "Theme.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QMenu>
#include <QPainter>
#include <QScrollBar>
#include <QStyleOption>

#include <algorithm>

namespace brevane {

namespace {

bool isPopUp(const QWidget* widget) {
    return qobject_cast<const QMenu*>(widget) ||
           (widget != nullptr && widget->inherits("QComboBoxPrivateContainer"));
}

} // namespace

Style::Style() : QProxyStyle(QStringLiteral("Fusion")) {}

void Style::polish(QWidget* widget) {
    QProxyStyle::polish(widget);
    // The background behind a scroll bar is that of the scrolled view.
    if (qobject_cast<QScrollBar*>(widget)) widget->setAttribute(Qt::WA_OpaquePaintEvent, false);
    if (isPopUp(widget)) {
        widget->setAttribute(Qt::WA_TranslucentBackground);
        // The system's shadow would be rectangular.
        widget->setWindowFlag(Qt::NoDropShadowWindowHint);
    }
}

void Style::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                          const QWidget* widget) const {
    switch (element) {
    case PE_PanelLineEdit:
        return drawTextField(*painter, *option);
    case PE_IndicatorCheckBox:
        return drawCheckMark(*painter, *option);
    case PE_PanelMenu:
        return drawMenuGround(*painter, *option);
    // PE_PanelMenu draws the edge.
    case PE_FrameMenu:
        return;
    case PE_FrameFocusRect:
        if (qobject_cast<const QAbstractButton*>(widget))
            drawFocusRing(*painter, option->rect, Theme::cornerRadius);
        return;
    default:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void Style::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                        const QWidget* widget) const {
    switch (element) {
    case CE_Splitter:
        painter->fillRect(option->rect, theme().color(&Colors::line));
        return;
    case CE_MenuBarEmptyArea:
        painter->fillRect(option->rect, theme().color(&Colors::bar));
        return;
    case CE_MenuBarItem:
        if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option))
            drawMenuTitle(*painter, *item);
        return;
    case CE_FocusFrame:
        return drawFocusRing(*painter, option->rect, Theme::cornerRadius);
    case CE_ShapedFrame:
        if (isPopUp(widget)) return drawMenuGround(*painter, *option);
        return QProxyStyle::drawControl(element, option, painter, widget);
    case CE_MenuEmptyArea:
        return;
    case CE_MenuItem:
        if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option))
            drawMenuItem(*painter, *item, widget);
        return;
    case CE_PushButton:
        if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option)) {
            if (const auto* own = qobject_cast<const PushButton*>(widget))
                return drawPushButton(*painter, *button, *own);
            return drawDialogButton(*painter, *button, widget != nullptr && isDestructive(*widget));
        }
        return;
    case CE_ComboBoxLabel:
        if (const auto* box = qstyleoption_cast<const QStyleOptionComboBox*>(option))
            drawPopUpLabel(*painter, *box,
                           proxy()->subControlRect(CC_ComboBox, box, SC_ComboBoxEditField, widget));
        return;
    default:
        QProxyStyle::drawControl(element, option, painter, widget);
    }
}

void Style::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                               QPainter* painter, const QWidget* widget) const {
    if (control == CC_ComboBox) return drawPopUpButton(*painter, *option);
    if (control == CC_ToolButton)
        if (const auto* own = qobject_cast<const IconButton*>(widget))
            return drawIconButton(*painter, *static_cast<const QStyleOptionToolButton*>(option),
                                  *own);
    if (control == CC_ScrollBar)
        return drawScrollBar(
            *painter, *option,
            proxy()->subControlRect(CC_ScrollBar, option, SC_ScrollBarSlider, widget));
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

QIcon Style::standardIcon(StandardPixmap icon, const QStyleOption* option,
                          const QWidget* widget) const {
    // Every menu bar requests it, and the default would make Qt load all image format plugins.
    if (icon == SP_ToolBarHorizontalExtensionButton)
        return symbolPixmap(QStringLiteral("ellipsis.circle"), theme().color(&Colors::secondary),
                            theme().symbolSize(), 1);
    return QProxyStyle::standardIcon(icon, option, widget);
}

int Style::pixelMetric(PixelMetric metric, const QStyleOption* option,
                       const QWidget* widget) const {
    switch (metric) {
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
        return theme().scaled(15);
    case PM_CheckBoxLabelSpacing:
        return Theme::near;
    case PM_SplitterWidth:
        return 1;
    case PM_ScrollBarExtent:
        return 10;
    case PM_FocusFrameHMargin:
    case PM_FocusFrameVMargin:
        return 3;
    case PM_MenuPanelWidth:
        return 1;
    case PM_MenuVMargin:
        return 5;
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
        return 0;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int Style::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                     QStyleHintReturn* result) const {
    switch (hint) {
    case SH_ComboBox_Popup:
        return 1;
    // An X server without a compositing manager shows what is transparent as black.
    case SH_Menu_Mask:
        if (auto* mask = qstyleoption_cast<QStyleHintReturnMask*>(result)) {
            mask->region = menuShape(option->rect.size());
            return 1;
        }
        return 0;
    case SH_EtchDisabledText:
        return 0;
    case SH_UnderlineShortcut:
        return theme().showsMnemonics();
    // A click beside the handle scrolls to that position.
    case SH_ScrollBar_LeftClickAbsolutePosition:
        return 1;
    default:
        return QProxyStyle::styleHint(hint, option, widget, result);
    }
}

QSize Style::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                              const QWidget* widget) const {
    QSize result = QProxyStyle::sizeFromContents(type, option, size, widget);
    // Called only if needed, since it loads the font.
    const auto lineHeight = [option] { return option ? option->fontMetrics.height() : 0; };
    switch (type) {
    case CT_LineEdit:
    case CT_ComboBox:
        result.setHeight(std::max(theme().scaled(28), lineHeight() + 10));
        break;
    case CT_PushButton:
        result.rwidth() += 16;
        result =
            result.expandedTo({theme().scaled(84), std::max(theme().scaled(30), lineHeight() + 8)});
        break;
    case CT_MenuBarItem:
        result.setHeight(std::max(26, lineHeight() + 8));
        break;
    case CT_MenuItem:
        if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option)) {
            const bool separator = item->menuItemType == QStyleOptionMenuItem::Separator;
            // A pop-up button passes the width of the list as that of the text.
            const int wide = qobject_cast<const QComboBox*>(widget)
                                 ? item->fontMetrics.horizontalAdvance(item->text) + 40
                                 : result.width() + 20;
            result = {wide, separator ? 9 : std::max(24, lineHeight() + 8)};
        }
        break;
    default:
        break;
    }
    return result;
}

QRect Style::subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                            SubControl part, const QWidget* widget) const {
    if (control == CC_ComboBox && part == SC_ComboBoxEditField)
        return visualRect(option->direction, option->rect, option->rect.adjusted(9, 0, -28, 0));
    // The whole button opens the menu.
    if (control == CC_ToolButton && part == SC_ToolButtonMenu &&
        qobject_cast<const IconButton*>(widget))
        return {};
    if (control == CC_ScrollBar)
        if (const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option))
            return scrollBarPart(*slider, part);
    return QProxyStyle::subControlRect(control, option, part, widget);
}

} // namespace brevane
