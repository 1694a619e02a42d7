// SPDX-License-Identifier: MIT
#include "Unprivileged.h"
#include "WireTest.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#ifdef __linux__
#include <sys/inotify.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#endif

#include <cstring>
#include <filesystem>
#include <map>

namespace brevane::test {
namespace {

namespace fs = std::filesystem;

using Files = WireTest;

// Percent-encodes every byte except slashes.
std::string escaped(std::string_view path) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const char character : path) {
        const auto byte = static_cast<unsigned char>(character);
        if (character == '/')
            text += '/';
        else
            text.append("%").append(1, digits[byte >> 4]).append(1, digits[byte & 15]);
    }
    return text;
}

TEST_F(Files, EveryExtensionIsSentWithItsMediaType) {
    const std::map<std::string, std::string> types{
        {"a.html", "text/html; charset=utf-8"},
        {"a.htm", "text/html; charset=utf-8"},
        {"a.css", "text/css"},
        {"a.js", "application/javascript"},
        {"a.mjs", "application/javascript"},
        {"a.json", "application/json"},
        {"a.png", "image/png"},
        {"a.jpg", "image/jpeg"},
        {"a.jpeg", "image/jpeg"},
        {"Photo.JPG", "image/jpeg"},
        {"a.gif", "image/gif"},
        {"a.svg", "image/svg+xml"},
        {"a.ico", "image/x-icon"},
        {"a.webp", "image/webp"},
        {"a.pdf", "application/pdf"},
        {"a.txt", "text/plain; charset=utf-8"},
        {"a.xml", "application/xml"},
        {"a.woff", "font/woff"},
        {"a.woff2", "font/woff2"},
        {"a.ttf", "font/ttf"},
        {"a.mp4", "video/mp4"},
        {"a.webm", "video/webm"},
        {"a.mp3", "audio/mpeg"},
        {"a.ogg", "audio/ogg"},
        {"a.zip", "application/zip"},
        {"archive.tar.gz", "application/octet-stream"},
        {"README", "application/octet-stream"},
        {"a.", "application/octet-stream"},
        {"a.md", "application/octet-stream"},
        {"a.wasm", "application/octet-stream"},
        {"a.avif", "application/octet-stream"},
        {"a.htmlx", "application/octet-stream"},
        {".html", "text/html; charset=utf-8"},
        {".hidden", "application/octet-stream"},
        {"a.html.bak", "application/octet-stream"},
        {"txt", "application/octet-stream"},
        {"a.tXt", "text/plain; charset=utf-8"},
    };
    for (const auto& [name, type] : types) {
        writeFile(root / name, name);
        EXPECT_EQ(get("/" + name), fileAnswer(type, name));
    }
}

TEST_F(Files, OddNamesAreFoundByTheirEscapedTarget) {
    for (const std::string name : {"a b",      "\"quoted\" 'twice'",
                                   "a<b>",     "a&b",
                                   "a#b",      "a?b",
                                   "100%",     "%41",
                                   "📁é",      "two\nlines",
                                   "cr\rlf\n", "\\back",
                                   "tab\t",    ".hidden",
                                   "...",      "~",
                                   ":",        ";=+",
                                   "\x7f\x01", "e\u0301"}) {
        writeFile(root / name, "<" + name + ">");
        EXPECT_EQ(get("/" + escaped(name)),
                  fileAnswer("application/octet-stream", "<" + name + ">"))
            << name;
    }
    const std::string longest(255, 'n');
    writeFile(root / longest, "long");
    EXPECT_EQ(get("/" + longest), fileAnswer("application/octet-stream", "long"));
    EXPECT_EQ(get("/" + longest + "n"), notFound);
}

TEST_F(Files, AHashIsPartOfTheName) {
    writeFile(root / "a#b.txt", "hash");
    expectAnswer("GET /a#b.txt HTTP/1.1\r\n\r\n", textFileAnswer("hash"));
}

TEST_F(Files, ANameThatIsNotUtf8CannotBeAskedFor) {
    writeFile(root / "caf\xE9", "latin");
    expectAnswer("GET /caf%e9 HTTP/1.1\r\n\r\n", notFound);
    expectAnswer("GET /caf\xE9 HTTP/1.1\r\n\r\n", notFound);
    writeFile(root / "café", "utf-8");
    expectAnswer("GET /caf\xE9 HTTP/1.1\r\n\r\n", fileAnswer("application/octet-stream", "utf-8"));
}

TEST_F(Files, ASlashAtTheEndOfAFilesPathDoesNotCount) {
    writeFile(root / "a.txt", "a");
    expectAnswer("GET /a.txt/ HTTP/1.1\r\n\r\n", textFileAnswer("a"));
    expectAnswer("GET //a.txt//. HTTP/1.1\r\n\r\n", textFileAnswer("a"));
    expectAnswer("GET a.txt HTTP/1.1\r\n\r\n", textFileAnswer("a"));
    expectAnswer("GET /a.txt/b HTTP/1.1\r\n\r\n", notFound);
    expectAnswer("GET /none/../a.txt HTTP/1.1\r\n\r\n", textFileAnswer("a"));
}

