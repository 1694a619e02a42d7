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
#include "SelectableText.h"

#include <QCheckBox>
#include <QDropEvent>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLayout>
#include <QLineEdit>
#include <QMimeData>
#include <QPainter>
#include <QPointer>
#include <QScrollArea>

#include <algorithm>
#include <utility>

namespace brevane {

AddServeView::AddServeView(TailscaleService& ownService,
                           std::function<void(const QString&)> addedAction, QWidget* parent)
    : Surface(&Colors::window, 1, 0, parent), service(ownService), onAdded(std::move(addedAction)) {
    setAcceptDrops(true);
    setFont(theme().font(TextStyle::body));
    connect(&theme(), &Theme::changed, this, [this] { setFont(theme().font(TextStyle::body)); });
    makeControls();
    layOut();
    connect(sourceType, &PopUp::currentIndexChanged, this,
            [this](int index) { setSourceType(allSourceTypes[static_cast<std::size_t>(index)]); });
    connect(source, &QLineEdit::textChanged, this, [this](const QString& text) {
        draft.source = text.toStdString();
        redraw();
    });
    connect(urlPath, &QLineEdit::textChanged, this, [this](const QString& text) {
        draft.urlPath = text.toStdString();
        redraw();
    });
    connect(background, &QCheckBox::toggled, this, [this](bool on) {
        draft.background = on;
        redraw();
    });
    connect(browse, &IconButton::clicked, this, &AddServeView::pickPath);
    connect(startButton, &PushButton::clicked, this, &AddServeView::start);
    redraw();
}

void AddServeView::setMode(ServeMode mode) {
    draft.mode = mode;
    redraw();
}

void AddServeView::setSourceType(SourceType type) {
    draft.sourceType = type;
    redraw();
}

void AddServeView::setSource(const QString& text) {
    source->setText(text);
}

void AddServeView::focusSource() {
    source->setFocus();
}

void AddServeView::giveWay(bool on) {
    layout()->setContentsMargins(0, 0, 0, Theme::formPadding - (on ? givesWay : 0));
}

void AddServeView::pickPath() {
    const bool forFolder = draft.sourceType == SourceType::directory;
    if (filePanel == nullptr) {
        // Kept, since its own messages and menus are its children on the stack of an event loop
        // that they run: deleting it when it closes would free those.
        filePanel = new QFileDialog(this);
        // Nothing is made or renamed here, folders included.
        filePanel->setOption(QFileDialog::ReadOnly);
        connect(filePanel, &QFileDialog::fileSelected, this, &AddServeView::setSource);
    }
    filePanel->setFileMode(forFolder ? QFileDialog::Directory : QFileDialog::ExistingFile);
    filePanel->setOption(QFileDialog::ShowDirsOnly, forFolder);
    // Not what was typed last, which may be a file where a folder is asked for.
    if (auto* name = filePanel->findChild<QLineEdit*>()) name->clear();
    filePanel->open();
}

void AddServeView::start() {
    if (isAdding || !canStart(draft)) return;
    errorMsg.clear();
    isAdding = true;
    redraw();
    service.add(
        draft.mode, draft.sourceType, draft.source, mountPathWord(draft), draft.background,
        [view = QPointer(this), mode = draft.mode](bool success, const std::string& output) {
            if (view) view->finishStart(mode, success, output);
        });
}

void AddServeView::finishStart(ServeMode mode, bool success, const std::string& output) {
    isAdding = false;
    if (success) {
        onAdded(toQString(startedMessage(mode)));
        source->clear();
    } else {
        errorMsg = toQString(startFailedMessage(output));
    }
    redraw();
    if (errorMsg.isEmpty()) return;
    announce(*errorRow);
    // Its place is not known before the form has been laid out anew.
    QMetaObject::invokeMethod(
        this, [this] { scroll->ensureWidgetVisible(errorRow); }, Qt::QueuedConnection);
}

void AddServeView::redraw() {
    const SourceTexts texts = sourceTexts(draft.sourceType);
    const bool isFunnel = draft.mode == ServeMode::funnel;
    const bool hasPath =
        draft.sourceType == SourceType::file || draft.sourceType == SourceType::directory;

    modeDescription->setPlainText(toQString(brevane::modeDescription(draft.mode)));
    sourceSection->setTitle(toQString(texts.fieldLabel));
    source->setAccessibleName(toQString(texts.fieldLabel));
    source->setPlaceholderText(toQString(texts.placeholder));
    browse->setVisible(hasPath);
    sourceHint->setPlainText(toQString(texts.hint));
    source->setAccessibleDescription(sourceHint->text());
    pathSection->setVisible(draft.sourceType != SourceType::tcpForward);
    urlPathHint->setPlainText(toQString(brevane::urlPathHint(draft.sourceType)));
    urlPath->setAccessibleDescription(urlPathHint->text());

    previewSection->setVisible(!draft.source.empty());
    if (!draft.source.empty())
        preview->setShownText(toQString(commandPreview(draft, service.dnsName.get())));
    errorRow->setVisible(!errorMsg.isEmpty());
    errorRow->setAccessibleName(errorMsg);
    errorText->setShownText(errorMsg);

    startButton->setText(isAdding ? tr("Starting…") : toQString(startLabel(draft.mode)));
    startButton->setSymbol(isFunnel ? QStringLiteral("globe") : QStringLiteral("lock.shield"));
    startButton->setTint(isFunnel ? &Colors::orangeFill : &Colors::blueFill);
    startButton->setBusy(isAdding);
    startButton->setEnabled(!isAdding && canStart(draft));
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
    sourceType->setCurrentIndex(
        static_cast<int>(std::ranges::find(allSourceTypes, type) - allSourceTypes.begin()));
    setSource(dropped->path);
}

void AddServeView::setDropHighlight(bool on) {
    dropHighlight = on;
    update();
}

void AddServeView::paintEvent(QPaintEvent* event) {
    Surface::paintEvent(event);
    if (!dropHighlight) return;
    QPainter painter(this);
    drawRoundedBox(painter, QRectF(rect()).adjusted(6, 6, -6, -6), Theme::cornerRadius,
                   Colors::thinned(theme().color(&Colors::blueTint), 0.06),
                   theme().color(&Colors::focus), 2);
}

} // namespace brevane
