// SPDX-License-Identifier: MIT
// http-hung DIR: mounts a FUSE file system on DIR that answers requests about its root, but none
// about anything below it, like a network folder whose server is gone. Prints a line when it is
// mounted and one for each unanswered request. Runs until standard input closes; then unmounts, and
// all pending requests fail. Needs root.
#include <fcntl.h>
#include <linux/fuse.h>
#include <poll.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

class HungFolder {
public:
    explicit HungFolder(std::string folder)
        : folder_(std::move(folder)), device_(::open("/dev/fuse", O_RDWR | O_CLOEXEC)) {}
    // The kernel fails all pending requests once the device is closed.
    ~HungFolder() {
        ::umount2(folder_.c_str(), MNT_DETACH);
        ::close(device_);
    }
    HungFolder(const HungFolder&) = delete;
    HungFolder& operator=(const HungFolder&) = delete;

    bool mount() {
        const std::string options =
            "fd=" + std::to_string(device_) + ",rootmode=40000,user_id=0,group_id=0,allow_other";
        return device_ >= 0 && ::mount("http-hung", folder_.c_str(), "fuse", MS_NODEV | MS_NOSUID,
                                       options.c_str()) == 0;
    }

    void run() {
        std::array<pollfd, 2> waited{{{device_, POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}}};
        while (::poll(waited.data(), waited.size(), -1) > 0 && waited[1].revents == 0)
            takeQuestion();
    }

private:
    void takeQuestion() {
        const auto count = ::read(device_, buffer_.data(), buffer_.size());
        if (count < static_cast<ssize_t>(sizeof(fuse_in_header))) return;
        fuse_in_header question{};
        std::memcpy(&question, buffer_.data(), sizeof question);
        if (question.opcode == FUSE_INIT) {
            fuse_init_out agreed{};
            agreed.major = FUSE_KERNEL_VERSION;
            agreed.minor = FUSE_KERNEL_MINOR_VERSION;
            // Otherwise the kernel serializes the look-ups in a directory.
            agreed.flags = FUSE_PARALLEL_DIROPS;
            agreed.max_write = 4096;
            answer(question, agreed);
            say("mounted");
        } else if (question.opcode == FUSE_GETATTR && question.nodeid == FUSE_ROOT_ID) {
            fuse_attr_out root{};
            root.attr_valid = 3600;
            root.attr.ino = FUSE_ROOT_ID;
            root.attr.mode = S_IFDIR | 0755;
            root.attr.nlink = 2;
            answer(question, root);
        } else if (question.opcode != FUSE_FORGET && question.opcode != FUSE_BATCH_FORGET &&
                   question.opcode != FUSE_INTERRUPT) {
            say("asked");
        }
    }

    template <typename Answer>
    void answer(const fuse_in_header& question, Answer& body) {
        fuse_out_header head{};
        head.len = sizeof head + sizeof body;
        head.unique = question.unique;
        std::array<iovec, 2> parts{{{&head, sizeof head}, {&body, sizeof body}}};
        if (::writev(device_, parts.data(), parts.size()) < 0) std::perror("http-hung: answer");
    }

    static void say(const char* word) {
        std::puts(word);
        std::fflush(stdout);
    }

    std::string folder_;
    int device_;
    alignas(8) std::array<char, 2 * FUSE_MIN_READ_BUFFER> buffer_{};
};

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    HungFolder folder(argv[1]);
    if (!folder.mount()) {
        std::perror("http-hung");
        return 1;
    }
    folder.run();
}
