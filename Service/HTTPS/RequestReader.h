#pragma once

#include "Service/HTTPS/Request.h"
#include "Service/HTTPS/TLSStream.h"

#include <cstddef>
#include <memory>
#include <string>

namespace lumarin::service {

// Reads one request from a connection, within bounds for its head and its body.
class RequestReader {
public:
    using Clock = TLSStream::Clock;

    static constexpr std::size_t longestBody = std::size_t{1024} * 1024;

    RequestReader();
    ~RequestReader();

    // Each reads until `deadline` at the longest, and is false if there is no more to be had. What has been
    // read may have a fault.
    asio::awaitable<bool> readHead(TLSStream& stream, Clock::time_point deadline);
    asio::awaitable<bool> readBody(TLSStream& stream, Clock::time_point deadline);

    // What is wrong with the request, as a status; zero if nothing is.
    int fault() const;
    const Request& request() const;
    // The body that has been read.
    std::string takeBody();

private:
    class Parser;

    void take(std::string& bytes);

    const std::unique_ptr<Parser> parser;
};

} // namespace lumarin::service
