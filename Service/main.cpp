#include "Platform/Network/CurlAddress.h"
#include "Service/FoundModels.h"
#include "Service/Gloss/Gloss.h"
#include "Service/Options.h"
#include "Service/Server.h"
#include "Service/Tokens.h"
#include "Service/Upstream/Upstreams.h"
#include "Service/UpstreamCheck.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/experimental/awaitable_operators.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <csignal>
#include <exception>
#include <iostream>
#include <string>
#include <sys/resource.h>

namespace {

using namespace lumarin::service;

constexpr std::chrono::seconds timeToEnd{10};

// Ends the server on the signals while it runs: gives the answers under way some time, or none when asked
// again.
asio::awaitable<void> endOnSignals(asio::signal_set& signals, Server& server, const Log& log) {
    using namespace asio::experimental::awaitable_operators;
    co_await signals.async_wait(asio::use_awaitable);
    log.write("stopping");
    server.stop();
    co_await (signals.async_wait(asio::use_awaitable) || pause(timeToEnd));
    server.abandon();
}

// Each translation takes several descriptors; the usual limit is there for programs that use select().
void raiseDescriptorLimit() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        limit.rlim_cur = limit.rlim_max;
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
}

UpstreamConfiguration configurationOf(const UpstreamOptions& options) {
    constexpr std::chrono::seconds usualSilence{8};
    // A server on this computer may have to load the model first.
    constexpr std::chrono::seconds silenceWhileLoading{60};
    std::shared_ptr<const platform::TrustedCertificates> authorities;
    if (!options.upstreamAuthority.empty())
        authorities = std::make_shared<platform::TrustedCertificates>(options.upstreamAuthority);
    return {.url = options.upstream,
            .model = options.model,
            .key = options.key,
            .parameters = options.parameters,
            .silence =
                options.timeout.value_or(options.upstream.empty() ? silenceWhileLoading : usualSilence),
            .authorities = authorities};
}

// Those that have been named.
std::vector<UpstreamOptions> upstreamsOf(const Options& options) {
    return options.upstreams.empty() ? std::vector<UpstreamOptions>{options} : options.upstreams;
}

bool searchesForModel(const Options& options) {
    return options.upstream.empty() && options.upstreams.empty();
}

// Looks for a model before it returns; that it looks again is up to the caller.
std::unique_ptr<FoundModels> findModels(const Options& options, const Log& log) {
    auto found = std::make_unique<FoundModels>(configurationOf(options), log);
    asio::io_context loop{1};
    asio::co_spawn(loop, found->look(), asio::detached);
    loop.run();
    return found;
}

std::unique_ptr<TranslationEngine> makeEngine(const Options& options) {
    if (options.upstream == Options::gloss)
        return std::make_unique<Gloss>();
    std::vector<Upstreams::Choice> choices;
    for (const UpstreamOptions& each : upstreamsOf(options))
        choices.push_back({configurationOf(each), each.weight});
    return std::make_unique<Upstreams>(std::move(choices));
}

std::unique_ptr<Server> makeServer(const TranslationEngine& engine, const Options& options, const Log& log) {
    try {
        return std::make_unique<Server>(engine, options, log);
    } catch (const std::runtime_error& error) {
        throw OptionError(error.what()); // A certificate or tokens that cannot be used.
    }
}

std::string address(const std::string& host, std::uint16_t port) {
    const bool isIpv6 = host.find(':') != std::string::npos;
    return "https://" + (isIpv6 ? "[" + host + "]" : host) + ":" + std::to_string(port);
}

void toStandardError(const std::string& line) {
    std::cerr << line + "\n";
}

void warnOfOpenKeys(const Options& options, const Log& log) {
    for (const UpstreamOptions& each : upstreamsOf(options))
        if (!each.key.empty() && each.upstream.starts_with("http:")
            && !platform::CurlAddress(each.upstream, platform::CurlAddress::PlainHTTP::everywhere).isLoopback)
            log.write("warning",
                      {{"upstream", each.upstream},
                       {"detail", "The key is sent over plain http: whoever is on the way can read "
                                  "it. Use https."}});
}

void serve(const Options& options) {
    raiseDescriptorLimit();
    const Log log(toStandardError);
    warnOfOpenKeys(options, log);
    const auto found = searchesForModel(options) ? findModels(options, log) : nullptr;
    const auto chosen = found ? nullptr : makeEngine(options);
    const TranslationEngine& engine = found ? *found : *chosen;
    const auto server = makeServer(engine, options, log);
    const std::uint16_t port = server->bind(options.host, options.port);
    asio::signal_set signals(server->context(), SIGTERM, SIGINT);
    asio::co_spawn(server->context(), endOnSignals(signals, *server, log), asio::detached);
    if (found)
        asio::co_spawn(server->context(), found->keepLooking(), asio::detached);
    const auto model = found ? found->model() : std::nullopt;
    std::string upstream = model ? model->url : found ? Options::gloss : "";
    if (!found)
        for (const UpstreamOptions& each : upstreamsOf(options))
            upstream += (upstream.empty() ? "" : ", ") + each.upstream;
    log.write("started", {{"listen", address(options.host, port)}, {"upstream", upstream}});
    if (model)
        std::cout
            << "Translating with the model " << model->name << " at " << model->url
            << ", which was found there.\n--upstream URL and --model NAME choose another, --upstream gloss "
               "the built-in gloss.\n";
    std::cout << "Listening on " << address(options.host, port) << std::endl;
    server->run();
    log.write("stopped");
}

bool check(const Options& options) {
    const Log silent([](const std::string&) {});
    const auto found = searchesForModel(options) ? findModels(options, silent) : nullptr;
    if (!found && options.upstream != Options::gloss) {
        bool isWell = true;
        for (const UpstreamOptions& each : upstreamsOf(options)) {
            std::cout << each.upstream << (each.model.empty() ? "" : ", " + each.model) << ":\n";
            isWell = checkUpstream(Upstream(configurationOf(each)), options.requestTime, std::cout) && isWell;
        }
        return isWell;
    }
    if (found && found->model())
        std::cout << "Found the model " << found->model()->name << " at " << found->model()->url << ".\n";
    else if (found)
        std::cout << "There is no model server on this computer: the built-in gloss answers.\n"
                     "Start one, or name one by --upstream URL.\n";
    const Gloss gloss;
    const TranslationEngine& engine = found ? static_cast<const TranslationEngine&>(*found) : gloss;
    return checkUpstream(engine, options.requestTime, std::cout);
}

} // namespace

int main(int count, char** arguments) {
    constexpr int usageError = 2;
    try {
        const Options options = parseOptions(count, arguments);
        if (options.help) {
            std::cout << usage();
            return EXIT_SUCCESS;
        }
        if (options.check)
            return check(options) ? EXIT_SUCCESS : EXIT_FAILURE;
        if (!options.removeClient.empty())
            Tokens::remove(options.tokens, options.removeClient);
        if (!options.addClient.empty())
            std::cout << Tokens::add(options.tokens, options.addClient) << "\n";
        if (options.addClient.empty() && options.removeClient.empty())
            serve(options);
        return EXIT_SUCCESS;
    } catch (const OptionError& error) {
        std::cerr << "lumarin-service: " << error.what() << "\n";
        return usageError;
    } catch (const std::exception& error) {
        std::cerr << "lumarin-service: " << error.what() << "\n";
        return EXIT_FAILURE;
    }
}
