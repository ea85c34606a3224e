#include "Service/Engine/Refusal.h"
#include "Service/Tokens.h"
#include "Support/Files.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

using namespace lumarin::service;
using namespace std::chrono_literals;
using namespace tests;

namespace {

struct TokensTest : testing::Test {
    // The client's name, or why it is refused.
    std::string clientOf(const std::string& authorization) {
        try {
            return tokens->client(authorization, now += 2s);
        } catch (const Refusal& refusal) {
            EXPECT_EQ(refusal.status, 401);
            EXPECT_EQ(std::string(refusal.what()).find("anna"), std::string::npos);
            return refusal.cause;
        }
    }

    TemporaryFolder folder;
    std::filesystem::path file = folder / "tokens";
    std::vector<std::string> events;
    Log log{[this](const std::string& line) { events.push_back(line); }};
    std::string anna = Tokens::add(file, "anna");
    std::string bert = Tokens::add(file, "bert");
    std::optional<Tokens> tokens{std::in_place, file, log};
    Tokens::Clock::time_point now = Tokens::Clock::now();
};

} // namespace

TEST_F(TokensTest, TellClientsApartAndStrangersFromClients) {
    EXPECT_EQ(clientOf("Bearer " + anna), "anna");
    EXPECT_EQ(clientOf("bearer " + bert), "bert");
    EXPECT_NE(anna.substr(5), bert.substr(5));
    for (const char* none : {"", "Bearer", "Bearer ", "Basic YTpi"})
        EXPECT_EQ(clientOf(none), "no token") << none;
    const auto secret = anna.substr(5);
    for (const std::string& wrong :
         {std::string("anna"), std::string("anna."), anna + "0", anna.substr(0, anna.size() - 1),
          "bert." + secret, "." + secret, secret, std::string("carl.0")})
        EXPECT_EQ(clientOf("Bearer " + wrong), "unknown token") << wrong;
    EXPECT_EQ(bytesOf(file).find(secret), std::string::npos);
    EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms{0600});
}

TEST_F(TokensTest, FollowTheirFileAndKeepWhatTheyKnowWhereItIsOfNoUse) {
    const auto renewed = Tokens::add(file, "anna");
    EXPECT_EQ(clientOf("Bearer " + anna), "unknown token");
    EXPECT_EQ(clientOf("Bearer " + renewed), "anna");
    Tokens::remove(file, "bert");
    EXPECT_EQ(clientOf("Bearer " + bert), "unknown token");
    EXPECT_THROW(Tokens::remove(file, "bert"), std::runtime_error);

    const auto good = bytesOf(file);
    for (const std::string& bad :
         {good + "bert 12 34\n", good + good, good + "bert", std::string("\xff\n")}) {
        folder.write("tokens", bad);
        std::filesystem::permissions(file, std::filesystem::perms{0600});
        EXPECT_EQ(clientOf("Bearer " + renewed), "anna") << bad;
        EXPECT_THROW(Tokens(file, log), std::runtime_error) << bad;
    }
    std::filesystem::remove(file);
    EXPECT_EQ(clientOf("Bearer " + renewed), "anna");
    EXPECT_THROW(Tokens(file, log), std::runtime_error);
    folder.write("tokens", "# nobody\n\n");
    std::filesystem::permissions(file, std::filesystem::perms{0644});
    EXPECT_EQ(clientOf("Bearer " + renewed), "anna") << "others could read it";
    std::filesystem::permissions(file, std::filesystem::perms{0600});
    EXPECT_EQ(clientOf("Bearer " + renewed), "unknown token");
    for (const char* name : {"", "a b", "a.b", "ä"})
        EXPECT_THROW(Tokens::add(file, name), std::runtime_error) << name;
}
