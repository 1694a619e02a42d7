// SPDX-License-Identifier: MIT
#pragma once

#include "ShareDraft.h"
#include "Surface.h"

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
    explicit AddServeView(QWidget* parent = nullptr);

    /// Sets the machine's name, which the preview shows.
    void setHost(const std::string& dnsName);

    /// Selects whether a new share is a serve or a funnel.
    void setMode(ServeMode mode);

    /// Reduces the padding under the start button by `givesWay`, or restores it.
    void giveWay(bool on);
    static constexpr int givesWay = 12;

    /// Gives the focus to the source field.
    void focusSource();

    /// Opens the desktop's file chooser for a file or a folder. Does not block.
    void pickPath();

    /// Asks for the share, if the draft is complete and none is being made.
    void start();

    /// Shows that the share has been made, or the error that `output` describes.
    void finishStart(bool success, const std::string& output);

    [[nodiscard]] const ShareDraft& currentDraft() const { return draft_; }

Q_SIGNALS:
    /// Nothing else is asked for until `finishStart()`.
    void startRequested(const brevane::ShareDraft& draft);

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
    void redraw();
    void setSourceType(SourceType type);
    void setSource(const QString& text);
    void setDropHighlight(bool on);

    ShareDraft draft_;
    std::string host_;
    bool isAdding_ = false;
    QString errorMsg_;
    bool dropHighlight_ = false;

    Label* modeDescription_;
    PopUp* sourceType_;
    FormSection* sourceSection_;
    QLineEdit* source_;
    IconButton* browse_;
    QFileDialog* filePanel_ = nullptr; // created by the first pickPath()
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
