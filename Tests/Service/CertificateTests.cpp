#include "Service/HTTPS/CertificateKeeper.h"

#include "Service/Support/Handles.h"
#include "Support/Files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>
#include <sys/file.h>

using namespace lumarin::service;
using namespace tests;
using namespace std::chrono_literals;

namespace {

constexpr std::chrono::days year{365};

struct CertificateTest : testing::Test {
    // The bytes of both files.
    std::pair<std::string, std::string> ensure(std::chrono::system_clock::time_point now = today) {
        auto files = ensureCertificate(certificate, names, now);
        EXPECT_EQ(files.certificate, certificate);
        EXPECT_EQ(files.key, key);
        return {bytesOf(certificate), bytesOf(key)};
    }

    X509Certificate parsed() const {
        const auto pem = bytesOf(certificate);
        Bio bio(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())));
        return X509Certificate(PEM_read_bio_X509(bio.get(), nullptr, nullptr, nullptr));
    }

    static inline const auto today = std::chrono::system_clock::now();
    TemporaryFolder folder;
    std::filesystem::path certificate = folder / "a/b/service.pem";
    std::vector<std::string> names;
    std::filesystem::path key = folder / "a/b/service.key";
};

} // namespace

TEST_F(CertificateTest, IsMadePrivateAndKept) {
    auto made = ensure();
    EXPECT_EQ(permissionsOf(key), 0600U);
    EXPECT_EQ(permissionsOf(folder / "a"), 0700U);
    std::filesystem::permissions(key, std::filesystem::perms{0644});
    EXPECT_EQ(ensure(), made);
    EXPECT_EQ(permissionsOf(key), 0600U);
    EXPECT_EQ(ensure(today + 9 * year), made);
}

// HTTP clients differ in how closely they look.
TEST_F(CertificateTest, IsForTheLoopbackAndWhatItIsToldAndNothingElse) {
    const auto first = ensure();
    names = {"office.example", "192.0.2.7"};
    const auto second = ensure();
    EXPECT_NE(second, first);
    EXPECT_EQ(ensure(), second);
    const auto made = parsed();
    ASSERT_TRUE(made);
    for (const char* host : {"localhost", "office.example"})
        EXPECT_EQ(X509_check_host(made.get(), host, 0, 0, nullptr), 1) << host;
    for (const char* address : {"127.0.0.1", "::1", "192.0.2.7"})
        EXPECT_EQ(X509_check_ip_asc(made.get(), address, 0), 1) << address;
    EXPECT_EQ(X509_check_host(made.get(), "example.com", 0, 0, nullptr), 0);
    EXPECT_EQ(X509_check_ca(made.get()), 0);
}

TEST_F(CertificateTest, IsMadeAgainWhenItIsOfNoMoreUse) {
    auto made = ensure();
    auto later = ensure(today + 10 * year - 1h);
    EXPECT_NE(later, made);
    // The key of another certificate, none, a broken one.
    writeFile(key, made.second);
    EXPECT_NE(ensure().first, later.first);
    std::filesystem::remove(key);
    EXPECT_FALSE(ensure().second.empty());
    writeFile(key, "broken");
    EXPECT_NE(ensure().second, "broken");
    EXPECT_EQ(permissionsOf(key), 0600U);
}

TEST_F(CertificateTest, NeverWritesOverSomebodyElsesFiles) {
    auto [ours, oursKey] = ensure();
    using Files = std::pair<std::string, std::string>;
    for (const Files& files : {Files{"notes", ""}, {"", oursKey}, {"notes", oursKey}}) {
        writeFile(certificate, files.first);
        writeFile(key, files.second);
        EXPECT_THROW(ensure(), std::runtime_error);
        EXPECT_EQ(Files(bytesOf(certificate), bytesOf(key)), files);
    }
    EXPECT_THROW(ensureCertificate(key), std::runtime_error);
}

TEST_F(CertificateTest, IsRenewedWhileTheServiceRuns) {
    std::vector<std::string> lines;
    const Log log([&](const std::string& line) { lines.push_back(line); });
    CertificateKeeper keeper(certificate, {}, log);
    const auto first = keeper.context();
    keeper.renew(today + year);
    EXPECT_EQ(keeper.context(), first);
    // Nothing waits for a lock, and another's key may have its certificate in a moment.
    const auto soon = today + 10 * year - std::chrono::days(20);
    {
        const Descriptor locked(::open(certificate.parent_path().c_str(), O_RDONLY));
        ASSERT_EQ(::flock(locked.number(), LOCK_EX), 0);
        keeper.renew(soon);
    }
    const auto own = bytesOf(key);
    writeFile(key, "another's");
    keeper.renew(soon);
    EXPECT_EQ(bytesOf(key), "another's");
    EXPECT_EQ(keeper.context(), first);
    writeFile(key, own);
    // Those who trust the certificate find the next one beside it for a month, while the old one is served.
    const auto before = bytesOf(certificate);
    keeper.renew(soon);
    const auto both = bytesOf(certificate);
    EXPECT_TRUE(both.starts_with(before) && both.size() > before.size() * 3 / 2);
    EXPECT_EQ(permissionsOf(key), 0600U);
    keeper.renew(soon + std::chrono::days(18));
    EXPECT_EQ(bytesOf(certificate), both);
    const auto keys = bytesOf(key);
    EXPECT_LT(keeper.expiry(), today + 11 * year);
    keeper.renew(soon + std::chrono::days(20) - 1h);
    EXPECT_EQ(before + bytesOf(certificate), both);
    EXPECT_EQ(own + bytesOf(key), keys);
    const auto second = keeper.context();
    EXPECT_GT(keeper.expiry(), today + 19 * year);
    // Ended between the two files.
    writeFile(key, keys);
    EXPECT_EQ(CertificateKeeper(certificate, {}, log).expiry(), keeper.expiry());
    // One that cannot be used changes nothing, and is complained of once.
    writeFile(key, "broken");
    writeFile(certificate, "broken");
    lines.clear();
    keeper.renew();
    keeper.renew();
    EXPECT_EQ(keeper.context(), second);
    EXPECT_EQ(lines.size(), 1U);
}