TEST_F(Files, EverySizeIsSentWhole) {
    for (const std::size_t size : {0UL, 1UL, 4095UL, 4096UL, 16384UL, 16385UL, 65536UL, 262143UL,
                                   262144UL, 262145UL, 1048576UL, 1048577UL, 5000000UL}) {
        std::string content(size, '\0');
        for (std::size_t index = 0; index < size; ++index)
            content[index] = static_cast<char>(index * 31 + index / 251);
        writeFile(root / "f", content);
        EXPECT_EQ(get("/f"), fileAnswer("application/octet-stream", content)) << size;
        std::string headAlone = fileAnswer("application/octet-stream", content);
        headAlone.resize(headAlone.size() - size);
        EXPECT_EQ(head("/f"), headAlone) << size;
    }
}

TEST_F(Files, LinksAreFollowedAlsoOutsideTheRoot) {
    writeFile(folder / "outside.txt", "outside");
    fs::create_directory(folder / "beyond");
    writeFile(folder / "beyond" / "b.txt", "b");
    fs::create_symlink(folder / "outside.txt", root / "file.txt");
    fs::create_symlink(folder / "beyond", root / "folder");
    fs::create_symlink("nothing", root / "dangling");
    fs::create_symlink("loop", root / "loop");

    expectAnswer("GET /file.txt HTTP/1.1\r\n\r\n", textFileAnswer("outside"));
    expectAnswer("GET /folder HTTP/1.1\r\n\r\n", redirectAnswer("/folder/"));
    expectAnswer("GET /folder/ HTTP/1.1\r\n\r\n",
                 listingAnswer("/folder/", parentLine + fileLine("b.txt")));
    expectAnswer("GET /folder/../file.txt HTTP/1.1\r\n\r\n", textFileAnswer("outside"));
    expectAnswer("GET /dangling HTTP/1.1\r\n\r\n", notFound);
    expectAnswer("GET /loop HTTP/1.1\r\n\r\n", notFound);
}

