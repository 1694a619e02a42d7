// SPDX-License-Identifier: MIT
#include "AddServeView.h"

#include "Accessibility.h"
#include "DroppedPath.h"
#include "FormSection.h"
#include "FormTexts.h"
#include "IconButton.h"
#include "Label.h"
#include "Painting.h"
#include "PopUp.h"
#include "PushButton.h"
#include "QtText.h"
#include "ScrollPadding.h"
#include "SelectableText.h"
#include "SymbolView.h"

#include <QCheckBox>
#include <QDropEvent>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLayout>
#include <QLineEdit>
#include <QMimeData>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>
#include <limits>

namespace brevane {

namespace {

// As wide as its content needs to be, since it scrolls only up and down.
class FormScrollArea : public QScrollArea {
public:
    [[nodiscard]] QSize minimumSizeHint() const override {
        const auto* bar = verticalScrollBar();
        return {widget()->minimumSizeHint().width() + (bar->isVisible() ? bar->width() : 0),
                QScrollArea::minimumSizeHint().height()};
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == widget() && event->type() == QEvent::LayoutRequest) updateGeometry();
        return QScrollArea::eventFilter(watched, event);
    }
};

QLineEdit* makeField() {
    auto* field = new QLineEdit;
    field->setFont(theme().font(TextStyle::field));
    // The default limit (32767) would silently truncate a pasted text.
    field->setMaxLength(std::numeric_limits<int>::max());
    field->setTextMargins(5, 0, 5, 0);
    // The form handles a file that is dropped on a field.
    field->setAcceptDrops(false);
    QObject::connect(&theme(), &Theme::changed, field,
                     [field] { field->setFont(theme().font(TextStyle::field)); });
    return field;
}

} // namespace

AddServeView::AddServeView(QWidget* parent) : Surface(&Colors::window, 1, 0, parent) {
    setAcceptDrops(true);
    setFont(theme().font(TextStyle::body));
    connect(&theme(), &Theme::changed, this, [this] { setFont(theme().font(TextStyle::body)); });
    makeControls();
    layOut();
    connect(sourceType_, &PopUp::currentIndexChanged, this,
            [this](int index) { setSourceType(allSourceTypes[static_cast<std::size_t>(index)]); });
    connect(source_, &QLineEdit::textChanged, this, [this](const QString& text) {
        draft_.source = text.toStdString();
        redraw();
    });
    connect(urlPath_, &QLineEdit::textChanged, this, [this](const QString& text) {
        draft_.urlPath = text.toStdString();
        redraw();
    });
    connect(background_, &QCheckBox::toggled, this, [this](bool on) {
        draft_.background = on;
        redraw();
    });
    connect(browse_, &IconButton::clicked, this, &AddServeView::pickPath);
    connect(startButton_, &PushButton::clicked, this, &AddServeView::start);
    redraw();
}

void AddServeView::setMode(ServeMode mode) {
    draft_.mode = mode;
    redraw();
}

void AddServeView::setHost(const std::string& dnsName) {
    if (host_ == dnsName) return;
    host_ = dnsName;
    redraw();
}

void AddServeView::setSourceType(SourceType type) {
    draft_.sourceType = type;
    redraw();
}

void AddServeView::setSource(const QString& text) {
    source_->setText(text);
}

void AddServeView::focusSource() {
    source_->setFocus();
}

void AddServeView::giveWay(bool on) {
    layout()->setContentsMargins(0, 0, 0, Theme::formPadding - (on ? givesWay : 0));
}

void AddServeView::pickPath() {
    const bool forFolder = draft_.sourceType == SourceType::directory;
    if (filePanel_ == nullptr) {
        // Not deleted on close: its message boxes and menus run nested event loops, are on the
        // stack and are its children, so deleting it would free them.
        filePanel_ = new QFileDialog(this);
        // Creates and renames nothing, not even folders.
        filePanel_->setOption(QFileDialog::ReadOnly);
        connect(filePanel_, &QFileDialog::fileSelected, this, &AddServeView::setSource);
    }
    filePanel_->setFileMode(forFolder ? QFileDialog::Directory : QFileDialog::ExistingFile);
    filePanel_->setOption(QFileDialog::ShowDirsOnly, forFolder);
    // Drop what was typed last, which may be a file while a folder is asked for.
    if (auto* name = filePanel_->findChild<QLineEdit*>()) name->clear();
    filePanel_->open();
}

