#pragma once

#include "Service/Server.h"
#include "Support/TemporaryFolder.h"

#include <chrono>
#include <gtest/gtest.h>
#include <httplib.h>
#include <mutex>
#include <nlohmann/json.hpp>
#include <thread>
#include <vector>

namespace tests {

// The service on a free port, and clients that trust nothing but its certificate.
class RunningService {
public:
    using Options = lumarin::service::Options;
    using Adjust = std::function<void(Options&)>;

    explicit RunningService(const lumarin::service::TranslationEngine& engine, const Adjust& adjust = {})
        : options(optionsFor(folder, adjust)), server(engine, options, events) {}
    ~RunningService() { stop(); }
    RunningService(const RunningService&) = delete;
    RunningService& operator=(const RunningService&) = delete;

    void stop() {
        server.stop();
        if (running.joinable())
            running.join();
    }

    std::unique_ptr<httplib::SSLClient> client(const std::string& host = "127.0.0.1") const {
        auto made = std::make_unique<httplib::SSLClient>(host, port);
        made->set_ca_cert_path(options.certificate.c_str());
        made->set_keep_alive(true);
        made->set_tcp_nodelay(true);
        // A long text takes its time under a sanitizer.
        made->set_read_timeout(std::chrono::seconds(60));
        return made;
    }

    // The log so far.
    std::vector<nlohmann::json> log() const {
        std::lock_guard lock(mutex);
        return lines;
    }

    static nlohmann::json streamRequest(const std::string& text, const std::string& language = "EN") {
        return {
            {"text", text}, {"system_prompt", "Be brief."}, {"target_language", language}, {"stream", true}};
    }
    static nlohmann::json wholeRequest(const std::string& text, const std::string& language = "EN") {
        return {{"text", text}, {"source_lang", "ZH"}, {"target_lang", language}};
    }

private:
    static Options optionsFor(const TemporaryFolder& folder, const Adjust& adjust) {
        Options options;
        options.certificate = folder / "service.pem";
        if (adjust)
            adjust(options);
        return options;
    }

    TemporaryFolder folder;
    mutable std::mutex mutex;
    std::vector<nlohmann::json> lines;
    lumarin::service::Log events{[this](const std::string& line) {
        std::lock_guard lock(mutex);
        lines.push_back(nlohmann::json::parse(line));
    }};

public:
    const Options options;
    lumarin::service::Server server;
    const std::uint16_t port = server.bind("127.0.0.1", 0);

private:
    std::thread running{[this] { server.run(); }};
};

} // namespace tests
