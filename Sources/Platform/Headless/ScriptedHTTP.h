#pragma once

#include "Platform/Foundation/HTTPSession.h"
#include "Platform/Foundation/RunLoop.h"

#include <functional>
#include <memory>
#include <vector>

namespace platform::headless {

// An answer and when it comes: the head after `delay`, each piece of the body `delay` after what came before
// it.
struct ScriptedAnswer {
    std::optional<int> status = 200;
    std::vector<std::string> pieces{};
    Duration delay{};
    // How the transfer ends after that: well, with an error, or not at all.
    enum class End { complete, fail, stall } end = End::complete;
};

// The network of a machine in memory: every request of every session is answered by `respond`.
class ScriptedHTTP {
public:
    explicit ScriptedHTTP(RunLoop& clock) : runLoop(clock) {}

    std::function<ScriptedAnswer(const HTTPRequest&)> respond;

    // What was asked and how many transfers their readers have not let go of.
    std::vector<HTTPRequest> requests;
    int openExchanges = 0;

    std::shared_ptr<HTTPSession> makeSession();

    // Ends every transfer that is still open with an error.
    void disconnect();

private:
    class Session;
    class Exchange;

    std::unique_ptr<HTTPExchange> open(HTTPRequest request);

    RunLoop& runLoop;
    std::vector<std::weak_ptr<HTTPEvents>> transfers;
};

} // namespace platform::headless
