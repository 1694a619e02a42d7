// SPDX-License-Identifier: MIT
#include "WindowTest.h"

#include "AddServeView.h"
#include "FormTexts.h"

#include <QClipboard>
#include <QDropEvent>
#include <QFileDialog>
#include <QMimeData>
#include <QPointer>
#include <QTextEdit>
#include <QTimer>

#include <filesystem>

namespace brevane::test {
namespace {

class AddServeViewTest : public WindowTest {
protected:
    void choose(SourceType type) {
        auto* picker = find<PopUp>("Source Type");
        picker->setCurrentIndex(picker->findText(toQString(rawValue(type))));
        settle();
    }
    QLineEdit* source() { return form().findChildren<QLineEdit*>()[0]; }
    QLineEdit* urlPath() { return form().findChildren<QLineEdit*>()[1]; }
    AddServeView& form() { return *view->findChild<AddServeView*>(); }
    QString preview() {
        const auto* text = find<QTextEdit>("Preview");
        return text ? text->toPlainText() : QString();
    }
    std::vector<std::string> changes() {
        auto all = commands();
        std::erase_if(all, [](const std::string& line) { return line.ends_with("--json"); });
        return all;
    }
    void drop(const QString& path) {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(path)});
        const QPoint where(20, 20);
        QDragEnterEvent enter(where, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        static_cast<QObject&>(form()).event(&enter);
        if (!enter.isAccepted()) return;
        QDropEvent dropped(where, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        static_cast<QObject&>(form()).event(&dropped);
        settle();
    }
};

TEST_F(AddServeViewTest, WithoutASourceThereIsNoPreviewAndNothingToStart) {
    EXPECT_EQ(find<QTextEdit>("Preview"), nullptr);
    EXPECT_FALSE(button("Start Serve")->isEnabled());
    source()->setText("3000");
    settle();
    EXPECT_EQ(preview(), "tailscale serve --bg --yes 3000");
    EXPECT_TRUE(button("Start Serve")->isEnabled());
    source()->clear();
    settle();
    EXPECT_EQ(find<QTextEdit>("Preview"), nullptr);
    EXPECT_FALSE(button("Start Serve")->isEnabled());
}

TEST_F(AddServeViewTest, TheSourcesStandInTheirOrder) {
    const auto* picker = find<PopUp>("Source Type");
    std::vector<std::string> labels;
    for (int i = 0; i < picker->count(); ++i)
        labels.push_back(picker->itemText(i).toStdString());
    EXPECT_EQ(labels,
              (std::vector<std::string>{"Port / App URL", "File", "Directory",
                                        "HTTPS (self-signed)", "Plain Text", "TCP Forward"}));
}

TEST_F(AddServeViewTest, EverySourceHasItsOwnLabelPlaceholderAndHint) {
    for (const SourceType type : allSourceTypes) {
        choose(type);
        const SourceTexts texts = sourceTexts(type);
        EXPECT_TRUE(shows(toQString(texts.fieldLabel).toUpper())) << rawValue(type);
        EXPECT_EQ(source()->accessibleName(), toQString(texts.fieldLabel));
        EXPECT_EQ(source()->placeholderText(), toQString(texts.placeholder));
        EXPECT_TRUE(shows(toQString(texts.hint))) << rawValue(type);
    }
}

TEST_F(AddServeViewTest, OnlyFilesAndFoldersCanBeBrowsedFor) {
    for (const SourceType type : allSourceTypes) {
        choose(type);
        const bool isPath = type == SourceType::file || type == SourceType::directory;
        EXPECT_EQ(button("Browse…") != nullptr, isPath) << rawValue(type);
    }
}

TEST_F(AddServeViewTest, OnlyATcpForwardHasNoUrlPath) {
    for (const SourceType type : allSourceTypes) {
        choose(type);
        EXPECT_EQ(urlPath()->isVisible(), type != SourceType::tcpForward) << rawValue(type);
    }
}

TEST_F(AddServeViewTest, ChangingTheSourceTypeKeepsWhatWasTyped) {
    source()->setText("3000");
    urlPath()->setText("/api");
    choose(SourceType::text);
    choose(SourceType::tcpForward);
    EXPECT_EQ(source()->text(), "3000");
    EXPECT_EQ(preview(), "tailscale serve --bg --set-path /api --yes --tcp=3000 localhost:3000");
}

TEST_F(AddServeViewTest, ThePreviewFollowsModePathAndBackground) {
    source()->setText("3000");
    urlPath()->setText("/api");
    find<QCheckBox>("Run in background")->click();
    press("Funnel");
    EXPECT_EQ(preview(), "tailscale funnel --set-path /api --yes 3000");
}

TEST_F(AddServeViewTest, ThePreviewOfAFileFollowsTheMachinesName) {
    choose(SourceType::file);
    source()->setText("/tmp/a/report.pdf");
    service->dnsName.set("h.tail.ts.net");
    settle();
    EXPECT_EQ(preview(), "Serves /tmp/a/report.pdf\nat https://h.tail.ts.net/report.pdf");
}

TEST_F(AddServeViewTest, TheWholeRoundOfASuccessfulStart) {
    changesDo("while [ ! -e \"$0.go\" ]; do sleep 0.01; done");
    source()->setText(" 3000");
    urlPath()->setText("/api");
    settle();
    press("Start Serve");
    EXPECT_NE(button("Starting…"), nullptr);
    EXPECT_FALSE(button("Starting…")->isEnabled());
    // Meanwhile neither a second press nor Return starts another one.
    QTest::keyClick(source(), Qt::Key_Return);
    EXPECT_TRUE(shows("Busy"));
    writeFile(folder / "tailscale.go", "");
    ASSERT_TRUE(until([&] { return shows("Serve started successfully"); }));
    EXPECT_EQ(changes(), std::vector<std::string>{"serve --bg --set-path /api --yes 3000"});
    EXPECT_EQ(source()->text(), "");
    EXPECT_EQ(urlPath()->text(), "/api");
    EXPECT_TRUE(find<QCheckBox>("Run in background")->isChecked());
    EXPECT_NE(button("Start Serve"), nullptr);
}

TEST_F(AddServeViewTest, AFunnelIsStartedAndNamedAsOne) {
    press("Funnel");
    source()->setText("3000");
    settle();
    press("Start Funnel");
    ASSERT_TRUE(until([&] { return shows("Funnel started successfully"); }));
    EXPECT_EQ(changes(), std::vector<std::string>{"funnel --bg --yes 3000"});
}

TEST_F(AddServeViewTest, ANameIsOneWordWhateverItHolds) {
    // One argument per line, between separators that occur in no name.
    changesDo("printf '%s\\n--\\n' \"$@\" > \"$0.arguments\"");
    choose(SourceType::file);
    for (const std::string name :
         {"report.pdf", "my report.pdf", "$(touch x).pdf", "`touch x`.pdf", "it's; touch x #.pdf",
          "\"a\" > x", "a\\b", "*", "[a-z]?{1,2}", "~", "=zsh", "#a", "!!", "a\tb\nc", "<x>|y&&z",
          "Grüße 🎈.pdf", "^a", "$HOME"}) {
        SCOPED_TRACE(name);
        writeFile(folder / name, "x");
        source()->setText(toQString((folder / name).string()));
        settle();
        const QString before = preview();
        EXPECT_TRUE(before.endsWith("/" + toQString(name)));
        press("Start Serve");
        ASSERT_TRUE(until([&] { return source()->text().isEmpty(); }));
        const auto arguments = readFile(folder / "tailscale.arguments");
        EXPECT_TRUE(arguments.starts_with("serve\n--\n--bg\n--\n--set-path\n--\n/" + name +
                                          "\n--\n--yes\n--\n"))
            << arguments;
        EXPECT_FALSE(std::filesystem::exists("x"));
    }
}

TEST_F(AddServeViewTest, ATypedPathIsOneWordWhateverItHolds) {
    changesDo("printf '%s\\n--\\n' \"$@\" > \"$0.arguments\"");
    urlPath()->setText("/my $(touch x) path;");
    for (const SourceType type : {SourceType::port, SourceType::directory}) {
        choose(type);
        source()->setText(type == SourceType::port ? "3000" : toQString(folder.path.string()));
        settle();
        press("Start Serve");
        ASSERT_TRUE(until([&] { return source()->text().isEmpty(); }));
        const auto arguments = readFile(folder / "tailscale.arguments");
        EXPECT_TRUE(arguments.starts_with("serve\n--\n--bg\n--\n--set-path\n--\n"
                                          "/my $(touch x) path;\n--\n--yes\n--\n"))
            << arguments;
        EXPECT_FALSE(std::filesystem::exists("x"));
    }
}

TEST_F(AddServeViewTest, ALongTextIsTakenWhole) {
    const QString text(100'000, 'a');
    choose(SourceType::text);
    for (QLineEdit* field : {source(), urlPath()}) {
        field->setText(text);
        EXPECT_EQ(field->text().size(), text.size());
        field->clear();
        QApplication::clipboard()->setText(text);
        field->paste();
        EXPECT_EQ(field->text().size(), text.size());
        field->insert("b");
        EXPECT_EQ(field->text().size(), text.size() + 1);
    }
    EXPECT_EQ(form().currentDraft().source.size(), 100'001U);
    EXPECT_EQ(form().currentDraft().urlPath.size(), 100'001U);
    urlPath()->setText("/");
    EXPECT_TRUE(preview().startsWith("tailscale serve --bg --yes text:aaa"));
    EXPECT_TRUE(preview().endsWith("a… and 90.0 kB more"));
}

TEST_F(AddServeViewTest, LineBreaksInAPastedTextStay) {
    choose(SourceType::text);
    QApplication::clipboard()->setText("one\ntwo\n");
    source()->paste();
    settle();
    EXPECT_EQ(form().currentDraft().source, "one\ntwo\n");
    EXPECT_EQ(preview(), "tailscale serve --bg --yes text:one\ntwo\n");
}

TEST_F(AddServeViewTest, AFailedStartWithEmptyOutputShowsTheFixedMessage) {
    changesDo("exit 1");
    source()->setText("3000");
    settle();
    press("Start Serve");
    ASSERT_TRUE(until([&] {
        return shows(
            "Failed. Make sure Tailscale is running and you have Funnel permission in your "
            "tailnet policy.");
    }));
    EXPECT_EQ(source()->text(), "3000");
}

TEST_F(AddServeViewTest, AFailedStartWithOutputShowsTheOutputUntilTheNextStart) {
    changesDo("echo port taken; exit 1");
    source()->setText("3000");
    settle();
    press("Start Serve");
    ASSERT_TRUE(until([&] { return button("Start Serve") != nullptr; }));
    const auto errorShown = [&] {
        for (const auto* text : form().findChildren<QTextEdit*>())
            if (text->isVisible() && text->toPlainText() == "port taken") return true;
        return false;
    };
    EXPECT_TRUE(errorShown());
    changesDo("while [ ! -e \"$0.go\" ]; do sleep 0.01; done");
    press("Start Serve");
    EXPECT_FALSE(errorShown());
    writeFile(folder / "tailscale.go", "");
    EXPECT_TRUE(until([&] { return shows("Serve started successfully"); }));
}

TEST_F(AddServeViewTest, ReturnStartsFromAnyField) {
    for (QWidget* field : {static_cast<QWidget*>(source()), static_cast<QWidget*>(urlPath()),
                           static_cast<QWidget*>(find<PopUp>("Source Type")),
                           static_cast<QWidget*>(find<QCheckBox>("Run in background")),
                           static_cast<QWidget*>(button("Start Serve"))}) {
        source()->setText("3000");
        settle();
        const auto before = changes().size();
        field->setFocus();
        QTest::keyClick(field, Qt::Key_Return);
        ASSERT_TRUE(until([&] { return changes().size() == before + 1; }))
            << field->accessibleName().toStdString();
        ASSERT_TRUE(until([&] { return source()->text().isEmpty(); }));
    }
}

TEST_F(AddServeViewTest, ReturnStartsNothingWhileThereIsNoSource) {
    QTest::keyClick(source(), Qt::Key_Return);
    choose(SourceType::directory);
    source()->setText("   ");
    QTest::keyClick(source(), Qt::Key_Return);
    settle();
    EXPECT_FALSE(button("Start Serve")->isEnabled());
    EXPECT_FALSE(service->isLoading.get());
}

TEST_F(AddServeViewTest, AFileDroppedOnTheFormFillsInItsPathAndKind) {
    writeFile(folder / "report.pdf", "x");
    const auto path = (folder / "report.pdf").string();
    drop(toQString(path));
    EXPECT_EQ(source()->text().toStdString(), path);
    EXPECT_EQ(find<PopUp>("Source Type")->currentText().toStdString(), "File");
}

TEST_F(AddServeViewTest, AFolderDroppedOnTheFormFillsInItsPathAndKind) {
    drop(toQString(folder.path.string()));
    EXPECT_EQ(source()->text().toStdString(), folder.path.string());
    EXPECT_EQ(find<PopUp>("Source Type")->currentText().toStdString(), "Directory");
}

TEST_F(AddServeViewTest, WhatDoesNotExistCannotBeDropped) {
    drop("/no/such/file");
    EXPECT_EQ(source()->text(), "");
    EXPECT_EQ(find<PopUp>("Source Type")->currentText().toStdString(), "Port / App URL");
}

TEST_F(AddServeViewTest, BrowsingForAFileTakesFilesOnlyAndCancelChangesNothing) {
    choose(SourceType::file);
    source()->setText("/before");
    press("Browse…");
    auto* panel = form().findChild<QFileDialog*>();
    ASSERT_NE(panel, nullptr);
    EXPECT_EQ(panel->fileMode(), QFileDialog::ExistingFile);
    EXPECT_TRUE(panel->testOption(QFileDialog::ReadOnly));
    panel->reject();
    settle();
    EXPECT_EQ(source()->text(), "/before");
}

TEST_F(AddServeViewTest, BrowsingForAFolderFillsInTheChosenOne) {
    choose(SourceType::directory);
    press("Browse…");
    auto* panel = form().findChild<QFileDialog*>();
    ASSERT_NE(panel, nullptr);
    EXPECT_EQ(panel->fileMode(), QFileDialog::Directory);
    EXPECT_TRUE(panel->testOption(QFileDialog::ShowDirsOnly));
    Q_EMIT panel->fileSelected(toQString(folder.path.string()));
    panel->close();
    settle();
    EXPECT_EQ(source()->text().toStdString(), folder.path.string());
}

TEST_F(AddServeViewTest, TheFileDialogOutlivesTheMessageThatItWaitsFor) {
    choose(SourceType::file);
    press("Browse…");
    const QPointer panel = form().findChild<QFileDialog*>();
    ASSERT_NE(panel, nullptr);
    panel->findChild<QLineEdit*>()->setText("no such file");
    int step = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        // As a screen reader can: it presses buttons behind a modal message.
        if (++step == 1) return panel->reject();
        EXPECT_NE(panel, nullptr);
        if (QWidget* message = QApplication::activeModalWidget(); step == 2 && message != nullptr)
            message->close();
    });
    timer.start(0);
    static_cast<QDialog*>(panel)->accept();
    EXPECT_GE(step, 2);
    settle();
    press("Browse…");
    EXPECT_TRUE(panel->isVisible());
    EXPECT_EQ(panel->findChild<QLineEdit*>()->text(), "");
}

} // namespace
} // namespace brevane::test
