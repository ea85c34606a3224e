#include "Service/Upstream/LocalModels.h"

#include "Platform/Foundation/Json.h"

#include <algorithm>
#include <array>
#include <boost/asio/as_tuple.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http.hpp>
#include <cctype>
#include <exception>
#include <nlohmann/json.hpp>
#include <vector>

namespace lumarin::service {
namespace {

namespace beast = boost::beast;
using nlohmann::json;

constexpr std::chrono::milliseconds timeForList{500};
constexpr std::size_t longestList = std::size_t{1024} * 1024;

// The defaults of ollama, LM Studio, llama-server, vLLM, text-generation-webui, KoboldCpp, Jan and GPT4All.
constexpr auto ports = std::to_array<std::uint16_t>({11434, 1234, 8080, 8000, 5000, 5001, 1337, 4891});

asio::awaitable<std::string> listOfModels(std::uint16_t port) {
    beast::tcp_stream stream(co_await asio::this_coro::executor);
    stream.expires_after(timeForList);
    const tcp::endpoint endpoint(asio::ip::address_v4::loopback(), port);
    co_await stream.async_connect(endpoint, asio::use_awaitable);
    beast::http::request<beast::http::empty_body> request(beast::http::verb::get, "/v1/models", 11);
    request.set(beast::http::field::host, "127.0.0.1:" + std::to_string(port));
    request.set(beast::http::field::user_agent, "lumarin-service");
    request.keep_alive(false);
    co_await beast::http::async_write(stream, request, asio::use_awaitable);
    beast::flat_buffer buffer;
    beast::http::response_parser<beast::http::string_body> parser;
    parser.body_limit(longestList);
    co_await beast::http::async_read(stream, buffer, parser, asio::use_awaitable);
    const bool isList = parser.get().result() == beast::http::status::ok;
    co_return isList ? std::move(parser.get().body()) : std::string();
}

asio::awaitable<void> ask(std::uint16_t port, const std::string& wanted, std::string& model) {
    try {
        const std::string list = co_await listOfModels(port);
        model = chatModel(list, wanted);
    } catch (const std::exception&) { // Nobody is there, or nobody who speaks HTTP.
    }
}

// Whether its name, or what its server says of its kind, tells that a model does not chat.
bool isForOtherUse(const json& model) {
    constexpr auto uses =
        std::to_array<std::string_view>({"embed", "rerank", "minilm", "bge-", "gte-", "e5-", "paraphrase-",
                                         "whisper", "tts", "clip-", "stable-diffusion", "moderation"});
    const auto tells = [&](const char* member) {
        const auto found = model.find(member);
        if (found == model.end() || !found->is_string())
            return false;
        std::string text = found->get<std::string>();
        std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::tolower(c); });
        return std::ranges::any_of(uses, [&](auto use) { return text.find(use) != std::string::npos; });
    };
    return tells("id") || tells("type") || tells("task") || tells("object");
}

} // namespace

std::span<const std::uint16_t> usualPorts() {
    return ports;
}

asio::awaitable<std::optional<LocalModel>> findLocalModel(std::string wanted,
                                                          std::span<const std::uint16_t> where) {
    const auto executor = co_await asio::this_coro::executor;
    std::vector<std::string> models(where.size());
    std::size_t left = where.size();
    asio::steady_timer allAnswered(executor, asio::steady_timer::time_point::max());
    for (std::size_t index = 0; index < where.size(); ++index)
        asio::co_spawn(executor, ask(where[index], wanted, models[index]), [&](const std::exception_ptr&) {
            if (--left == 0)
                allAnswered.cancel();
        });
    while (left > 0)
        co_await allAnswered.async_wait(asio::as_tuple(asio::use_awaitable));
    for (std::size_t index = 0; index < where.size(); ++index)
        if (!models[index].empty())
            co_return LocalModel{"http://127.0.0.1:" + std::to_string(where[index]) + "/v1", models[index]};
    co_return std::nullopt;
}

std::string chatModel(std::string_view list, std::string_view wanted) {
    if (platform::isTooDeep(list))
        return {};
    const json parsed = json::parse(list, nullptr, false);
    const auto models = parsed.is_object() ? parsed.find("data") : parsed.end();
    if (models == parsed.end() || !models->is_array())
        return {};
    for (const json& model : *models) {
        const auto id = model.is_object() ? model.find("id") : model.end();
        if (id == model.end() || !id->is_string())
            continue;
        const auto name = id->get<std::string>();
        if (wanted.empty() ? !name.empty() && !isForOtherUse(model) : name == wanted)
            return name;
    }
    return {};
}

} // namespace lumarin::service
