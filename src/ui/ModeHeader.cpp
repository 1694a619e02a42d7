// SPDX-License-Identifier: MIT
#include "ModeHeader.h"

#include "Accessibility.h"
#include "FormTexts.h"
#include "Label.h"
#include "QtText.h"
#include "SegmentedControl.h"

#include <QVBoxLayout>

namespace brevane {

ModeHeader::ModeHeader(QWidget* parent)
    : Surface(&Colors::window, 1, 0, parent),
      caption_(new Label(TextStyle::caption, &Colors::secondary)) {
    QStringList labels;
    for (const ServeMode mode : allServeModes)
        labels << toQString(rawValue(mode));
    auto* picker = new SegmentedControl(labels);
    setAccessibleRole(*picker, QAccessible::Grouping);
    picker->setAccessibleName(QStringLiteral("Mode"));
    connect(picker, &SegmentedControl::currentIndexChanged, this,
            [this](int index) { choose(allServeModes[static_cast<std::size_t>(index)]); });
    caption_->setWordWrap(true);
    caption_->setAlignment(Qt::AlignHCenter);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(Theme::headerPadding, Theme::headerPadding, Theme::headerPadding,
                               Theme::headerPadding);
    column->setSpacing(6);
    column->addStretch();
    column->addWidget(picker, 0, Qt::AlignHCenter);
    column->addWidget(caption_);
    column->addStretch();
    choose(ServeMode::serve);
}

void ModeHeader::choose(ServeMode mode) {
    chosen_ = mode;
    caption_->setPlainText(toQString(modeCaption(mode)));
    Q_EMIT modeChanged(mode);
}

} // namespace brevane
