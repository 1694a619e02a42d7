// SPDX-License-Identifier: MIT
#pragma once

#include "Client.h"
#include "FileHTTPServer.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>

namespace brevane::test {

/// The complete response to a request for a file.
inline std::string fileAnswer(std::string_view mediaType, std::string_view content) {
    std::string answer = "HTTP/1.1 200 OK\r\nContent-Type: ";
    answer.append(mediaType).append("\r\nContent-Length: ").append(std::to_string(content.size()));
    return answer.append("\r\nConnection: close\r\n\r\n").append(content);
}

inline std::string textFileAnswer(std::string_view content) {
    return fileAnswer("text/plain; charset=utf-8", content);
}

inline std::string errorAnswer(std::string_view status) {
    std::string answer = "HTTP/1.1 ";
    answer.append(status).append("\r\nContent-Type: text/plain\r\nContent-Length: ");
    answer.append(std::to_string(status.size()));
    return answer.append("\r\nConnection: close\r\n\r\n").append(status);
}

inline const std::string badRequest = errorAnswer("400 Bad Request");
inline const std::string forbidden = errorAnswer("403 Forbidden");
inline const std::string notFound = errorAnswer("404 Not Found");
inline const std::string methodNotAllowed = errorAnswer("405 Method Not Allowed");

inline std::string redirectAnswer(std::string_view location) {
    std::string answer = "HTTP/1.1 301 Moved Permanently\r\nLocation: ";
    return answer.append(location).append("\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
}

/// The listing page of a folder requested as `urlPath`, with the entries in `lines`.
inline std::string listingAnswer(std::string_view urlPath, std::string_view lines) {
    std::string page = "<!DOCTYPE html><html>\n<head><meta charset=\"utf-8\"><title>Index of ";
    page.append(urlPath);
    page += "</title>\n<style>body{font-family:system-ui,sans-serif;padding:20px 40px;"
            "max-width:800px}\nh1{font-size:1.2em;color:#333}ul{list-style:none;padding:0}\n"
            "li{padding:4px 0;border-bottom:1px solid #f0f0f0}\na{color:#0066cc;"
            "text-decoration:none}a:hover{text-decoration:underline}</style>\n</head><body><h1>"
            "Index of ";
    page.append(urlPath).append("</h1><ul>").append(lines).append("</ul></body></html>");
    return fileAnswer("text/html; charset=utf-8", page);
}

inline const std::string parentLine = "<li><a href=\"../\">📁 ../</a></li>\n";

inline std::string folderLine(std::string_view name) {
    std::string line = "<li><a href=\"";
    return line.append(name).append("/\">📁 ").append(name).append("/</a></li>\n");
}

inline std::string fileLine(std::string_view name) {
    std::string line = "<li><a href=\"";
    return line.append(name).append("\">📄 ").append(name).append("</a></li>\n");
}

/// A running server for the folder `root`, inside a temporary folder.
class WireTest : public ::testing::Test {
protected:
    WireTest() {
        std::filesystem::create_directory(root);
        EXPECT_TRUE(server.startListener(0));
    }

    static ServerPool& pool() {
        static ServerPool shared;
        return shared;
    }

    std::string answer(std::string_view request, Family family = Family::ipv4) {
        return answerTo(server.port, std::array{request}, family);
    }

    std::string get(std::string_view target) {
        return answer("GET " + std::string(target) + " HTTP/1.1\r\n\r\n");
    }
    std::string head(std::string_view target) {
        return answer("HEAD " + std::string(target) + " HTTP/1.1\r\n\r\n");
    }

    /// Expects the answer over both protocols: to the request in one piece, split at each byte,
    /// sent byte by byte, and followed by more.
    void expectAnswer(std::string_view request, const std::string& expected) {
        SCOPED_TRACE(::testing::PrintToString(request.substr(0, 200)));
        for (const Family family : {Family::ipv4, Family::ipv6}) {
            EXPECT_EQ(answerTo(server.port, std::array{request}, family), expected);
            for (std::size_t cut = 1; cut < request.size(); ++cut)
                ASSERT_EQ(answerTo(server.port,
                                   std::array{request.substr(0, cut), request.substr(cut)}, family),
                          expected)
                    << "cut at byte " << cut;
            std::vector<std::string_view> bytes;
            for (std::size_t index = 0; index < request.size(); ++index)
                bytes.push_back(request.substr(index, 1));
            EXPECT_EQ(answerTo(server.port, bytes, family), expected) << "byte by byte";

            Client client(server.port, family);
            client.send(std::string(request) + "GET /next HTTP/1.1\r\n\r\nrest");
            client.endSending();
            EXPECT_EQ(client.receiveAll(), expected) << "with more behind it";
        }
    }

    TemporaryFolder folder;
    std::filesystem::path root = folder / "site";
    FileHTTPServer server{root.string(), pool()};
};

} // namespace brevane::test
