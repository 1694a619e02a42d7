// SPDX-License-Identifier: MIT
//
// Replaces tailscale and its daemon in the commands that Brevane uses, with the daemon's state in a
// file, so that thousands of operations take only minutes.
//
// Usage: BREVANE_STAND_IN=FOLDER stand-in-tailscale ARGUMENTS
//        BREVANE_STAND_IN=FOLDER stand-in-tailscale -l -c COMMAND-LINE
//
// The second form also replaces the shell, whose start takes longer than everything else.
//
// FOLDER/daemon.json: {"node": DNS name, "state": backend state, "fails": whether changes fail,
// "delay": milliseconds before and after a change, "configs": {DNS name: serve configuration}}

#include <boost/json.hpp>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace {

namespace json = boost::json;
using Arguments = std::vector<std::string_view>;

json::object& objectIn(json::object& parent, std::string_view key) {
    json::value& value = parent[key];
    if (!value.is_object()) value.emplace_object();
    return value.get_object();
}

bool eraseFromObject(json::object& parent, std::string_view key, std::string_view name) {
    json::value* const value = parent.if_contains(key);
    return value != nullptr && value->get_object().erase(name) != 0;
}

void setFunnel(json::object& config, const std::string& hostPort, bool isFunnel) {
    if (isFunnel)
        objectIn(config, "AllowFunnel")[hostPort] = true;
    else
        eraseFromObject(config, "AllowFunnel", hostPort);
}

void forward(json::object& config, const std::string& node, std::string_view port,
             std::string_view target, bool isFunnel) {
    objectIn(objectIn(config, "TCP"), port)["TCPForward"] = target;
    setFunnel(config, node + ":" + std::string(port), isFunnel);
}

void mount(json::object& config, const std::string& node, std::string_view path,
           std::string_view target, bool isFunnel) {
    json::object handler;
    if (target.starts_with("text:"))
        handler["Text"] = target.substr(5);
    else if (target.find("://") != std::string_view::npos)
        handler["Proxy"] = target;
    else
        handler["Proxy"] = "http://127.0.0.1:" + std::string(target);
    objectIn(objectIn(config, "TCP"), "443")["HTTPS"] = true;
    objectIn(objectIn(objectIn(config, "Web"), node + ":443"), "Handlers")[path] = handler;
    setFunnel(config, node + ":443", isFunnel);
}

// Returns the exit status.
int change(json::object& config, const std::string& node, const Arguments& arguments) {
    const bool isFunnel = arguments[0] == "funnel";
    std::string_view path = "/";
    std::string_view tcp;
    std::string_view https;
    std::string_view last;
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string_view word = arguments[i];
        if (word == "reset") return config.clear(), 0;
        if (word == "--set-path" && i + 1 < arguments.size())
            path = arguments[++i];
        else if (word.starts_with("--tcp="))
            tcp = word.substr(6);
        else if (word.starts_with("--https="))
            https = word.substr(8);
        else
            last = word;
    }
    if (last == "off") {
        const std::string hostPort = node + ":" + std::string(https);
        if (!eraseFromObject(config, "Web", hostPort)) {
            std::cerr << "error: handler does not exist\n";
            return 1;
        }
        eraseFromObject(config, "TCP", https);
        setFunnel(config, hostPort, false);
    } else if (!tcp.empty()) {
        forward(config, node, tcp, last, isFunnel);
    } else {
        mount(config, node, path, last, isFunnel);
    }
    return 0;
}

// The words of a command line, without the first one. Supports single quotes around whole words
// only.
std::vector<std::string> wordsOf(const std::string& line) {
    std::vector<std::string> words;
    bool isQuoted = false;
    bool isInWord = false;
    for (const char character : line) {
        if (character == '\'') {
            isQuoted = !isQuoted;
        } else if (character == ' ' && !isQuoted) {
            isInWord = false;
        } else {
            if (!std::exchange(isInWord, true)) words.emplace_back();
            words.back() += character;
        }
    }
    words.erase(words.begin());
    return words;
}

json::value statusOf(const json::object& daemon) {
    return {{"BackendState", daemon.at("state")},
            {"Self", {{"DNSName", std::string(daemon.at("node").get_string()) + "."}}}};
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::string> words(argv + 1, argv + argc);
    if (words.size() == 3 && words.front() == "-l") words = wordsOf(words.back());
    const Arguments arguments(words.begin(), words.end());
    const std::filesystem::path folder = std::getenv("BREVANE_STAND_IN");
    const int lock = open((folder / "lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (lock == -1 || flock(lock, LOCK_EX) == -1) return 1;

    const std::filesystem::path file = folder / "daemon.json";
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    json::object daemon = json::parse(text.str()).get_object();
    const std::string node(daemon.at("node").get_string());
    json::object& config = objectIn(objectIn(daemon, "configs"), node);

    if (arguments == Arguments{"status", "--json"}) return std::cout << statusOf(daemon) << '\n', 0;
    if (arguments == Arguments{"serve", "status", "--json"}) return std::cout << config << '\n', 0;
    if (daemon.at("fails").get_bool()) {
        std::cerr << "error: refused\n";
        return 1;
    }
    const std::chrono::milliseconds delay(daemon.at("delay").to_number<int>());
    std::this_thread::sleep_for(delay);
    const int status = change(config, node, arguments);
    std::ofstream(folder / "daemon.json.new") << json::serialize(daemon);
    std::filesystem::rename(folder / "daemon.json.new", file);
    std::this_thread::sleep_for(delay);
    return status;
}
