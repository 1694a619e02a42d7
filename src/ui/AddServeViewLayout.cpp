// SPDX-License-Identifier: MIT
#include "AddServeView.h"

#include "Accessibility.h"
#include "FormSection.h"
#include "IconButton.h"
#include "Label.h"
#include "PopUp.h"
#include "PushButton.h"
#include "QtText.h"
#include "ScrollPadding.h"
#include "SelectableText.h"
#include "SymbolView.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <limits>

namespace brevane {

namespace {

QLineEdit* makeField() {
    auto* field = new QLineEdit;
    field->setFont(theme().font(TextStyle::field));
    // The usual limit would cut a pasted text without a word.
    field->setMaxLength(std::numeric_limits<int>::max());
    field->setTextMargins(5, 0, 5, 0);
    // A file dropped on a field is for the form, which knows what to make of it.
    field->setAcceptDrops(false);
    QObject::connect(&theme(), &Theme::changed, field,
                     [field] { field->setFont(theme().font(TextStyle::field)); });
    return field;
}

} // namespace

// The controls are made in the order in which they are read, which is the order of the focus.
void AddServeView::makeControls() {
    modeDescription = makeCaption();
    sourceType = new PopUp;
    for (const SourceType type : allSourceTypes)
        sourceType->addItem(toQString(rawValue(type)));
    sourceType->setAccessibleName(tr("Source Type"));
    source = makeField();
    browse = new IconButton(QStringLiteral("folder.badge.plus"), tr("Browse…"), &Colors::text);
    browse->setBordered(true);
    sourceHint = makeCaption();
    urlPath = makeField();
    urlPath->setText(toQString(draft.urlPath));
    urlPath->setAccessibleName(tr("URL Path (optional)"));
    urlPathHint = makeCaption();
    background = new QCheckBox(tr("Run in background"));
    background->setChecked(draft.background);
    preview = new SelectableText(tr("Preview"), TextStyle::code, &Colors::text, 6);
    errorText = new SelectableText(tr("Error"), TextStyle::caption, &Colors::orangeText, 12);
    startButton = new PushButton(PushButton::Kind::prominent);
}

QWidget* AddServeView::makeSourceSection() {
    auto* section = new FormSection;
    sourceSection = section;
    auto* row = new QHBoxLayout;
    row->setSpacing(6);
    row->addWidget(source, 1);
    row->addWidget(browse);
    section->add(row);
    section->add(sourceHint);
    return section;
}

QWidget* AddServeView::makePathSection() {
    auto* section = new FormSection(tr("URL Path (optional)"));
    section->add(urlPath);
    section->add(urlPathHint);
    return section;
}

QWidget* AddServeView::makeOptionsSection() {
    auto* section = new FormSection(tr("Options"));
    auto* caption = makeCaption(tr("Share persists after this window closes"));
    background->setAccessibleDescription(caption->text());
    // Under the box's title, not under the box.
    caption->setIndent(0);
    caption->setContentsMargins(theme().scaled(15) + Theme::near, 0, 0, 0);
    auto* titled = new QVBoxLayout;
    titled->setSpacing(2);
    titled->addWidget(background);
    titled->addWidget(caption);
    section->add(titled);
    return section;
}

QWidget* AddServeView::makePreview() {
    auto* section = new QWidget;
    auto* column = new QVBoxLayout(section);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    column->addWidget(new Label(TextStyle::section, &Colors::secondary, tr("Preview")));
    auto* box = new Surface(&Colors::blueTint, 0.09, 6);
    auto* inside = new QVBoxLayout(box);
    inside->setContentsMargins(9, 8, 9, 8);
    inside->addWidget(preview);
    column->addWidget(box);
    return section;
}

QWidget* AddServeView::makeErrorRow() {
    auto* row = new QWidget;
    setAccessibleRole(*row, QAccessible::Notification);
    auto* line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(6);
    line->addWidget(
        new SymbolView(QStringLiteral("exclamationmark.triangle.fill"), &Colors::orange, 11), 0,
        Qt::AlignTop);
    line->addWidget(errorText, 1);
    return row;
}

void AddServeView::layOut() {
    auto* typeSection = new FormSection(tr("Source Type"));
    typeSection->addNamed(sourceType);
    pathSection = makePathSection();
    previewSection = makePreview();
    errorRow = makeErrorRow();
    // Nothing is measured for what has nothing to show yet.
    previewSection->hide();
    errorRow->hide();

    auto* content = new QWidget;
    auto* form = new QVBoxLayout(content);
    form->setContentsMargins(Theme::formPadding, Theme::formPadding, Theme::formPadding,
                             Theme::near);
    form->setSpacing(Theme::apart);
    form->addWidget(modeDescription);
    for (auto* section : {static_cast<QWidget*>(typeSection), makeSourceSection(), pathSection,
                          makeOptionsSection(), previewSection, errorRow})
        form->addWidget(section);
    form->addStretch();

    scroll = new QScrollArea;
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidget(content);
    content->setAutoFillBackground(false);
    keepScrollBarInPadding(*scroll, *form, Theme::formPadding);
    auto* edge = Surface::makeDivider();
    QSizePolicy keepsItsPlace = edge->sizePolicy();
    keepsItsPlace.setRetainSizeWhenHidden(true);
    edge->setSizePolicy(keepsItsPlace);
    edge->hide();
    connect(scroll->verticalScrollBar(), &QScrollBar::rangeChanged, edge,
            [edge](int, int maximum) { edge->setVisible(maximum > 0); });
    scroll->viewport()->setAutoFillBackground(false);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, Theme::formPadding);
    column->setSpacing(0);
    column->addWidget(scroll, 1);
    column->addWidget(edge);
    auto* footer = new QVBoxLayout;
    footer->setContentsMargins(Theme::formPadding, Theme::near + 2, Theme::formPadding, 0);
    footer->addWidget(startButton);
    column->addLayout(footer);
}

} // namespace brevane
