// SPDX-License-Identifier: MIT
#include "Scenes.h"

#include "AboutPanel.h"
#include "IconButton.h"
#include "PopUp.h"
#include "PushButton.h"
#include "ShareList.h"
#include "ShareRowView.h"

#include <QAbstractButton>
#include <QAction>
#include <QLineEdit>
#include <QMenu>
#include <QScrollBar>

#include <algorithm>

namespace brevane::pictures {

namespace {

using HandlerType = ServeEntry::HandlerType;

constexpr auto host = "heron.alder-finch.ts.net";

ServeEntry share(const std::string& hostPort, const std::string& path, HandlerType type,
                 const std::string& detail, bool isFunnel = false) {
    return {.id = makeEntryId(),
            .isFunnel = isFunnel,
            .hostPort = hostPort,
            .urlPath = path,
            .handlerType = type,
            .handlerDetail = detail,
            .isBackground = true};
}

void connectTo(Stage& stage, const std::string& name = host) {
    stage.service->isConnected.set(true);
    stage.service->dnsName.set(name);
    stage.service->tailscaleIP.set("100.101.32.7");
}

void share(Stage& stage, std::vector<ServeEntry> entries) {
    connectTo(stage);
    stage.service->managedServerInfo.set(
        {{49231, {.path = "/home/mira/site", .isDirectory = true}},
         {49232, {.path = "/home/mira/Papers/report.pdf", .isDirectory = false}}});
    stage.service->entries.set(std::move(entries));
}

void usual(Stage& stage) {
    const std::string name = host;
    share(stage, {share(name + ":443", "/", HandlerType::proxy, "http://127.0.0.1:49231"),
                  share(name + ":8443", "/api", HandlerType::proxy, "http://127.0.0.1:3000"),
                  share(name + ":10000", "/", HandlerType::proxy, "http://127.0.0.1:8080", true)});
}

void everyKind(Stage& stage) {
    const std::string name = host;
    share(stage,
          {share(name + ":443", "/", HandlerType::proxy, "http://127.0.0.1:49231"),
           share(name + ":443", "/report.pdf", HandlerType::proxy, "http://127.0.0.1:49232"),
           share(name + ":443", "/docs", HandlerType::filePath, "/srv/docs"),
           share(name + ":443", "/health", HandlerType::text, "ok"),
           share(name + ":22", "/", HandlerType::tcp, "127.0.0.1:22"),
           share(name + ":8443", "/api", HandlerType::proxy, "https+insecure://localhost:8443"),
           share(name + ":10000", "/", HandlerType::proxy, "http://127.0.0.1:8080", true)});
}

void longNames(Stage& stage) {
    const std::string name =
        "a-machine-with-a-remarkably-long-name-in-the-third-rack.alder-finch-and-friends.ts.net";
    stage.service->managedServerInfo.set(
        {{49231,
          {.path = "/home/mira/Projects/a website with a very long name/build/output/public/latest",
           .isDirectory = true}}});
    connectTo(stage, name);
    stage.service->entries.set(
        {share(name + ":443", "/", HandlerType::proxy, "http://127.0.0.1:49231"),
         share(name + ":8443", "/some/deeply/nested/path/to/an/interface/v2", HandlerType::text,
               "A text that goes on and on, well past the edge of the row that it has to fit into, "
               "however wide"),
         share(name + ":10000", "/", HandlerType::proxy,
               "http://127.0.0.1:8080/and/a/long/path/behind/it", true)});
}

void many(Stage& stage) {
    constexpr int count = 40;
    std::vector<ServeEntry> entries;
    entries.reserve(count);
    for (int i = 0; i < count; ++i)
        entries.push_back(share(std::string(host) + ":443", "/app" + std::to_string(i),
                                HandlerType::proxy, "http://127.0.0.1:" + std::to_string(3000 + i),
                                i >= 8));
    share(stage, std::move(entries));
}

void scrolled(Stage& stage) {
    many(stage);
    stage.settle();
    auto* list = stage.window.findChild<ShareList*>();
    list->verticalScrollBar()->setValue(list->rows()[0]->height() * 7);
}

void error(Stage& stage) {
    usual(stage);
    stage.service->lastError.set("Failed to stop share");
}

void longError(Stage& stage) {
    usual(stage);
    stage.service->isConnected.set(false);
    stage.service->lastError.set(
        "Status error: failed to connect to local tailscaled; it does not appear to be running "
        "(Get \"http://local-tailscaled.sock/localapi/v0/status\": dial unix "
        "/var/run/tailscale/tailscaled.sock: connect: no such file or directory). Is the service "
        "started "
        "and is this user allowed to operate it? See the log for more.");
}

void loading(Stage& stage) {
    usual(stage);
    stage.service->isLoading.set(true);
}

void type(Stage& stage, const QString& field, const QString& text) {
    stage.find<QLineEdit>(field).setText(text);
}

std::function<void(Stage&)> source(SourceType sourceType, const QString& field,
                                   const QString& text) {
    return [=](Stage& stage) {
        usual(stage);
        const auto index = std::ranges::find(allSourceTypes, sourceType) - allSourceTypes.begin();
        stage.find<PopUp>(QStringLiteral("Source Type")).setCurrentIndex(static_cast<int>(index));
        type(stage, field, text);
    };
}

void funnel(Stage& stage) {
    usual(stage);
    stage.find<QAbstractButton>(QStringLiteral("Funnel")).click();
    type(stage, QStringLiteral("Port or URL"), QStringLiteral("3000"));
}

void starting(Stage& stage) {
    usual(stage);
    type(stage, QStringLiteral("Port or URL"), QStringLiteral("3000"));
    stage.find<PushButton>(QStringLiteral("Start Serve")).click();
}

void reset(Stage& stage, const QString& item) {
    usual(stage);
    for (auto* action : stage.window.findChildren<QAction*>())
        if (action->text() == item) action->trigger();
}

ShareRowView& firstRow(Stage& stage) {
    Stage::settle();
    return *stage.window.findChild<ShareList*>()->rows()[0];
}

void stopQuestion(Stage& stage) {
    usual(stage);
    firstRow(stage).confirmStop();
}

void rowStates(Stage& stage) {
    usual(stage);
    firstRow(stage).setHovered(true);
    auto* list = stage.window.findChild<ShareList*>();
    list->rows()[1]->setStopping(true);
    stage.window.activateWindow();
    stage.window.setAttribute(Qt::WA_KeyboardFocusChange);
    list->rows()[2]->copyButton()->setFocus(Qt::TabFocusReason);
}

void toast(Stage& stage) {
    usual(stage);
    stage.content->showToast(QStringLiteral("URL copied!"));
}

void small(Stage& stage) {
    error(stage);
    funnel(stage);
    stage.window.resize(640, 500);
}

void focusedField(Stage& stage) {
    usual(stage);
    stage.window.activateWindow();
    stage.find<QLineEdit>(QStringLiteral("Port or URL")).setFocus(Qt::TabFocusReason);
}

void menu(Stage& stage) {
    usual(stage);
    Stage::settle();
    stage.find<IconButton>(QStringLiteral("Reset Shares")).click();
}

void choices(Stage& stage) {
    usual(stage);
    Stage::settle();
    stage.find<PopUp>(QStringLiteral("Source Type")).showPopup();
}

void about(Stage& stage) {
    usual(stage);
    auto* panel = new AboutPanel(&stage.window);
    panel->show();
}

} // namespace

std::vector<Scene> allScenes() {
    using S = SourceType;
    return {
        {QStringLiteral("not-connected"), [](Stage&) {}},
        {QStringLiteral("empty"), [](Stage& stage) { connectTo(stage); }},
        {QStringLiteral("usual"), usual},
        {QStringLiteral("every-kind"), everyKind},
        {QStringLiteral("long-names"), longNames},
        {QStringLiteral("many"), many},
        {QStringLiteral("scrolled"), scrolled},
        {QStringLiteral("error"), error},
        {QStringLiteral("long-error"), longError},
        {QStringLiteral("loading"), loading},
        {QStringLiteral("row-states"), rowStates},
        {QStringLiteral("focused-field"), focusedField},
        {QStringLiteral("source-port"),
         source(S::port, QStringLiteral("Port or URL"), QStringLiteral("3000"))},
        {QStringLiteral("source-file"), source(S::file, QStringLiteral("File Path"),
                                               QStringLiteral("/home/mira/Papers/report.pdf"))},
        {QStringLiteral("source-directory"),
         source(S::directory, QStringLiteral("Directory Path"), QStringLiteral("/home/mira/site"))},
        {QStringLiteral("source-https"),
         source(S::httpsInsecure, QStringLiteral("Local HTTPS Port"), QStringLiteral("8443"))},
        {QStringLiteral("source-text"),
         source(S::text, QStringLiteral("Text Content"), QStringLiteral("Hello, World!"))},
        {QStringLiteral("source-tcp"),
         source(S::tcpForward, QStringLiteral("Local Port"), QStringLiteral("22"))},
        {QStringLiteral("funnel"), funnel},
        {QStringLiteral("starting"), starting},
        {QStringLiteral("menu"), menu},
        {QStringLiteral("choices"), choices},
        {QStringLiteral("stop-question"), stopQuestion},
        {QStringLiteral("reset-serves"),
         [](Stage& s) { reset(s, QStringLiteral("Reset All Serves")); }},
        {QStringLiteral("reset-funnels"),
         [](Stage& s) { reset(s, QStringLiteral("Reset All Funnels")); }},
        {QStringLiteral("reset-everything"),
         [](Stage& s) { reset(s, QStringLiteral("Reset Everything")); }},
        {QStringLiteral("toast"), toast},
        {QStringLiteral("smallest-window"), small},
        {QStringLiteral("about"), about},
    };
}

} // namespace brevane::pictures