TEST_F(Files, WhatIsNeitherFileNorFolderIsForbidden) {
    ASSERT_EQ(::mkfifo((root / "fifo").c_str(), 0666), 0);
    fs::create_symlink("/dev/zero", root / "device");
    const Descriptor local(::socket(AF_UNIX, SOCK_STREAM, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, (root / "socket").c_str(), sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(local.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);

    for (const std::string name : {"fifo", "device", "socket"}) {
        expectAnswer("GET /" + name + " HTTP/1.1\r\n\r\n", forbidden);
        expectAnswer("HEAD /" + name + " HTTP/1.1\r\n\r\n", forbidden);
    }
}

#ifdef __linux__
TEST_F(Files, AFifoIsNotEvenOpened) {
    ASSERT_EQ(::mkfifo((root / "fifo").c_str(), 0666), 0);
    const Descriptor watch(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    ASSERT_NE(::inotify_add_watch(watch.get(), (root / "fifo").c_str(), IN_OPEN), -1);
    EXPECT_EQ(get("/fifo"), forbidden);
    std::array<char, 4096> events{};
    EXPECT_EQ(::read(watch.get(), events.data(), events.size()), -1);
    EXPECT_EQ(errno, EAGAIN);
}

TEST(FilesOfTheKernel, AreReadThoughTheirSizeIsSaidToBeNothing) {
    ServerPool pool;
    FileHTTPServer server("/proc/self", pool);
    ASSERT_TRUE(server.startListener(0));
    const std::string answer =
        answerTo(server.port, std::array<std::string_view, 1>{"GET /cmdline HTTP/1.1\r\n\r\n"},
                 Family::ipv4);
    EXPECT_EQ(answer, fileAnswer("application/octet-stream", readFile("/proc/self/cmdline")));
}

// A child process, alive as long as this object, whose memory map is longer than `length`.
class MuchMappedChild {
public:
    explicit MuchMappedChild(std::size_t length) {
        constexpr std::size_t page = 4096;
        constexpr std::size_t line = 50;
        const std::size_t pages = 2 * length / line;
        void* const mapped =
            ::mmap(nullptr, pages * page, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        // Neighbouring pages with the same protection would be merged into one mapping.
        for (std::size_t index = 0; index < pages; index += 2)
            ::mprotect(static_cast<char*>(mapped) + index * page, page, PROT_READ | PROT_WRITE);
        child_ = ::fork();
        while (child_ == 0)
            ::pause();
        ::munmap(mapped, pages * page);
    }
    ~MuchMappedChild() {
        ::kill(child_, SIGKILL);
        ::waitpid(child_, nullptr, 0);
    }
    MuchMappedChild(const MuchMappedChild&) = delete;
    MuchMappedChild& operator=(const MuchMappedChild&) = delete;

    [[nodiscard]] std::string folder() const { return "/proc/" + std::to_string(child_); }

private:
    pid_t child_ = 0;
};

TEST(FilesOfTheKernel, AreReadToTheirEndHoweverLongTheyAre) {
    const MuchMappedChild child(600000);
    const std::string map = readFile(child.folder() + "/maps");
    ASSERT_GT(map.size(), 600000U);
    ServerPool pool;
    FileHTTPServer server(child.folder(), pool);
    ASSERT_TRUE(server.startListener(0));
    EXPECT_TRUE(answerTo(server.port, std::array<std::string_view, 1>{"GET /maps HTTP/1.1\r\n\r\n"},
                         Family::ipv4) == fileAnswer("application/octet-stream", map));
    const std::string head = fileAnswer("application/octet-stream", map);
    EXPECT_EQ(answerTo(server.port, std::array<std::string_view, 1>{"HEAD /maps HTTP/1.1\r\n\r\n"},
                       Family::ipv4),
              head.substr(0, head.size() - map.size()));
}

TEST(FilesOfTheKernel, WithoutAnEndAreForbidden) {
    // /proc/self/pagemap has one byte for every 512 addresses.
    ServerPool pool;
    FileHTTPServer server("/proc/self", pool);
    ASSERT_TRUE(server.startListener(0));
    EXPECT_EQ(answerTo(server.port,
                       std::array<std::string_view, 1>{"GET /pagemap HTTP/1.1\r\n\r\n"},
                       Family::ipv4),
              forbidden);
}
#endif

TEST_F(Files, AnIndexThatIsAFolderIsForbiddenAndOneThatLeadsNowhereGivesTheListing) {
    fs::create_directory(root / "folder");
    fs::create_directory(root / "folder" / "index.html");
    expectAnswer("GET /folder/ HTTP/1.1\r\n\r\n", forbidden);
    expectAnswer("HEAD /folder/ HTTP/1.1\r\n\r\n", forbidden);

    fs::create_directory(root / "link");
    fs::create_symlink("nothing", root / "link" / "index.html");
    expectAnswer("GET /link/ HTTP/1.1\r\n\r\n",
                 listingAnswer("/link/", parentLine + fileLine("index.html")));

    fs::create_directory(root / "fifo");
    ASSERT_EQ(::mkfifo((root / "fifo" / "index.html").c_str(), 0666), 0);
    expectAnswer("GET /fifo/ HTTP/1.1\r\n\r\n", forbidden);

    fs::create_directory(root / "upper");
    writeFile(root / "upper" / "INDEX.HTML", "");
    expectAnswer("GET /upper/ HTTP/1.1\r\n\r\n",
                 listingAnswer("/upper/", parentLine + fileLine("INDEX.HTML")));
}

TEST_F(Files, ThatCannotBeReadAreForbidden) {
    writeFile(root / "secret.txt", "secret");
    fs::permissions(root / "secret.txt", fs::perms::none);
    fs::create_directory(root / "index");
    writeFile(root / "index" / "index.html", "secret");
    fs::permissions(root / "index" / "index.html", fs::perms::none);

    const Unprivileged unprivileged(folder.path);
    expectAnswer("GET /secret.txt HTTP/1.1\r\n\r\n", forbidden);
    expectAnswer("HEAD /secret.txt HTTP/1.1\r\n\r\n", forbidden);
    expectAnswer("GET /index/ HTTP/1.1\r\n\r\n", forbidden);
}

TEST_F(Files, InAFolderThatCannotBeEnteredAreNotFound) {
    fs::create_directory(root / "closed");
    writeFile(root / "closed" / "a.txt", "a");
    writeFile(root / "closed" / "index.html", "a");
    fs::permissions(root / "closed", fs::perms::all & ~fs::perms::owner_exec &
                                         ~fs::perms::group_exec & ~fs::perms::others_exec);

    const Unprivileged unprivileged(folder.path);
    expectAnswer("GET /closed/a.txt HTTP/1.1\r\n\r\n", notFound);
    expectAnswer("GET /closed HTTP/1.1\r\n\r\n", redirectAnswer("/closed/"));
    expectAnswer(
        "GET /closed/ HTTP/1.1\r\n\r\n",
        listingAnswer("/closed/", parentLine + fileLine("a.txt") + fileLine("index.html")));
}

TEST_F(Files, OfAFolderThatCannotBeReadAreNotListed) {
    fs::create_directory(root / "dark");
    writeFile(root / "dark" / "a.txt", "a");
    fs::permissions(root / "dark",
                    fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec);

    const Unprivileged unprivileged(folder.path);
    expectAnswer("GET /dark/ HTTP/1.1\r\n\r\n", listingAnswer("/dark/", parentLine));
    expectAnswer("GET /dark/a.txt HTTP/1.1\r\n\r\n", textFileAnswer("a"));
}

} // namespace
} // namespace brevane::test
