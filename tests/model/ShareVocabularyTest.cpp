// SPDX-License-Identifier: MIT
#include "ServeEntry.h"
#include "ServeMode.h"
#include "SourceType.h"

#include <gtest/gtest.h>

#include <set>
#include <string_view>
#include <thread>
#include <vector>

namespace brevane::test {
namespace {

TEST(ServeMode, IsMadeFromItsExactTextOnly) {
    EXPECT_EQ(fromRawValue<ServeMode>("Serve"), ServeMode::serve);
    EXPECT_EQ(fromRawValue<ServeMode>("Funnel"), ServeMode::funnel);
    for (std::string_view text : {"serve", "funnel", "SERVE", "", " Serve", "Serve "})
        EXPECT_FALSE(fromRawValue<ServeMode>(text)) << text;
}

TEST(ServeMode, AllCasesStandInPickerOrder) {
    std::vector<std::string_view> labels;
    for (ServeMode mode : allServeModes)
        labels.push_back(rawValue(mode));
    EXPECT_EQ(labels, (std::vector<std::string_view>{"Serve", "Funnel"}));
}

TEST(SourceType, IsMadeFromItsExactTextOnly) {
    EXPECT_EQ(fromRawValue<SourceType>("HTTPS (self-signed)"), SourceType::httpsInsecure);
    EXPECT_EQ(fromRawValue<SourceType>("TCP Forward"), SourceType::tcpForward);
    for (std::string_view text : {"httpsInsecure", "tcp forward", "Port Proxy", ""})
        EXPECT_FALSE(fromRawValue<SourceType>(text)) << text;
}

TEST(SourceType, AllCasesStandInPickerOrderAndKeepTheirText) {
    std::vector<std::string_view> labels;
    for (SourceType type : allSourceTypes) {
        labels.push_back(rawValue(type));
        EXPECT_EQ(fromRawValue<SourceType>(rawValue(type)), type);
        EXPECT_EQ(id(type), rawValue(type));
    }
    EXPECT_EQ(labels,
              (std::vector<std::string_view>{"Port / App URL", "File", "Directory",
                                             "HTTPS (self-signed)", "Plain Text", "TCP Forward"}));
}

TEST(HandlerType, IsMadeFromItsExactTextOnly) {
    using HandlerType = ServeEntry::HandlerType;
    EXPECT_EQ(fromRawValue<HandlerType>("Port Proxy"), HandlerType::proxy);
    EXPECT_EQ(fromRawValue<HandlerType>("File/Directory"), HandlerType::filePath);
    EXPECT_EQ(fromRawValue<HandlerType>("Text"), HandlerType::text);
    EXPECT_EQ(fromRawValue<HandlerType>("TCP Forward"), HandlerType::tcp);
    EXPECT_FALSE(fromRawValue<HandlerType>("Proxy"));
    EXPECT_EQ(rawValue(HandlerType::filePath), "File/Directory");
}

TEST(RawValue, OfNoCaseIsEmpty) {
    EXPECT_EQ(rawValue(static_cast<ServeMode>(7)), "");
}

TEST(MakeEntryId, IsARandomUuidNeverDrawnTwiceOnAnyThread) {
    std::vector<std::vector<boost::uuids::uuid>> drawn(4, std::vector<boost::uuids::uuid>(5000));
    std::vector<std::thread> threads;
    for (auto& ids : drawn)
        threads.emplace_back([&ids] {
            for (auto& id : ids)
                id = makeEntryId();
        });
    for (auto& thread : threads)
        thread.join();

    std::set<boost::uuids::uuid> distinct;
    for (const auto& ids : drawn)
        for (const auto& id : ids) {
            EXPECT_EQ(id.version(), boost::uuids::uuid::version_random_number_based);
            EXPECT_EQ(id.variant(), boost::uuids::uuid::variant_rfc_4122);
            distinct.insert(id);
        }
    EXPECT_EQ(distinct.size(), 20000U);
}

} // namespace
} // namespace brevane::test
