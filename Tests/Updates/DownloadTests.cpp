#include "Network/TestService.h"
#include "Platform/Updates/PackageDownload.h"
#include "Updates/UpdatesTest.h"

using namespace tests;
using platform::headless::ScriptedAnswer;

namespace {

class Downloads : public UpdatesTest {
protected:
    Downloads() {
        serve(key.signFeed(feedOf(item("12", "<sparkle:shortVersionString>1.2</sparkle:shortVersionString>"
                                             "<description xml:lang='zh'>好</description>"
                                             "<description xml:lang='en-GB'>&lt;li>Good</description>"))));
        servePackage(package);
    }

    void servePackage(const std::string& bytes, ScriptedAnswer::End end = ScriptedAnswer::End::complete) {
        ScriptedAnswer answer{.end = end};
        for (std::size_t at = 0; at < bytes.size(); at += 16'384)
            answer.pieces.push_back(bytes.substr(at, 16'384));
        served["https://updates.test/get/App%201.1.deb?x=1"] = answer;
    }

    std::vector<std::string> downloaded() const {
        std::vector<std::string> names;
        std::error_code ignored;
        for (const auto& entry : std::filesystem::directory_iterator(folder / "Downloads", ignored))
            names.push_back(entry.path().filename());
        std::ranges::sort(names);
        return names;
    }

    // Downloads what is found; what the person is told after that.
    platform::Alert download() {
        host.alertsShown.answers = {0};
        const auto before = host.applications.revealed.size();
        check();
        await(
            [&] { return host.applications.revealed.size() > before || host.alertsShown.shown.size() > 1; });
        host.advance(1s);
        return host.alertsShown.shown.size() > 1 ? host.alertsShown.shown.back() : platform::Alert();
    }
};

} // namespace

TEST_F(Downloads, AreSavedUnderAFreeNameAndRevealed) {
    for (const char* name : {"App 1.1.deb", "App 1.1 (2).deb"}) {
        EXPECT_EQ(download().messageText, "");
        EXPECT_EQ(host.applications.revealed.back(), folder / "Downloads" / name);
        EXPECT_EQ(bytesOf(folder / "Downloads" / name), package);
        EXPECT_EQ(permissionsOf(folder / "Downloads" / name), 0600U);
    }
    EXPECT_EQ(downloaded(), (std::vector<std::string>{"App 1.1 (2).deb", "App 1.1.deb"}));
    const auto& offer = host.alertsShown.shown.front();
    EXPECT_EQ(offer.messageText, "Lumarin 1.2 is available");
    EXPECT_TRUE(offer.informativeText.ends_with("\n\nWhat is new:\n• Good")) << offer.informativeText;
    EXPECT_EQ(offer.buttons, (std::vector<std::string>{"Download", "Later"}));
    EXPECT_EQ(host.alertsShown.progress.back().fraction, 1.0);
    EXPECT_FALSE(host.alertsShown.progress.back().isShown);
}

TEST_F(Downloads, LeaveNothingBehindWhenTheyGoWrong) {
    std::string forged = package;
    forged[100'000] ^= 1;
    const auto brokenOff = [&](const std::string& why) {
        return platform::text::format(text("updates.error.package"), {why});
    };
    const std::tuple<std::string, ScriptedAnswer::End, std::string> cases[] = {
        {forged, ScriptedAnswer::End::complete, text("updates.error.package_signature")},
        {package.substr(1), ScriptedAnswer::End::complete, text("updates.error.package_length")},
        {package + "x", ScriptedAnswer::End::stall, brokenOff("The server’s response is too long.")},
        {package.substr(0, 50'000), ScriptedAnswer::End::fail, brokenOff("The connection was lost.")},
    };
    for (const auto& [bytes, end, expected] : cases) {
        servePackage(bytes, end);
        const auto alert = download();
        EXPECT_EQ(alert.messageText, text("updates.error.download"));
        EXPECT_EQ(alert.informativeText, expected);
        EXPECT_EQ(downloaded(), std::vector<std::string>());
        EXPECT_EQ(host.network.openExchanges, 0);
    }
    served.erase("https://updates.test/get/App%201.1.deb?x=1");
    EXPECT_EQ(download().informativeText, platform::text::format(text("updates.error.status"), {"404"}));
    std::filesystem::remove_all(folder / "Downloads");
    folder.write("Downloads", "a file in the folder's place");
    EXPECT_EQ(download().messageText, text("updates.error.download"));
    EXPECT_TRUE(host.applications.revealed.empty());
}

TEST_F(Downloads, EndAtOnceWhenCancelledOrDropped) {
    servePackage(package.substr(0, 50'000), ScriptedAnswer::End::stall);
    const auto begin = [&] {
        host.alertsShown.answers = {0};
        check();
        host.advance(1s);
        EXPECT_EQ(downloaded().size(), 1U);
        EXPECT_EQ(host.alertsShown.progress.back().fraction, 0.16);
        EXPECT_EQ(host.alertsShown.progress.back().alert.messageText, "Downloading Lumarin 1.2…");
    };
    begin();
    controller->checkForUpdates();
    host.advance(1s);
    EXPECT_EQ(host.network.requests.size(), 2U) << "A second check was begun beside the first";
    host.alertsShown.progress.back().cancel();
    host.advance(1s);
    EXPECT_FALSE(host.alertsShown.progress.back().isShown);
    EXPECT_EQ(downloaded(), std::vector<std::string>());
    EXPECT_EQ(host.network.openExchanges, 0);
    begin();
    controller.reset();
    EXPECT_EQ(downloaded(), std::vector<std::string>()) << "The program may end at once";
    host.advance(1s);
    EXPECT_EQ(host.alertsShown.shown.size(), 1U) << "Only the offer";
}

TEST_F(Downloads, AreNamedSafely) {
    const std::pair<std::string, std::string> cases[] = {
        {"https://x/..%2F..%2Fetc%2Fpasswd", "etcpasswd"},
        {"https://x/a/", "update"},
        {"https://x/..", "update"},
        {"https://x/%2e%2E%5C..%2f.ssh%2Fkeys", "sshkeys"},
        {"https://x/%00%0A.bashrc", "bashrc"},
        {"https://x/%E5%A5%BD%FF.deb#f/g", "好\uFFFD.deb"},
        {"https://x/%zz%4", "%zz%4"},
    };
    for (const auto& [url, name] : cases) {
        platform::AppcastItem item;
        item.fileURL = url;
        EXPECT_EQ(platform::packageFileName(item), name);
    }
    platform::AppcastItem item;
    item.fileURL = "https://x/" + std::string(5000, 'n');
    EXPECT_EQ(platform::packageFileName(item).size(), 120U);
}

TEST_F(Downloads, ASlowCheckShowsThatItIsUnderWay) {
    auto& feed = served["https://updates.test/feed.xml"];
    feed.delay = 200ms;
    controller->checkForUpdates();
    host.advance(499ms);
    EXPECT_TRUE(host.alertsShown.progress.empty());
    host.advance(1ms);
    ASSERT_EQ(host.alertsShown.progress.size(), 1U);
    EXPECT_EQ(host.alertsShown.progress[0].alert.messageText, "Checking for updates…");
    const int before = host.activations;
    controller->checkForUpdates();
    EXPECT_EQ(host.activations, before + 1) << "its window may be covered";
    host.alertsShown.progress[0].cancel();
    host.advance(1s);
    EXPECT_FALSE(host.alertsShown.progress[0].isShown);
    EXPECT_TRUE(host.alertsShown.shown.empty() && found.empty() && reason.empty());
    feed.delay = {};
    check();
    EXPECT_EQ(found, "12");
    EXPECT_EQ(host.alertsShown.progress.size(), 1U);
}

TEST_F(Downloads, GoThroughRealTLS) {
    std::string feed;
    TestService service(Protocol::http1, answering([&](const TLSConnection::Request& request) {
                            return ok(request.head.starts_with("GET /feed") ? feed : package);
                        }));
    package.assign(5'000'000, 'q');
    feed = key.signFeed(feedOf("<item><sparkle:version>12</sparkle:version><enclosure url='"
                               + service.url("/p.deb") + "' length='5000000' sparkle:edSignature='"
                               + key.sign(package) + "'/></item>"));
    configure(service.url("/feed"));
    // A bundle reads its configuration once.
    platform::headless::HeadlessHost machine{folder.path(), folder / "Resources"};
    machine.sessionMaker = [&](const platform::HTTPSessionConfiguration& configuration) {
        return std::make_shared<platform::CurlSession>(configuration, service.authorityFile());
    };
    machine.alertsShown.answers = {0};
    platform::Host::setCurrent(&machine);
    controller->checkForUpdates();
    await([&] {
        machine.advance(1ms);
        return !machine.applications.revealed.empty();
    });
    EXPECT_EQ(found, "12");
    EXPECT_EQ(bytesOf(folder / "Downloads" / "p.deb"), package);
}
