// SPDX-License-Identifier: MIT
#pragma once

#include "ShareDraft.h"
#include "Surface.h"
#include "TailscaleService.h"

#include <functional>
#include <string>

class QCheckBox;
class QFileDialog;
class QLineEdit;
class QScrollArea;

namespace brevane {

class FormSection;
class IconButton;
class Label;
class PopUp;
class PushButton;
class SelectableText;

/// The form that makes a new share.
class AddServeView : public Surface {
    Q_OBJECT
public:
    /// `onAdded` is called with the message that says that a share has been made. The service
    /// outlives the view.
    AddServeView(TailscaleService& service, std::function<void(const QString& message)> onAdded,
                 QWidget* parent = nullptr);

    /// Whether new shares are serves or funnels, which is chosen elsewhere.
    void setMode(ServeMode mode);

    /// Gives up part of the padding under the start button.
    void giveWay(bool on);
    static constexpr int givesWay = 12; ///< how much of it

    /// Gives the keyboard to the field that a share begins with.
    void focusSource();

    /// Opens the desktop's file chooser for a file or a folder. Returns at once.
    void pickPath();

    /// Makes the share, if there is enough to make one of and none is being made.
    void start();

    /// Shows what the service publishes now.
    void redraw();

    [[nodiscard]] const ShareDraft& currentDraft() const { return draft; }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void makeControls();
    [[nodiscard]] QWidget* makeSourceSection();
    [[nodiscard]] QWidget* makePathSection();
    [[nodiscard]] QWidget* makeOptionsSection();
    [[nodiscard]] QWidget* makePreview();
    [[nodiscard]] QWidget* makeErrorRow();
    void layOut();
    void setSourceType(SourceType type);
    void setSource(const QString& source);
    void finishStart(ServeMode mode, bool success, const std::string& output);
    void setDropHighlight(bool on);

    TailscaleService& service;
    std::function<void(const QString&)> onAdded;
    ShareDraft draft;
    bool isAdding = false;
    QString errorMsg;
    bool dropHighlight = false;

    Label* modeDescription;
    PopUp* sourceType;
    FormSection* sourceSection;
    QLineEdit* source;
    IconButton* browse;
    QFileDialog* filePanel = nullptr; // Made by pickPath().
    Label* sourceHint;
    QWidget* pathSection;
    QLineEdit* urlPath;
    Label* urlPathHint;
    QCheckBox* background;
    QWidget* previewSection;
    SelectableText* preview;
    QWidget* errorRow;
    SelectableText* errorText;
    PushButton* startButton;
    QScrollArea* scroll;
};

} // namespace brevane
