#include "Service/Options.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <vector>

using namespace lumarin::service;

namespace {

Options parse(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "lumarin-service");
    arguments.push_back(nullptr);
    return parseOptions(static_cast<int>(arguments.size()) - 1, const_cast<char* const*>(arguments.data()));
}

} // namespace

TEST(Options, ListenOnTheLoopbackUnlessToldOtherwise) {
    setenv("XDG_DATA_HOME", "/data", 1);
    auto options = parse({});
    EXPECT_EQ(options.host, "127.0.0.1");
    EXPECT_EQ(options.port, 8443);
    EXPECT_EQ(options.certificate, "/data/lumarin-service/certificate.pem");
    setenv("XDG_DATA_HOME", "relative", 1);
    setenv("HOME", "/home/me", 1);
    EXPECT_EQ(parse({}).certificate, "/home/me/.local/share/lumarin-service/certificate.pem");

    options = parse({"--listen", "[::1]:0", "--certificate=here.pem"});
    EXPECT_EQ(options.host, "::1");
    EXPECT_EQ(options.port, 0);
    EXPECT_EQ(options.certificate, "here.pem");
}

TEST(Options, RefuseWhatCannotBeMeant) {
    const std::vector<std::vector<const char*>> cases = {{"--listen", "8443"},
                                                         {"--listen", ":8443"},
                                                         {"--listen", "localhost:"},
                                                         {"--listen", "localhost:65536"},
                                                         {"--listen", "localhost:80a"},
                                                         {"--listen"},
                                                         {"--unknown"},
                                                         {"localhost:80"}};
    for (const auto& arguments : cases)
        EXPECT_THROW(parse(arguments), OptionError) << arguments.back();
}
