#include "Service/HTTPS/RequestReader.h"

#include <algorithm>
#include <boost/beast/http/basic_parser.hpp>
#include <boost/none.hpp>
#include <cctype>
#include <charconv>

namespace lumarin::service {
namespace {

namespace http = boost::beast::http;
using boost::beast::string_view;
using boost::system::error_code;

constexpr std::size_t longestHead = std::size_t{32} * 1024;
constexpr std::size_t longestTarget = 8192;
// More than any body that is accepted: what is too long is refused with a sentence, not cut off.
constexpr std::size_t mostBodyBytes = std::size_t{16} * 1024 * 1024;

std::string pathOf(std::string_view target) {
    target = target.substr(0, target.find_first_of("?#"));
    std::string path;
    for (std::size_t position = 0; position < target.size(); ++position) {
        unsigned char byte = static_cast<unsigned char>(target[position]);
        if (byte == '%' && target.size() - position > 2) {
            const char* const digits = target.data() + position + 1;
            if (std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2)
                position += 2;
            else
                byte = '%';
        }
        path += static_cast<char>(byte);
    }
    return path;
}

// What is wrong with a line that is no length. A number too large for the parser is a length, if a long one.
int faultOfLength(std::string_view line) {
    constexpr std::size_t mostDigits = 19;
    line = line.substr(0, line.find('\r'));
    const auto digits = line.substr(line.find_last_not_of("0123456789") + 1);
    return digits.size() > mostDigits ? 413 : 400;
}

} // namespace

class RequestReader::Parser final : public http::basic_parser<true> {
public:
    Parser() {
        body_limit(boost::none);
        header_limit(longestHead);
    }

    Request request;
    std::string body;
    std::size_t bodyBytes = 0;
    int fault = 0;

private:
    void on_request_impl(http::verb verb, string_view method, string_view target, int version,
                         error_code&) override {
        if (verb == http::verb::unknown || target.size() > longestTarget)
            fault = verb == http::verb::unknown ? 400 : 414;
        request.method = std::string(method);
        request.path = pathOf({target.data(), target.size()});
        request.isOldHTTP = version < 11;
    }
    void on_field_impl(http::field, string_view name, string_view value, error_code&) override {
        if (!is_header_done()) // What comes behind a body is of no interest.
            request.fields.emplace_back(name, value);
    }
    void on_header_impl(error_code&) override { request.closes = request.isOldHTTP || !keep_alive(); }
    std::size_t on_body_impl(string_view bytes, error_code&) override {
        bodyBytes += bytes.size();
        if (bodyBytes <= longestBody)
            body.append(bytes.data(), bytes.size());
        else
            body = {};
        return bytes.size();
    }
    std::size_t on_chunk_body_impl(std::uint64_t, string_view bytes, error_code& error) override {
        return on_body_impl(bytes, error);
    }
    void on_response_impl(int, string_view, int, error_code&) override {}
    void on_body_init_impl(const boost::optional<std::uint64_t>&, error_code&) override {}
    void on_chunk_header_impl(std::uint64_t, string_view, error_code&) override {}
    void on_finish_impl(error_code&) override {}
};

RequestReader::RequestReader() : parser(std::make_unique<Parser>()) {}
RequestReader::~RequestReader() = default;

asio::awaitable<bool> RequestReader::readHead(TLSStream& stream, Clock::time_point deadline) {
    take(stream.received);
    while (!parser->is_header_done() && parser->fault == 0) {
        const bool hasMore = co_await stream.receive(deadline);
        if (!hasMore)
            co_return false;
        take(stream.received);
    }
    co_return true;
}

asio::awaitable<bool> RequestReader::readBody(TLSStream& stream, Clock::time_point deadline) {
    take(stream.received);
    while (!parser->is_done() && parser->fault == 0) {
        const bool hasMore = co_await stream.receive(deadline);
        if (!hasMore)
            co_return false;
        take(stream.received);
    }
    if (parser->fault == 0 && parser->bodyBytes > longestBody)
        parser->fault = 413;
    co_return true;
}

// Takes from the beginning of `bytes` what is a part of the request: of its head, or of its body.
void RequestReader::take(std::string& bytes) {
    const bool isInHead = !parser->is_header_done();
    std::size_t taken = 0;
    while (taken < bytes.size() && !parser->is_done() && parser->fault == 0
           && isInHead == !parser->is_header_done()) {
        const std::string_view rest = std::string_view(bytes).substr(taken);
        error_code error;
        const std::size_t count = parser->put({rest.data(), rest.size()}, error);
        taken += count;
        const bool hasLine = !parser->request.method.empty();
        if (error == http::error::need_more && rest.size() - count <= longestHead)
            break;
        if (error == http::error::need_more || error == http::error::header_limit)
            parser->fault = hasLine ? 400 : 414;
        else if (error)
            parser->fault =
                error == http::error::bad_content_length ? faultOfLength(rest.substr(count)) : 400;
        if (parser->bodyBytes > mostBodyBytes)
            parser->fault = 413;
    }
    bytes.erase(0, taken);
    // What cannot be read may be anything, even text meant for translation.
    if (isInHead && parser->fault != 0)
        parser->request.method.clear();
}

int RequestReader::fault() const {
    return parser->fault;
}

const Request& RequestReader::request() const {
    return parser->request;
}

std::string RequestReader::takeBody() {
    return std::move(parser->body);
}

} // namespace lumarin::service