void AddServeView::start() {
    if (isAdding_ || !canStart(draft_)) return;
    errorMsg_.clear();
    isAdding_ = true;
    redraw();
    Q_EMIT startRequested(draft_);
}

void AddServeView::finishStart(bool success, const std::string& output) {
    isAdding_ = false;
    if (success)
        source_->clear();
    else
        errorMsg_ = shownText(startFailedMessage(output));
    redraw();
    if (errorMsg_.isEmpty()) return;
    showAndAnnounce(*errorRow_);
    // Its position is known only after the next layout pass.
    QMetaObject::invokeMethod(
        this, [this] { scroll_->ensureWidgetVisible(errorRow_); }, Qt::QueuedConnection);
}

void AddServeView::redraw() {
    const SourceTexts texts = sourceTexts(draft_.sourceType);
    const bool isFunnel = draft_.mode == ServeMode::funnel;

    modeDescription_->setPlainText(toQString(brevane::modeDescription(draft_.mode)));
    sourceSection_->setTitle(toQString(texts.fieldLabel));
    changeAccessibleName(*source_, toQString(texts.fieldLabel));
    source_->setPlaceholderText(toQString(texts.placeholder));
    browse_->setVisible(isServedByUs(draft_.sourceType));
    sourceHint_->setPlainText(toQString(texts.hint));
    changeAccessibleDescription(*source_, sourceHint_->text());
    pathSection_->setVisible(draft_.sourceType != SourceType::tcpForward);
    urlPathHint_->setPlainText(toQString(brevane::urlPathHint(draft_.sourceType)));
    changeAccessibleDescription(*urlPath_, urlPathHint_->text());

    previewSection_->setVisible(!draft_.source.empty());
    if (!draft_.source.empty()) preview_->setShownText(shownText(commandPreview(draft_, host_)));
    if (errorMsg_.isEmpty()) errorRow_->hide();
    changeAccessibleName(*errorRow_, errorMsg_);
    errorText_->setShownText(errorMsg_);

    startButton_->setText(isAdding_ ? QStringLiteral("Starting…")
                                    : toQString(startLabel(draft_.mode)));
    startButton_->setSymbol(isFunnel ? QStringLiteral("globe") : QStringLiteral("lock.shield"));
    startButton_->setTint(isFunnel ? &Colors::orangeFill : &Colors::blueFill);
    startButton_->setBusy(isAdding_);
    startButton_->setEnabled(!isAdding_ && canStart(draft_));
}

void AddServeView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        start();
    else
        Surface::keyPressEvent(event);
}

void AddServeView::dragEnterEvent(QDragEnterEvent* event) {
    if (!droppedPath(*event->mimeData())) return;
    event->acceptProposedAction();
    setDropHighlight(true);
}

void AddServeView::dragLeaveEvent(QDragLeaveEvent*) {
    setDropHighlight(false);
}

void AddServeView::dropEvent(QDropEvent* event) {
    setDropHighlight(false);
    const auto dropped = droppedPath(*event->mimeData());
    if (!dropped) return;
    event->acceptProposedAction();
    const auto type = dropped->isFolder ? SourceType::directory : SourceType::file;
    sourceType_->setCurrentIndex(
        static_cast<int>(std::ranges::find(allSourceTypes, type) - allSourceTypes.begin()));
    setSource(dropped->path);
}

void AddServeView::setDropHighlight(bool on) {
    dropHighlight_ = on;
    update();
}

void AddServeView::paintEvent(QPaintEvent* event) {
    Surface::paintEvent(event);
    if (!dropHighlight_) return;
    QPainter painter(this);
    drawRoundedBox(painter, QRectF(rect()).adjusted(6, 6, -6, -6), Theme::cornerRadius,
                   Colors::thinned(theme().color(&Colors::blueTint), 0.06),
                   theme().color(&Colors::focus), 2);
}

