// SPDX-License-Identifier: MIT
#include "ServiceTest.h"

#include <signal.h>

#include <string>
#include <thread>

namespace brevane::test {
namespace {

class Shutdown : public ServiceTest {
protected:
    // Waits until the script has written its process ID, and returns it.
    pid_t waitForPid() {
        const auto file = folder / "tailscale.pid";
        while (readFile(file).empty() || readFile(file).back() != '\n')
            std::this_thread::yield();
        return std::stoi(readFile(file));
    }

    // Interrupts an add whose command runs this shell code, and expects its process to be gone.
    void expectEnded(const std::string& shellCode, bool background = false) {
        changesDo(shellCode);
        start();
        service->add(ServeMode::serve, SourceType::port, "3000", "/", background, completion());
        const pid_t pid = waitForPid();
        service->interruptCommands();
        service.reset();
        queue.reset();
        EXPECT_EQ(::kill(pid, 0), -1);
    }
};

TEST_F(Shutdown, AnInterruptEndsAHangingCommandAndTheQueueCanBeJoined) {
    expectEnded("echo $$ > \"$0.pid\"; sleep 1000");
}

TEST_F(Shutdown, ACommandThatIgnoresTheRequestToEndIsKilled) {
    expectEnded("trap '' TERM; echo $$ > \"$0.pid\"; while :; do sleep 1000; done");
}

TEST_F(Shutdown, ABackgroundAddMayEndByItself) {
    expectEnded("trap 'echo ended >> \"$0.pid\"; exit' TERM; echo $$ > \"$0.pid\"; sleep 0.2; "
                "echo done >> \"$0.pid\"",
                true);
    EXPECT_TRUE(readFile(folder / "tailscale.pid").ends_with("\ndone\n"));
}

TEST_F(Shutdown, ABackgroundAddThatDoesNotEndByItselfIsEnded) {
    expectEnded("echo $$ > \"$0.pid\"; sleep 1000", true);
}

TEST_F(Shutdown, TheLastReferenceMayGoOnTheQueuesOwnThread) {
    changesDo("echo $$ > \"$0.pid\"; sleep 1000");
    start();
    service->resetServes(completion());
    waitForPid();
    service->interruptCommands();
    const std::weak_ptr<TailscaleService> watched = service;
    service.reset(); // the running task owns it now
    queue.reset();
    EXPECT_FALSE(outcome.has_value());
    EXPECT_FALSE(watched.expired()); // tasks on the main queue own it
    mainQueue.dropPending();
    EXPECT_TRUE(watched.expired());
}

TEST_F(Shutdown, OperationsAfterAnInterruptFailAtOnce) {
    changesDo("sleep 1000");
    start();
    service->interruptCommands();
    EXPECT_FALSE(add(SourceType::port, "3000").success);
}

} // namespace
} // namespace brevane::test
