#include "Updates/UpdatesTest.h"

#include "Platform/Updates/PlainText.h"
#include "Platform/Updates/Version.h"

using namespace tests;

TEST(Version, OrdersNumbersAndWhatComesBeforeThem) {
    // Each one is later than those before it; those in a row are the same.
    const std::vector<std::vector<std::string>> ascending = {{"0.9"},
                                                             {"1.0a2"},
                                                             {"1.0-alpha.10"},
                                                             {"1.0-beta", "v1.0.0-BETA+build.7"},
                                                             {"1.0-beta.2"},
                                                             {"1.0-rc1"},
                                                             {"1", "1.0", "1.0.0", "v01.0+5"},
                                                             {"1.0.1-rc.1"},
                                                             {"1.0.1"},
                                                             {"1.0.10", "1.0.0010"},
                                                             {"1.2"},
                                                             {"1.10"},
                                                             {"20260101"},
                                                             {"99999999999999999999"},
                                                             {"100000000000000000000"}};
    for (std::size_t low = 0; low < ascending.size(); ++low)
        for (std::size_t high = 0; high < ascending.size(); ++high)
            for (const auto& one : ascending[low])
                for (const auto& other : ascending[high])
                    EXPECT_EQ(platform::version::compare(one, other), low <=> high) << one << " " << other;
    for (const char* wrong : {"", "v", "beta", ".1", "1 0", "1/2", "1\n"})
        EXPECT_FALSE(platform::version::isValid(wrong)) << wrong;
    for (const auto& [sentence, version] : {std::pair{"Example Linux 12 (worm)", "12"},
                                            {"Version 14.5 (Build 23F79)", "14.5"},
                                            {"Rolling X11", ""},
                                            {"24.04", "24.04"}})
        EXPECT_EQ(platform::version::findIn(sentence), version);
}

TEST(ReleaseNotes, AreWhatAPersonCanReadOfThem) {
    const std::pair<std::string, std::string> cases[] = {
        {"<h2>New &amp; good</h2>\n<ul>\n <li>one\n  line</li><li class='x>'>two</li></ul>",
         "New & good\n• one line\n• '>two"},
        {"Plain\n  text & 1 < 2 &copy &#22909;&#x1F600;&#xD800;", "Plain\ntext & 1 < 2 &copy 好😀\uFFFD"},
        {"<!-- x > y --><style>p > a {}</style><SCRIPT>if (a < b) alert('<p>')</SCRIPT ><p>a<br/>b<p>c",
         "a\nb\nc"},
        {"<html><head><title>t</title></head><body>a<b>b</b>\x1b[31m\xff</body></html", "ab[31m\uFFFD"},
        {"<script>never ends", ""},
        {"<", "<"},
        {"<a", ""},
    };
    for (const auto& [html, expected] : cases)
        EXPECT_EQ(platform::abridged(platform::plainText(html)), expected) << html;
    std::string long_;
    for (int line = 0; line < 1000; ++line)
        long_ += std::string(1000, 'x') + "\n";
    const std::string shortened = platform::abridged(long_);
    EXPECT_LT(shortened.size(), 5000U);
    EXPECT_TRUE(shortened.ends_with("\n…"));
}

TEST_F(UpdatesTest, OffersTheHighestVersionThatCanRunHere) {
    const std::string old = item("11");
    const std::string other = "<item><sparkle:version>30</sparkle:version>";
    const std::string system = "<sparkle:minimumSystemVersion>";
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {item("9") + item("12") + old, "12", ""},
        {item("10"), "", "updates.none.newest"},
        {item("9.9"), "", "updates.none.newest"},
        {"", "", "updates.none.newest"},
        {item("9.9.9") + item("10.0-beta"), "", "updates.none.newest"},
        {old + item("20", "<sparkle:channel>beta</sparkle:channel>"), "11", ""},
        {old + item("20", system + "12.1.0</sparkle:minimumSystemVersion>"), "11", ""},
        {item("20", system + "13</sparkle:minimumSystemVersion>"), "", "updates.none.system"},
        {item("20", system + "12.0</sparkle:minimumSystemVersion>"), "20", ""},
        {item("20", "<sparkle:maximumSystemVersion>11.9</sparkle:maximumSystemVersion>"), "",
         "updates.none.system"},
        {old + other + enclosure("sparkle:os='windows'") + "</item>", "11", ""},
        {old + other + enclosure("sparkle:os='linux'") + "</item>", "30", ""},
        {old + other + "<enclosure/><sparkle:" + enclosure("sparkle:os='linux'").substr(1) + "</item>", "30",
         ""},
        {old + other + "</item>", "11", ""},
        {"<item>" + enclosure("sparkle:version='21'") + "</item>", "21", ""},
        // Of what is not properly signed, nothing is offered; what is, all the same.
        {old + other + "<enclosure url='https://x/y'/></item>", "11", ""},
        {"<item><sparkle:version>soon</sparkle:version>" + enclosure() + "</item>" + old, "11", ""},
    };
    for (const auto& [items, version, none] : cases) {
        serve(key.signFeed(feedOf(items)));
        const auto alert = check();
        EXPECT_EQ(found, version) << items;
        if (!none.empty()) {
            EXPECT_EQ(alert.messageText, text(none + ".title")) << items;
            EXPECT_EQ(reason, alert.informativeText);
        }
    }
    std::string renamed = key.signFeed(feedOf(item("12")));
    renamed.resize(renamed.find("<!--"));
    for (std::size_t at = 0; (at = renamed.find("sparkle:", at)) != std::string::npos;)
        renamed.replace(at, 8, "s:");
    renamed.replace(renamed.find("xmlns:sparkle"), 13, "xmlns:s");
    serve(key.signFeed(renamed));
    check();
    EXPECT_EQ(found, "12");
}

