#include "Platform/Headless/ScriptedHTTP.h"

namespace platform::headless {
namespace {

std::exception_ptr connectionLost() {
    return std::make_exception_ptr(HTTPError("The connection was lost."));
}

} // namespace

class ScriptedHTTP::Session : public HTTPSession {
public:
    explicit Session(ScriptedHTTP& owner) : network(owner) {}

protected:
    std::unique_ptr<HTTPExchange> open(HTTPRequest request) override {
        return network.open(std::move(request));
    }

private:
    ScriptedHTTP& network;
};

class ScriptedHTTP::Exchange : public HTTPExchange {
public:
    Exchange(ScriptedHTTP& owner, std::shared_ptr<HTTPEvents> source)
        : HTTPExchange(std::move(source)), network(owner) {
        ++network.openExchanges;
    }
    ~Exchange() override { --network.openExchanges; }

private:
    ScriptedHTTP& network;
};

std::shared_ptr<HTTPSession> ScriptedHTTP::makeSession() {
    return std::make_shared<Session>(*this);
}

void ScriptedHTTP::disconnect() {
    for (const auto& transfer : transfers)
        if (auto events = transfer.lock())
            events->finish(connectionLost());
}

std::unique_ptr<HTTPExchange> ScriptedHTTP::open(HTTPRequest request) {
    requests.push_back(request);
    auto events = std::make_shared<HTTPEvents>();
    transfers.push_back(events);
    auto answer = respond ? respond(request) : ScriptedAnswer{.end = ScriptedAnswer::End::stall};
    Duration due = answer.delay;
    auto deliver = [&](auto action) {
        runLoop.postAfter(due, [weak = std::weak_ptr(events), action] {
            if (auto open = weak.lock())
                action(*open);
        });
        due += answer.delay;
    };
    // A stalled answer without pieces has not even begun.
    if (answer.end == ScriptedAnswer::End::complete || !answer.pieces.empty())
        deliver([status = answer.status](HTTPEvents& open) { open.push(HTTPResponse{status}); });
    for (const auto& piece : answer.pieces)
        deliver([piece](HTTPEvents& open) { open.push(piece); });
    if (answer.end != ScriptedAnswer::End::stall)
        deliver([failed = answer.end == ScriptedAnswer::End::fail](HTTPEvents& open) {
            open.finish(failed ? connectionLost() : nullptr);
        });
    return std::make_unique<Exchange>(*this, std::move(events));
}

} // namespace platform::headless
