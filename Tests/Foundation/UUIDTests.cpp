#include "Platform/Foundation/UUID.h"

#include <gtest/gtest.h>
#include <regex>
#include <set>

using namespace platform;

TEST(UUID, IsRandomOfVersionFourInUpperCase) {
    const std::regex form("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
    std::set<std::string> seen;
    for (int i = 0; i < 200; ++i) {
        const std::string uuid = randomUUID();
        EXPECT_TRUE(std::regex_match(uuid, form)) << uuid;
        EXPECT_TRUE(seen.insert(uuid).second) << uuid;
    }
}