TEST_F(UpdatesTest, OffersNothingFromABadFeedAndSaysWhy) {
    const std::string feed = feedOf(item("12"));
    const std::string signedFeed = key.signFeed(feed);
    const std::string other = key.signFeed(feedOf(item("13")));
    const auto signature = [](const std::string& of) { return of.substr(of.find("<!-- ")); };
    const auto changed = [&](std::string text, const std::string& from, const std::string& to) {
        text.replace(text.find(from), from.size(), to);
        return text;
    };
    const std::string bomb = "<!DOCTYPE rss [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;\">]>"
                             "<rss><channel><item><title>&b;</title></item>";
    std::string deep;
    while (deep.size() < 1'500'000)
        deep += "<a>";
    const std::pair<std::string, std::string> unread[] = {
        {"", "malformed"},
        {"not xml", "malformed"},
        {"<html><body>Sign in to this network</body></html>", "malformed"},
        {feed, "unsigned_feed"},
        {feedOf(item("999999999")), "unsigned_feed"},
        {signedFeed.substr(0, signedFeed.size() / 2), "unsigned_feed"},
        {signedFeed.substr(0, signedFeed.size() - 5), "feed_signature"},
        {SigningKey().signFeed(feed), "feed_signature"},
        {feed + signature(other), "feed_signature"},
        {signedFeed + other, "feed_signature"},
        {changed(signedFeed, "<sparkle:version>12", "<sparkle:version>13"), "feed_signature"},
        {changed(signedFeed, "2027-", "2099-"), "feed_signature"},
        {changed(signedFeed, "length: ", "length: 1"), "feed_signature"},
        {changed(signedFeed, "edSignature: ", "edSignature: *"), "feed_signature"},
        {feed + " " + signature(signedFeed), "feed_signature"},
        {signedFeed + "<rss/>", "feed_signature"},
    };
    // The publisher's own faults.
    const std::pair<std::string, std::string> faulty[] = {
        {feed.substr(0, feed.size() / 2), "malformed"},
        {bomb, "malformed"},
        {std::string(1'500'000, '<'), "malformed"},
        {deep, "malformed"},
        {feedOf(item("12"), ""), "undated_feed"},
        {feedOf(item("12"), "end=2027-02-14T00:00:00Z"), "undated_feed"},
        {feedOf(item("12"), "start=2026-11-16T00:00:00Z; end=next year"), "undated_feed"},
        {changed(feed, "edSignature", "dsaSignature"), "unsigned_item"},
        {changed(feed, "edSignature=\"", "edSignature=\"AAAA"), "unsigned_item"},
        {changed(feed, "length=\"300000\"", ""), "length"},
        {changed(feed, "length=\"300000\"", "length=\"-5\""), "length"},
        {changed(feed, "length=\"300000\"", "length=\"99999999999\""), "length"},
        {changed(feed, "https://", "http://"), "insecure_item"},
    };
    const auto expectRefusal = [&](const std::string& bytes, const std::string& why) {
        serve(bytes);
        const auto alert = check();
        EXPECT_EQ(alert.messageText, text("updates.error.check"));
        EXPECT_EQ(alert.informativeText, why) << bytes.substr(0, 200);
        EXPECT_EQ(reason, alert.informativeText);
        EXPECT_EQ(found, "");
    };
    const auto sentence = [&](const std::string& fault, const std::string& about) {
        return platform::text::format(text("updates.error." + fault), {about});
    };
    for (const auto& [bytes, fault] : unread)
        expectRefusal(bytes, sentence(fault, ""));
    EXPECT_EQ(host.userDefaults().string("Lumarin.updateFeed"), std::nullopt) << "what anybody can list";
    for (const auto& [content, fault] : faulty)
        expectRefusal(key.signFeed(content), sentence(fault, "12"));
    expectRefusal(std::string(3'000'000, ' ') + signedFeed,
                  sentence("feed", "The server’s response is too long."));
    using platform::headless::ScriptedAnswer;
    auto& answer = served["https://updates.test/feed.xml"];
    for (const ScriptedAnswer& wrong : {ScriptedAnswer{.status = 404, .pieces = {feed}},
                                        ScriptedAnswer{.pieces = {feed}, .end = ScriptedAnswer::End::fail}}) {
        answer = wrong;
        EXPECT_EQ(check().messageText, text("updates.error.check"));
    }
    EXPECT_EQ(reason, sentence("feed", "The connection was lost."));
    serve(signedFeed);
    check();
    EXPECT_EQ(found, "12") << "Nothing of all that is remembered";
}

