// SPDX-License-Identifier: MIT
#include "ChildProcess.h"
#include "WireTest.h"

namespace brevane::test {
namespace {

class ServeFolder : public ::testing::Test {
protected:
    // Runs a shell script in which $1 is serve-folder and $2 the folder to serve.
    ChildProcess::Outcome run(const std::string& script) {
        const Interrupt interrupt;
        const ChildProcess shell{
            .executable = "/bin/sh",
            .arguments = {"-c", script, "sh", SERVE_FOLDER, folder.path.string()},
            .environment = {"PATH=/usr/bin:/bin"}};
        return shell.run(interrupt).value();
    }

    TemporaryFolder folder;
};

TEST_F(ServeFolder, SaysWhatIsWrongWithItsArguments) {
    for (const std::string arguments : {"", "\"$2\"", "\"$2\" 0 more", "\"$2\" x", "\"$2\" 65536",
                                        "\"$2\" -1", "\"$2\" ''", "\"$2\" 80x"}) {
        const auto outcome = run("\"$1\" " + arguments);
        EXPECT_EQ(outcome.status, 2) << arguments;
        EXPECT_EQ(outcome.standardOutput, "");
        EXPECT_TRUE(outcome.standardError.starts_with("Usage: serve-folder DIR PORT\n"));
    }
    EXPECT_EQ(run("\"$1\" --help").status, 0);
}

TEST_F(ServeFolder, PrintsItsPortAndRunsUntilItsInputEnds) {
    const auto outcome = run("\"$1\" \"$2\" 0 < /dev/null");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_GT(std::stoi(outcome.standardOutput), 0);
    EXPECT_EQ(outcome.standardOutput, std::to_string(std::stoi(outcome.standardOutput)) + "\n");
    EXPECT_EQ(outcome.standardError, "");
}

TEST_F(ServeFolder, RunsUntilItIsTerminated) {
    const auto outcome = run("cd \"$2\" && mkfifo in out && \"$1\" . 0 < in > out &\n"
                             "cd \"$2\" && until [ -p out ]; do :; done\n"
                             "exec 3> in 4< out && read port <&4\n"
                             "echo ignored >&3\n"
                             "kill -TERM $! && wait $! && echo \"ended $?\"");
    EXPECT_EQ(outcome.status, 0) << outcome.standardError;
    EXPECT_EQ(outcome.standardOutput, "ended 0\n");
}

TEST_F(ServeFolder, FailsWhereThePortIsTaken) {
    ServerPool pool;
    FileHTTPServer server(folder.path.string(), pool);
    const std::string port = std::to_string(server.startListener(0).value());
    const auto outcome = run("\"$1\" \"$2\" " + port + " < /dev/null");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.standardError, "serve-folder: port " + port + ": Address already in use\n");
}

} // namespace
} // namespace brevane::test