// The order of creation is the focus order.
void AddServeView::makeControls() {
    modeDescription_ = makeCaption();
    sourceType_ = new PopUp;
    for (const SourceType type : allSourceTypes)
        sourceType_->addItem(toQString(rawValue(type)));
    sourceType_->setAccessibleName(QStringLiteral("Source Type"));
    source_ = makeField();
    browse_ = new IconButton(QStringLiteral("folder.badge.plus"), QStringLiteral("Browse…"),
                             &Colors::text);
    browse_->setBordered(true);
    sourceHint_ = makeCaption();
    urlPath_ = makeField();
    urlPath_->setText(toQString(draft_.urlPath));
    urlPath_->setAccessibleName(QStringLiteral("URL Path (optional)"));
    urlPathHint_ = makeCaption();
    background_ = new QCheckBox(QStringLiteral("Run in background"));
    background_->setChecked(draft_.background);
    preview_ = new SelectableText(QStringLiteral("Preview"), TextStyle::code, &Colors::text, 6);
    errorText_ =
        new SelectableText(QStringLiteral("Error"), TextStyle::caption, &Colors::orangeText, 12);
    startButton_ = new PushButton(PushButton::Kind::prominent);
}

QWidget* AddServeView::makeSourceSection() {
    auto* section = new FormSection;
    sourceSection_ = section;
    auto* row = new QHBoxLayout;
    row->setSpacing(6);
    row->addWidget(source_, 1);
    row->addWidget(browse_);
    section->add(row);
    section->add(sourceHint_);
    return section;
}

QWidget* AddServeView::makePathSection() {
    auto* section = new FormSection(QStringLiteral("URL Path (optional)"));
    section->add(urlPath_);
    section->add(urlPathHint_);
    return section;
}

QWidget* AddServeView::makeOptionsSection() {
    auto* section = new FormSection(QStringLiteral("Options"));
    auto* caption = makeCaption(QStringLiteral("Share persists after this window closes"));
    background_->setAccessibleDescription(caption->text());
    // Indented to the check box's text.
    caption->setIndent(0);
    caption->setContentsMargins(theme().scaled(15) + Theme::near, 0, 0, 0);
    auto* titled = new QVBoxLayout;
    titled->setSpacing(2);
    titled->addWidget(background_);
    titled->addWidget(caption);
    section->add(titled);
    return section;
}

QWidget* AddServeView::makePreview() {
    auto* section = new QWidget;
    auto* column = new QVBoxLayout(section);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    column->addWidget(new Label(TextStyle::section, &Colors::secondary, QStringLiteral("Preview")));
    auto* box = new Surface(&Colors::blueTint, 0.09, 6);
    auto* inside = new QVBoxLayout(box);
    inside->setContentsMargins(9, 8, 9, 8);
    inside->addWidget(preview_);
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
    line->addWidget(errorText_, 1);
    return row;
}

void AddServeView::layOut() {
    auto* typeSection = new FormSection(QStringLiteral("Source Type"));
    typeSection->addNamed(sourceType_);
    pathSection_ = makePathSection();
    previewSection_ = makePreview();
    errorRow_ = makeErrorRow();
    // Hidden while empty, which also avoids measuring them.
    previewSection_->hide();
    errorRow_->hide();

    auto* content = new QWidget;
    auto* form = new QVBoxLayout(content);
    constexpr int bottom = Theme::tight;
    form->setContentsMargins(Theme::formPadding, Theme::formPadding, Theme::formPadding, bottom);
    form->setSpacing(Theme::apart);
    form->addWidget(modeDescription_);
    for (auto* section : {static_cast<QWidget*>(typeSection), makeSourceSection(), pathSection_,
                          makeOptionsSection(), previewSection_, errorRow_})
        form->addWidget(section);
    form->addStretch();

    scroll_ = new FormScrollArea;
    scroll_->setWidgetResizable(true);
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll_->setFocusPolicy(Qt::NoFocus);
    scroll_->setWidget(content);
    content->setAutoFillBackground(false);
    keepScrollBarInPadding(*scroll_, *form, Theme::formPadding);
    auto* edge = Surface::makeDivider();
    QSizePolicy keepsItsPlace = edge->sizePolicy();
    keepsItsPlace.setRetainSizeWhenHidden(true);
    edge->setSizePolicy(keepsItsPlace);
    edge->hide();
    connect(scroll_->verticalScrollBar(), &QScrollBar::rangeChanged, edge,
            [edge](int, int maximum) { edge->setVisible(maximum > 0); });
    scroll_->viewport()->setAutoFillBackground(false);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, Theme::formPadding);
    column->setSpacing(0);
    column->addWidget(scroll_, 1);
    column->addWidget(edge);
    auto* footer = new QVBoxLayout;
    footer->setContentsMargins(Theme::formPadding, Theme::near + 2, Theme::formPadding, 0);
    footer->addWidget(startButton_);
    column->addLayout(footer);
}

} // namespace brevane
