#pragma once

#include "Platform/Foundation/ThreadRunLoop.h"
#include "Platform/Network/CurlSession.h"
#include "Support/HTTP2Front.h"
#include "Support/TLSServer.h"
#include "Support/TemporaryFolder.h"

#include <future>
#include <gtest/gtest.h>

namespace tests {

enum class Protocol { http1, http2 };

const auto bothProtocols = testing::Values(Protocol::http1, Protocol::http2);

inline std::string nameOfProtocol(const testing::TestParamInfo<Protocol>& each) {
    return each.param == Protocol::http1 ? "HTTP1" : "HTTP2";
}

// A scripted server that is reached by the one protocol or the other, with a certificate of its own.
class TestService {
public:
    TestService(Protocol protocol, TLSServer::Script script, const std::string& names = "IP:127.0.0.1")
        : identity(names), server(protocol == Protocol::http1 ? &identity : nullptr, std::move(script)) {
        if (protocol == Protocol::http2)
            front.emplace(identity, server.port);
    }

    std::string url(const std::string& path = "/") const {
        return "https://127.0.0.1:" + std::to_string(front ? front->port : server.port) + path;
    }

    // How many connections the client has made.
    int connections() const { return front ? front->connectionsUsed() : server.accepted.load(); }

    std::filesystem::path authorityFile() const {
        return folder.write("authority.pem", identity.certificatePEM());
    }

private:
    TemporaryFolder folder;
    Identity identity;
    TLSServer server;
    std::optional<HTTP2Front> front;
};

struct Outcome {
    std::optional<platform::HTTPResponse> head;
    std::vector<std::string> lines;
    std::string error;
};

enum class Reading { lines, wholeBody };

// A request whose answer is read on a thread of its own.
class Fetch {
public:
    Fetch(platform::HTTPSession& session, platform::HTTPRequest request, Reading reading = Reading::lines)
        : task(spawn(reader.runLoop(), read(session, std::move(request), reading, this))) {}

    ~Fetch() {
        cancel();
        hasEnded.wait();
    }
    Fetch(const Fetch&) = delete;
    Fetch& operator=(const Fetch&) = delete;

    void cancel() { task.cancel(); }

    // Waits until a line has been read.
    void awaitLine() { expectSoon(hasFirstLine); }

    Outcome outcome() {
        expectSoon(hasEnded);
        return result;
    }

private:
    static platform::Task<void> read(platform::HTTPSession& session, platform::HTTPRequest request,
                                     Reading reading, Fetch* self) {
        try {
            auto answer = co_await session.bytes(std::move(request));
            self->result.head = answer.response;
            if (reading == Reading::wholeBody)
                self->result.lines.push_back(co_await answer.readAll());
            while (auto line = co_await answer.nextLine()) {
                self->result.lines.push_back(std::move(*line));
                if (self->result.lines.size() == 1)
                    self->firstLine.set_value();
            }
        } catch (const platform::HTTPError& error) {
            self->result.error = error.what();
        } catch (const platform::CancellationError&) {
            self->result.error = "cancelled";
        }
        self->ended.set_value();
    }

    static void expectSoon(const std::shared_future<void>& future) {
        if (future.wait_for(20s) != std::future_status::ready)
            throw std::runtime_error("The transfer hangs");
    }

    Outcome result;
    std::promise<void> firstLine;
    std::promise<void> ended;
    std::shared_future<void> hasFirstLine = firstLine.get_future();
    std::shared_future<void> hasEnded = ended.get_future();
    platform::WorkerThread reader;
    platform::TaskHandle task;
};

inline platform::HTTPRequest get(const std::string& url) {
    return {.url = url, .headers = {}, .body = {}};
}

inline platform::HTTPRequest post(const std::string& url, const std::string& body) {
    return {.url = url, .method = "POST", .headers = {{"Content-Type", "application/json"}}, .body = body};
}

inline Outcome fetch(platform::HTTPSession& session, platform::HTTPRequest request) {
    return Fetch(session, std::move(request)).outcome();
}

// Answers each request of a connection with what `respond` makes of it.
template <typename Respond>
TLSServer::Script answering(Respond respond) {
    return [respond](TLSConnection& connection) {
        while (const auto request = connection.readRequest())
            connection.send(respond(*request));
    };
}

inline std::string ok(const std::string& body) {
    return answer("200 OK", "", body);
}

} // namespace tests
