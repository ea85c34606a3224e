#include "Service/HTTPS/Exchange.h"

#include "Service/Engine/Refusal.h"
#include "Service/HTTPS/RequestReader.h"

#include <array>
#include <boost/beast/http/status.hpp>
#include <charconv>
#include <strings.h>

namespace lumarin::service {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::seconds bodyTime = 30s;

const char* usualSentence(int status) {
    return status == 403   ? "A web page of another site may not ask."
           : status == 404 ? "There is nothing at this address."
           : status == 405 ? "This address does not answer this method."
           : status == 411 ? "The request does not say how long it is."
           : status == 413 ? "The text is too long: a request may have 1 MiB."
           : status == 414 ? "The address is too long."
           : status == 415 ? "The body has to be application/json."
           : status == 500 ? "The service failed."
                           : "The request cannot be understood.";
}

std::string statusLine(int status) {
    const auto words =
        boost::beast::http::obsolete_reason(boost::beast::http::int_to_status(static_cast<unsigned>(status)));
    return "HTTP/1.1 " + std::to_string(status) + " " + std::string(words) + "\r\n";
}

std::string hexadecimal(std::size_t number) {
    std::array<char, 16> digits{};
    return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr};
}

} // namespace

Exchange::Exchange(RequestReader& reader, TLSStream& client, Connections::Place& where,
                   Clock::time_point latest, bool last, const Report& report)
    : deadline(latest),
      hasUnreadBody(reader.fault() != 0 || reader.request().announcesBody()),
      read(reader),
      stream(client),
      seat(where),
      isLast(last),
      ended(report) {}

const Request& Exchange::request() const {
    return read.request();
}

asio::awaitable<std::string> Exchange::body() {
    const bool waitsForLeave = ::strcasecmp(request().value("Expect").c_str(), "100-continue") == 0;
    if (waitsForLeave && !request().isOldHTTP && stream.received.empty())
        stream.write("HTTP/1.1 100 Continue\r\n\r\n");
    const bool isRead = co_await read.readBody(stream, Clock::now() + bodyTime);
    if (!isRead && seat.isStopping())
        throw Refusal(503, "The service is stopping.", "stopped");
    if (!isRead)
        throw Abandoned("The request did not arrive whole.");
    if (read.fault() != 0)
        throw Refusal(read.fault(), "");
    hasUnreadBody = false;
    seat.worksForClient();
    co_return read.takeBody();
}

void Exchange::answer(int code, const char* contentType, std::string_view content, const Fields& fields) {
    begin(code, {.contentType = contentType, .length = content.size()}, fields);
    if (request().method != "HEAD")
        add(content);
    end();
}

void Exchange::refuse(int code, const std::string& sentence, const Fields& fields) {
    answer(code, "text/plain; charset=utf-8",
           sentence.empty() ? std::string_view(usualSentence(code)) : sentence, fields);
}

void Exchange::begin(int code, const Announced& what, const Fields& fields) {
    status = code;
    closes = isLast || hasUnreadBody || request().closes || seat.isStopping();
    isChunked = !what.length && !request().isOldHTTP;
    std::string head = statusLine(code);
    const auto write = [&](std::string_view name, std::string_view value) {
        head.append(name).append(": ").append(value).append("\r\n");
    };
    for (const auto& [name, value] : fields)
        write(name, value);
    write("Content-Type", what.contentType);
    if (what.length)
        write("Content-Length", std::to_string(*what.length));
    if (isChunked)
        write("Transfer-Encoding", "chunked");
    if (closes)
        write("Connection", "close");
    else
        write("Keep-Alive", "timeout=600");
    stream.write(head + "\r\n");
}

void Exchange::add(std::string_view bytes) {
    if (bytes.empty())
        return; // An empty chunk would be the last one.
    if (isChunked)
        stream.write(hexadecimal(bytes.size()) + "\r\n");
    stream.write(bytes);
    if (isChunked)
        stream.write("\r\n");
}

void Exchange::end() {
    if (isChunked)
        stream.write("0\r\n\r\n");
    isComplete = true;
}

asio::awaitable<void> Exchange::flush() {
    const bool isTaken = co_await stream.flush();
    if (!isTaken)
        throw Abandoned("The client takes nothing.");
}

asio::awaitable<bool> Exchange::leave() {
    if (!std::exchange(hasLeft, true))
        ended(*this);
    const bool isTaken = co_await stream.flush();
    co_return isComplete && !closes && isTaken;
}

void Exchange::fail(const Abandoned& abandoned) {
    failure = seat.isBrokenOff() ? "stopped" : "client gone";
    failureDetail = seat.isBrokenOff() ? "The service had to end." : abandoned.what();
}

} // namespace lumarin::service
