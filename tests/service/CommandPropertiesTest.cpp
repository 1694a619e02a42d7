// SPDX-License-Identifier: MIT
#include "ChildProcess.h"
#include "CommandBuilding.h"
#include "TemporaryFolder.h"
#include "Text.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace brevane::test {
namespace {

RC_GTEST_PROP(BuildAddCommand, IsTheHeadThenTheTargetForEveryInput,
              (const std::string& source, const std::string& urlPath, bool background)) {
    const auto mode = *rc::gen::element(ServeMode::serve, ServeMode::funnel);
    const auto type = *rc::gen::elementOf(allSourceTypes);
    const std::string target(trimmedOfWhitespace(source));

    std::string expected = mode == ServeMode::serve ? "BIN serve" : "BIN funnel";
    if (background) expected += " --bg";
    if (urlPath != "" && urlPath != "/") expected += " --set-path " + urlPath;
    expected += " --yes";
    if (type == SourceType::port) expected += " " + target;
    if (type == SourceType::httpsInsecure) expected += " https+insecure://localhost:" + target;
    if (type == SourceType::text) expected += " text:" + shellQuote(target);
    if (type == SourceType::tcpForward) expected += " --tcp=" + target + " localhost:" + target;

    RC_ASSERT(buildAddCommand("BIN", mode, type, source, urlPath, background) == expected);
}

RC_GTEST_PROP(BuildPortServeCommand, SharesItsHeadWithTheOtherCommands,
              (std::uint16_t port, const std::string& urlPath, bool background)) {
    const auto mode = *rc::gen::element(ServeMode::serve, ServeMode::funnel);
    const std::string head =
        buildAddCommand("BIN", mode, SourceType::file, "", urlPath, background);
    RC_ASSERT(buildPortServeCommand("BIN", mode, port, urlPath, background) ==
              head + " " + std::to_string(port));
}

// The first argument that the shell passes on, for each text.
std::vector<std::string> throughZsh(const std::vector<std::string>& texts) {
    const TemporaryFolder folder;
    std::string line;
    for (const std::string& text : texts)
        line += "printf '%s\\0' " + shellQuote(text) + ";";
    const ChildProcess shell{"/bin/zsh", {"-l", "-c", line}, {"PATH=/usr/bin:/bin", "HOME=/"}};
    const Interrupt never;
    const auto outcome = shell.run(never);

    std::vector<std::string> received;
    std::string word;
    for (const char character : outcome ? outcome->standardOutput : "") {
        if (character == '\0')
            received.push_back(std::exchange(word, ""));
        else
            word += character;
    }
    return received;
}

TEST(ShellQuote, WhatZshHandsOnOfAQuotedTextIsTheText) {
    // Every text contains one of the five characters that make shellQuote() quote it.
    const std::string alphabet = " ()&'$`\";|<>*?\\\t\n!#~={}[]^%aé€😀";
    EXPECT_TRUE(rc::check([&alphabet] {
        const auto texts = *rc::gen::container<std::vector<std::string>>(
            20, rc::gen::map(
                    rc::gen::pair(rc::gen::container<std::string>(rc::gen::elementOf(alphabet)),
                                  rc::gen::elementOf(std::string(" ()&'"))),
                    [](const std::pair<std::string, char>& drawn) {
                        return drawn.first + drawn.second;
                    }));
        RC_ASSERT(throughZsh(texts) == texts);
    }));
}

} // namespace
} // namespace brevane::test
