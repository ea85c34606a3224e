#pragma once

#include "Platform/Foundation/Text.h"
#include "Platform/Headless/HeadlessHost.h"
#include "Platform/Updates/StandardUpdaterController.h"
#include "Support/ComesTrue.h"
#include "Support/Files.h"

#include <gtest/gtest.h>
#include <map>
#include <sodium.h>

namespace tests {

inline std::string base64(std::string_view bytes) {
    std::string text(sodium_base64_encoded_len(bytes.size(), sodium_base64_VARIANT_ORIGINAL), '\0');
    sodium_bin2base64(text.data(), text.size(), reinterpret_cast<const unsigned char*>(bytes.data()),
                      bytes.size(), sodium_base64_VARIANT_ORIGINAL);
    text.pop_back();
    return text;
}

// A publisher's key.
class SigningKey {
public:
    SigningKey() { crypto_sign_keypair(reinterpret_cast<unsigned char*>(open.data()), secret.data()); }

    std::string publicKey() const { return base64(open); }
    std::string sign(std::string_view bytes) const {
        std::string signature(crypto_sign_BYTES, '\0');
        crypto_sign_detached(reinterpret_cast<unsigned char*>(signature.data()), nullptr,
                             reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(),
                             secret.data());
        return base64(signature);
    }
    std::string signFeed(const std::string& feed) const {
        return feed + "<!-- sparkle-signatures:\nedSignature: " + sign(feed)
               + "\nlength: " + std::to_string(feed.size()) + "\n-->\n";
    }

private:
    std::string open = std::string(crypto_sign_PUBLICKEYBYTES, '\0');
    std::array<unsigned char, crypto_sign_SECRETKEYBYTES> secret{};
};

// A feed before its signature. The test's clock says 2026-11-16T18:35:58Z.
inline std::string feedOf(const std::string& items,
                          const std::string& valid = "start=2026-11-16T00:00:00Z; end=2027-02-14T00:00:00Z") {
    return "<?xml version=\"1.0\"?><rss version=\"2.0\" "
           "xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\"><channel>"
           "<dcterms:valid xmlns:dcterms=\"http://purl.org/dc/terms/\">"
           + valid + "</dcterms:valid>" + items + "</channel></rss>";
}

// Version 1.0 (build 10) of a program on Linux 12, and its publisher's server.
class UpdatesTest : public testing::Test, public platform::UpdaterDelegate {
protected:
    UpdatesTest() {
        platform::Host::setCurrent(&host);
        host.facts.operatingSystemVersion = "Example Linux 12 (worm)";
        host.network.respond = [this](const platform::HTTPRequest& request) {
            const auto place = served.find(request.url);
            return place == served.end() ? platform::headless::ScriptedAnswer{.status = 404} : place->second;
        };
        configure("https://updates.test/feed.xml");
    }

    void configure(const std::string& feedURL) {
        folder.write("Resources/Info.json",
                     R"({"CFBundleVersion": "10", "CFBundleShortVersionString": "1.0",)"
                     R"("SUPublicEDKey": ")"
                         + key.publicKey() + R"(", "SUFeedURL": ")" + feedURL + "\"}");
    }

    std::string enclosure(const std::string& attributes = "") const {
        return "<enclosure url=\"https://updates.test/get/App%201.1.deb?x=1\" length=\""
               + std::to_string(package.size()) + "\" sparkle:edSignature=\"" + key.sign(package) + "\" "
               + attributes + "/>";
    }
    std::string item(const std::string& version, const std::string& more = "") const {
        return "<item><sparkle:version>" + version + "</sparkle:version>" + enclosure() + more + "</item>";
    }

    void serve(const std::string& feed) { served["https://updates.test/feed.xml"] = {.pieces = {feed}}; }

    // Checks, and gives what the person is told.
    platform::Alert check() {
        found.clear();
        reason.clear();
        host.alertsShown.shown.clear();
        controller->checkForUpdates();
        host.advance(100ms);
        return host.alertsShown.shown.empty() ? platform::Alert() : host.alertsShown.shown.front();
    }

    // Advances until something that takes real time has come about.
    void await(const std::function<bool()>& condition) {
        ASSERT_TRUE(comesTrue([&] {
            host.advance(5ms);
            return condition();
        }));
    }

    std::string text(const std::string& textKey) const {
        return texts.localizedString(textKey, "?", "Updates");
    }

    void updaterDidFindValidUpdate(const platform::AppcastItem& update) override {
        found = update.versionString;
    }
    void updaterDidNotFindUpdate(const std::string& why) override { reason = why; }

    TemporaryFolder folder;
    platform::headless::HeadlessHost host{folder.path(), folder / "Resources"};
    const platform::Bundle texts{std::filesystem::path(LUMARIN_RESOURCES) / "en.lproj"};
    const SigningKey key;
    std::string package = std::string(300'000, 'p');
    std::map<std::string, platform::headless::ScriptedAnswer> served;
    // What the delegate was told.
    std::string found;
    std::string reason;
    std::shared_ptr<platform::UpdaterDelegate> delegate{this, [](platform::UpdaterDelegate*) {}};
    std::optional<platform::StandardUpdaterController> controller{
        std::in_place, delegate,
        platform::StandardUpdaterController::Texts{
            [this](const std::string& textKey) { return text(textKey); },
            [](const std::exception& error) { return std::string(error.what()); }}};
};

} // namespace tests
