#pragma once

#include <array>
#include <random>
#include <string>
#include <string_view>

// Requests as clients write them, good and bad, which all others are made from.
inline constexpr auto seedRequests = std::to_array<std::string_view>({
    "POST /v1/translate HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/json\r\nX-Device-ID: a\r\n"
    "Content-Length: 91\r\n\r\n"
    R"({"text":"name x","system_prompt":"p","target_language":"EN","style":"formal","stream":true})",
    "POST /v1/free HTTP/1.1\r\nContent-Length: 52\r\n\r\n"
    R"({"text":"好","source_lang":"ZH","target_lang":"EN"})",
    "POST /v1/free HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n2\r\n{}\r\n0\r\nX-Trailer: 1\r\n\r\n",
    "POST /v1/free HTTP/1.1\r\nExpect: 100-continue\r\nContent-Length: 2\r\n\r\n{}",
    "POST /v1/free HTTP/1.1\r\nContent-Length: 2\r\nContent-Length: 3\r\n\r\n{}",
    "POST /v1/free HTTP/1.0\r\nConnection: Keep-Alive\r\nContent-Length: 2\r\n\r\n{}",
    "HEAD /v1/translate HTTP/1.1\r\n\r\nHEAD /v1/translate HTTP/1.1\r\n\r\n",
    "GET /healthz HTTP/1.1\r\nRange: bytes=0-1,5-2\r\nAccept-Encoding: gzip\r\n\r\n",
    "GET /appcast/%2e%2e/%00 HTTP/1.1\r\nHost: localhost\r\n\r\n",
});

// One of them with bytes changed, left out, doubled or cut off; the same for the same number.
inline std::string malformedRequest(unsigned number) {
    std::mt19937 random(number);
    std::string bytes(seedRequests[random() % seedRequests.size()]);
    for (auto change = random() % 12; !bytes.empty() && change > 0; --change) {
        const std::size_t at = random() % bytes.size();
        switch (random() % 4) {
        case 0:
            bytes[at] = static_cast<char>(random());
            break;
        case 1:
            bytes.erase(at, random() % 8);
            break;
        case 2:
            bytes.insert(at, bytes.substr(random() % bytes.size(), random() % 200));
            break;
        default:
            bytes.resize(at);
        }
    }
    return bytes;
}
