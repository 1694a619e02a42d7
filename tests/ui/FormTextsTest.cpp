// SPDX-License-Identifier: MIT
#include "FormTexts.h"

#include <gtest/gtest.h>

namespace brevane::test {
namespace {

TEST(FormTexts, FieldLabelOfEverySource) {
    EXPECT_EQ(sourceTexts(SourceType::port).fieldLabel, "Port or URL");
    EXPECT_EQ(sourceTexts(SourceType::file).fieldLabel, "File Path");
    EXPECT_EQ(sourceTexts(SourceType::directory).fieldLabel, "Directory Path");
    EXPECT_EQ(sourceTexts(SourceType::httpsInsecure).fieldLabel, "Local HTTPS Port");
    EXPECT_EQ(sourceTexts(SourceType::text).fieldLabel, "Text Content");
    EXPECT_EQ(sourceTexts(SourceType::tcpForward).fieldLabel, "Local Port");
}

TEST(FormTexts, PlaceholdersKeepTheirDoubleBlanks) {
    EXPECT_EQ(sourceTexts(SourceType::port).placeholder, "3000  or  http://127.0.0.1:3000/api");
    EXPECT_EQ(sourceTexts(SourceType::file).placeholder, "/Users/you/file.html");
    EXPECT_EQ(sourceTexts(SourceType::directory).placeholder, "/Users/you/site/");
    EXPECT_EQ(sourceTexts(SourceType::httpsInsecure).placeholder, "8443");
    EXPECT_EQ(sourceTexts(SourceType::text).placeholder, "Hello, World!");
    EXPECT_EQ(sourceTexts(SourceType::tcpForward).placeholder, "2222  (local port to expose)");
}

TEST(FormTexts, HintOfEverySource) {
    EXPECT_EQ(sourceTexts(SourceType::port).hint,
              "Proxies to a local HTTP server. Examples: 3000 \u00b7 localhost:3000 \u00b7 "
              "http://127.0.0.1:3000/api");
    EXPECT_EQ(sourceTexts(SourceType::file).hint,
              "Serves a single file. Supports any file type \u2014 HTML, images, PDFs, etc.");
    EXPECT_EQ(
        sourceTexts(SourceType::directory).hint,
        "Serves all files in the folder. Includes automatic directory listing, so visitors can "
        "browse the contents.");
    EXPECT_EQ(
        sourceTexts(SourceType::httpsInsecure).hint,
        "Proxies to a local HTTPS server with a self-signed or otherwise invalid certificate, "
        "bypassing TLS verification.");
    EXPECT_EQ(
        sourceTexts(SourceType::text).hint,
        "Serves the typed text as a plain-text HTTP response at the URL path. Useful for simple "
        "health checks or webhooks.");
    EXPECT_EQ(
        sourceTexts(SourceType::tcpForward).hint,
        "Exposes a raw TCP port \u2014 useful for SSH (22) or other non-HTTP services. Available "
        "ports: 443, 8443, 10000.");
}

TEST(FormTexts, DescriptionOfEveryMode) {
    EXPECT_EQ(
        modeDescription(ServeMode::serve),
        "Serve shares only within your Tailscale network. Only devices on your tailnet can access "
        "it.");
    EXPECT_EQ(
        modeDescription(ServeMode::funnel),
        "Funnel exposes your service to the public internet \u2014 anyone with the URL can access "
        "it. Requires Funnel to be enabled in your tailnet policy.");
    EXPECT_EQ(modeCaption(ServeMode::serve), "Tailnet only \u2014 private to your network");
    EXPECT_EQ(modeCaption(ServeMode::funnel), "Public internet \u2014 anyone with the URL");
}

TEST(FormTexts, OnlyAFileTakesItsNameAsThePath) {
    EXPECT_EQ(urlPathHint(SourceType::file),
              "Leave as / to use the filename as the path (e.g. /file.html).");
    EXPECT_EQ(urlPathHint(SourceType::directory),
              "Path under which the resource is accessible. Default: /");
}

TEST(FormTexts, StartingIsNamedAfterTheMode) {
    EXPECT_EQ(startLabel(ServeMode::serve), "Start Serve");
    EXPECT_EQ(startLabel(ServeMode::funnel), "Start Funnel");
    EXPECT_EQ(startedMessage(ServeMode::serve), "Serve started successfully");
    EXPECT_EQ(startedMessage(ServeMode::funnel), "Funnel started successfully");
}

TEST(FormTexts, AFailedStartWithEmptyOutputShowsTheFixedMessage) {
    EXPECT_EQ(startFailedMessage(""), "Failed. Make sure Tailscale is running and you have Funnel "
                                      "permission in your tailnet policy.");
}

TEST(FormTexts, AFailedStartWithOutputShowsTheOutputItself) {
    EXPECT_EQ(startFailedMessage("listener already exists"), "listener already exists");
}

TEST(FormTexts, AFailedStopWithEmptyOutputShowsTheFixedMessage) {
    EXPECT_EQ(stopFailedMessage(""), "Failed to stop share");
    EXPECT_EQ(stopFailedMessage("no such port"), "no such port");
}

} // namespace
} // namespace brevane::test
