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

    [[nodiscard]] const ShareDraft& currentDraft() const { return draft_; }

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
    void setSource(const QString& text);
    void finishStart(ServeMode mode, bool success, const std::string& output);
    void setDropHighlight(bool on);

    TailscaleService& service_;
    std::function<void(const QString&)> onAdded_;
    ShareDraft draft_;
    bool isAdding_ = false;
    QString errorMsg_;
    bool dropHighlight_ = false;

    Label* modeDescription_;
    PopUp* sourceType_;
    FormSection* sourceSection_;
    QLineEdit* source_;
    IconButton* browse_;
    QFileDialog* filePanel_ = nullptr; // Made by pickPath().
    Label* sourceHint_;
    QWidget* pathSection_;
    QLineEdit* urlPath_;
    Label* urlPathHint_;
    QCheckBox* background_;
    QWidget* previewSection_;
    SelectableText* preview_;
    QWidget* errorRow_;
    SelectableText* errorText_;
    PushButton* startButton_;
    QScrollArea* scroll_;
};

} // namespace brevane