TEST_F(UpdatesTest, KnowsAnOldFeedFromANewOne) {
    const auto listed = [&](const std::string& version, const std::string& from, const std::string& to) {
        return key.signFeed(feedOf(item(version), "start=" + from + "; end=" + to));
    };
    const std::string first = "2026-11-14T07:00:00Z";
    const std::string second = "2026-11-15T07:00:00Z";
    const std::string third = "2026-11-15T07:00:01Z";
    const std::string end = "2027-02-14T00:00:00Z";
    const auto refused = [&](const std::string& fault, const std::string& day) {
        return platform::text::format(text("updates.error." + fault), {day});
    };
    const std::tuple<std::string, std::string, std::string> steps[] = {
        {listed("12", first, end), "12", ""},
        {listed("13", second, end), "13", ""},
        {listed("13", second, end), "13", ""},
        {listed("12", first, end), "", refused("older_feed", "2026-11-14")},
        {listed("99", first, end), "", refused("older_feed", "2026-11-14")},
        // A version that has been withdrawn.
        {listed("12", third, end), "12", ""},
        // By a clock that was far ahead, and by one that is right.
        {listed("14", "2099-01-01T00:00:00Z", "2099-04-01T00:00:00Z"), "14", ""},
        {listed("15", "2026-11-17T00:00:00Z", end), "15", ""},
        {listed("13", second, end), "", refused("older_feed", "2026-11-15")},
        {listed("16", "2026-11-17T00:00:00Z", "2026-11-16T18:35:57Z"), "",
         refused("expired_feed", "2026-11-16")},
    };
    for (const auto& [feed, version, expected] : steps) {
        serve(feed);
        check();
        EXPECT_EQ(found, version);
        EXPECT_EQ(version.empty() ? reason : "", expected);
    }
}

TEST(Updates, AskNobodyWithoutASafeAddressAndAKey) {
    const std::string good =
        R"("SUFeedURL": "https://x.test/f", "SUPublicEDKey": ")" + SigningKey().publicKey() + "\"";
    const std::pair<std::string, std::string> cases[] = {
        {R"({"CFBundleVersion": "1"})", "no_feed"},
        {R"({"CFBundleVersion": "1", "SUFeedURL": "http://127.0.0.1/f"})", "insecure_feed"},
        {R"({"CFBundleVersion": "1", "SUFeedURL": "file:///f"})", "insecure_feed"},
        {R"({"CFBundleVersion": "1", "SUFeedURL": "https://x.test/f"})", "no_key"},
        {R"({"CFBundleVersion": "1", "SUFeedURL": "https://x.test/f", "SUPublicEDKey": "AAAA"})", "no_key"},
        {"{" + good + "}", "no_version"},
    };
    for (const auto& [info, fault] : cases) {
        const TemporaryFolder folder;
        folder.write("Resources/Info.json", info);
        platform::headless::HeadlessHost host{folder.path(), folder / "Resources"};
        platform::Host::setCurrent(&host);
        platform::StandardUpdaterController controller({},
                                                       {[](const std::string& key) { return key; }, nullptr});
        controller.checkForUpdates();
        host.advance(1s);
        ASSERT_EQ(host.alertsShown.shown.size(), 1U);
        EXPECT_EQ(host.alertsShown.shown[0].informativeText, "updates.error." + fault);
        EXPECT_TRUE(host.network.requests.empty());
    }
}
