// What the service adds to a model server's answers, and what it bears. A scripted model server here, streams
// of pieces that carry the moment they left it, and the real service between: first the streams are read
// directly from the model server, then through the service, then the same beside clients that do their worst.
// RelayBenchmark [SECONDS] [STREAMS]: for each of the three, 60 and 100 unless said otherwise.

#include "MalformedRequests.h"
#include "Service/Support/Handles.h"
#include "Support/TLSServer.h"
#include "Support/TemporaryFolder.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <deque>
#include <fcntl.h>
#include <fstream>
#include <netinet/tcp.h>
#include <spawn.h>
#include <sys/wait.h>

using namespace tests;
using namespace std::chrono_literals;

namespace {

using Clock = std::chrono::steady_clock;
using lumarin::service::Descriptor;
using lumarin::service::TLSSession;

constexpr int piecesPerAnswer = 100;
constexpr auto timeBetweenPieces = 50ms;

std::int64_t nanoseconds(Clock::time_point moment) {
    return moment.time_since_epoch().count();
}

// More than there is room for on the way to a client that does not read.
void streamMegabytes(TLSConnection& connection) {
    const std::string piece =
        chunk(R"(data: {"choices":[{"delta":{"content":")" + std::string(64'000, 'x') + "\"}}]}\n\n");
    bool goesOn = connection.send(streamHead);
    for (int number = 0; goesOn && number < 128; ++number)
        goesOn = connection.send(piece);
}

// Answers with pieces "NAME,NUMBER,MOMENT;", NAME being the text to translate.
void streamPieces(TLSConnection& connection) {
    while (const auto request = connection.readRequest()) {
        const std::string before = R"("content":"name )";
        const auto start = request->body.find(before) + before.size();
        const std::string name = request->body.substr(start, request->body.find('"', start) - start);
        if (name.starts_with("slow"))
            return streamMegabytes(connection);
        connection.send(streamHead);
        auto next = Clock::now();
        for (int number = 0; number < piecesPerAnswer; ++number, next += timeBetweenPieces) {
            std::this_thread::sleep_until(next);
            const std::string piece =
                name + "," + std::to_string(number) + "," + std::to_string(nanoseconds(Clock::now())) + ";";
            if (!connection.send(chunk(R"(data: {"choices":[{"delta":{"content":")" + piece + "\"}}]}\n\n")))
                return;
        }
        connection.send(chunk("data: [DONE]\n\n") + streamEnd);
    }
}

// A connection to a port of this computer, with TLS or without.
class Connection {
public:
    // `room` is for what has arrived and not been received.
    Connection(int port, SSL_CTX* context, std::optional<int> room = {})
        : socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(port));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        const int on = 1;
        ::setsockopt(socket.number(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        if (room)
            ::setsockopt(socket.number(), SOL_SOCKET, SO_RCVBUF, &*room, sizeof *room);
        isOpen = ::connect(socket.number(), reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
        if (!context || !isOpen)
            return;
        tls.reset(SSL_new(context));
        SSL_set_fd(tls.get(), socket.number());
        isOpen = SSL_connect(tls.get()) == 1;
    }

    bool send(std::string_view bytes) {
        const auto size = static_cast<int>(bytes.size());
        return isOpen
               && (tls ? SSL_write(tls.get(), bytes.data(), size)
                       : ::send(socket.number(), bytes.data(), bytes.size(), MSG_NOSIGNAL))
                      == size;
    }
    // From now on the end of what can be received.
    void waitNoLongerThan(std::chrono::microseconds time) const {
        const timeval limit{.tv_sec = 0, .tv_usec = time.count()};
        ::setsockopt(socket.number(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    }
    // Adds what has arrived; false at the end.
    bool receive(std::string& to) {
        std::array<char, 16384> buffer{};
        const auto count = !isOpen ? 0
                           : tls   ? SSL_read(tls.get(), buffer.data(), buffer.size())
                                   : ::recv(socket.number(), buffer.data(), buffer.size(), 0);
        if (count > 0)
            to.append(buffer.data(), static_cast<std::size_t>(count));
        return count > 0;
    }

private:
    Descriptor socket;
    TLSSession tls;
    bool isOpen = false;
};

std::string post(const std::string& path, const std::string& body, const std::string& device) {
    return "POST " + path + " HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/json\r\nX-Device-ID: "
           + device + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string directRequest(const std::string& name) {
    return post("/v1/chat/completions", R"({"messages":[{"role":"user","content":"name )" + name + "\"}]}",
                name);
}

std::string relayedRequest(const std::string& name, const std::string& padding = "") {
    return post("/v1/translate",
                R"({"text":"name )" + name + padding
                    + R"(","system_prompt":"p","target_language":"EN","style":"formal","stream":true})",
                name);
}

struct Measured {
    std::vector<double> milliseconds;
    std::size_t answers = 0;
    std::size_t faults = 0; // Answers with a piece that is another's, missing or out of order, or broken off.
};

// One answer; false if the connection is of no more use.
bool readAnswer(Connection& connection, const std::string& name, Measured& measured) {
    constexpr std::string_view mark = "\"content\":\"";
    std::string bytes;
    int expected = 0;
    bool isRight = true;
    std::size_t position = 0;
    while (bytes.find("\r\n0\r\n\r\n", position) == std::string::npos) {
        if (!connection.receive(bytes)) {
            ++measured.faults;
            return false;
        }
        const auto now = nanoseconds(Clock::now());
        for (std::size_t start = 0; (start = bytes.find(mark, position)) != std::string::npos;) {
            const auto end = bytes.find(';', start);
            if (end == std::string::npos)
                break;
            const std::string piece = bytes.substr(start + mark.size(), end - start - mark.size());
            const std::string whose = name + "," + std::to_string(expected++) + ",";
            isRight = isRight && piece.starts_with(whose);
            std::int64_t sent = 0;
            std::from_chars(piece.data() + whose.size(), piece.data() + piece.size(), sent);
            measured.milliseconds.push_back(static_cast<double>(now - sent) / 1e6);
            position = end;
        }
    }
    ++measured.answers;
    measured.faults += isRight && expected == piecesPerAnswer ? 0 : 1;
    return true;
}

// As many streams at once, each asking again when it has its answer, on a connection that it keeps.
Measured run(int streams, std::chrono::seconds time, int port, SSL_CTX* context) {
    std::vector<Measured> each(static_cast<std::size_t>(streams));
    std::vector<std::thread> threads;
    threads.reserve(each.size());
    const auto end = Clock::now() + time;
    for (int number = 0; number < streams; ++number)
        threads.emplace_back([&, number] {
            std::this_thread::sleep_for(number * timeBetweenPieces / streams);
            Connection connection(port, context);
            Measured& measured = each[static_cast<std::size_t>(number)];
            for (int turn = 0; Clock::now() < end; ++turn) {
                const std::string name = "s" + std::to_string(number) + "t" + std::to_string(turn);
                connection.send(context ? relayedRequest(name) : directRequest(name));
                if (!readAnswer(connection, name, measured))
                    return;
            }
        });
    Measured all;
    for (std::size_t number = 0; number < each.size(); ++number) {
        threads[number].join();
        const Measured& one = each[number];
        all.milliseconds.insert(all.milliseconds.end(), one.milliseconds.begin(), one.milliseconds.end());
        all.answers += one.answers;
        all.faults += one.faults;
    }
    std::ranges::sort(all.milliseconds);
    return all;
}

double quantile(const Measured& measured, double part) {
    if (measured.milliseconds.empty())
        return 0;
    const auto last = static_cast<double>(measured.milliseconds.size() - 1);
    return measured.milliseconds[static_cast<std::size_t>(part * last)];
}

void print(const char* name, const Measured& measured) {
    std::printf("  %-34s %8zu %8zu %6zu %9.3f %9.3f %9.3f\n", name, measured.answers,
                measured.milliseconds.size(), measured.faults, quantile(measured, 0.5),
                quantile(measured, 0.99), quantile(measured, 1));
    std::fflush(stdout);
}

// The service as a program of its own.
class Service {
public:
    explicit Service(int upstreamPort) {
        const std::string upstream = "http://127.0.0.1:" + std::to_string(upstreamPort) + "/v1";
        const std::string certificate = folder / "service.pem";
        const std::string output = folder / "output";
        std::vector<std::string> words{LUMARIN_SERVICE,
                                       "--listen",
                                       "127.0.0.1:0",
                                       "--certificate",
                                       certificate,
                                       "--upstream",
                                       upstream,
                                       "--rate",
                                       "0",
                                       "--device-rate",
                                       "0",
                                       "--address-rate",
                                       "0",
                                       "--address-at-once",
                                       "0"};
        std::vector<char*> arguments;
        arguments.reserve(words.size() + 1);
        for (std::string& word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 1, output.c_str(), O_WRONLY | O_CREAT, 0600);
        posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
        if (posix_spawn(&process, LUMARIN_SERVICE, &actions, nullptr, arguments.data(), environ) != 0)
            throw std::runtime_error("The service does not start");
        posix_spawn_file_actions_destroy(&actions);
        for (std::string line; port == 0; std::this_thread::sleep_for(10ms))
            if (std::ifstream file(output); std::getline(file, line) && !file.eof())
                port = std::stoi(line.substr(line.rfind(':') + 1));
    }
    ~Service() { end(); }
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    // Whether it ended in order.
    bool end() {
        int status = 0;
        if (process == 0)
            return false;
        ::kill(process, SIGTERM);
        ::waitpid(std::exchange(process, 0), &status, 0);
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

    long kilobytes() const {
        std::ifstream status("/proc/" + std::to_string(process) + "/status");
        for (std::string line; std::getline(status, line);)
            if (line.starts_with("VmRSS:"))
                return std::stol(line.substr(6));
        return 0;
    }

    int port = 0;

private:
    TemporaryFolder folder;
    pid_t process = 0;
};

// How long the model server's connection outlives the client's, at the longest.
double longestFarewell(int times) {
    std::atomic<std::int64_t> seen = 0;
    TLSServer upstream(nullptr, [&](TLSConnection& connection) {
        connection.readRequest();
        connection.send(std::string(streamHead)
                        + chunk(R"(data: {"choices":[{"delta":{"content":"x"}}]})"
                                "\n\n"));
        connection.waitForClose();
        seen = nanoseconds(Clock::now());
    });
    const Service service(upstream.port);
    const std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context(SSL_CTX_new(TLS_client_method()),
                                                                    &SSL_CTX_free);
    double longest = 0;
    for (int time = 0; time < times; ++time) {
        seen = 0;
        std::int64_t left = 0;
        {
            Connection client(service.port, context.get());
            client.send(relayedRequest("x"));
            std::string bytes;
            while (bytes.find("content\":\"x") == std::string::npos && client.receive(bytes))
                continue;
            left = nanoseconds(Clock::now());
        }
        while (seen == 0)
            std::this_thread::sleep_for(1ms);
        longest = std::max(longest, static_cast<double>(seen - left) / 1e6);
    }
    return longest;
}

// Clients that read nothing of their answers, and ones that never end their request. The longest there gives
// its place to a fresh one again and again, before the service has had enough of it.
class SlowClients {
public:
    SlowClients(int port, SSL_CTX* context, std::size_t count)
        : thread([=](const std::stop_token& stop) {
              std::deque<Connection> clients;
              for (int number = 0; !stop.stop_requested(); ++number) {
                  constexpr int room = 4096;
                  // A text so long that the answer is not taken for an endless one.
                  const std::string padding(60'000, 'a');
                  const std::string request = relayedRequest("slow" + std::to_string(number), padding);
                  clients.emplace_back(port, context, room)
                      .send(number % 2 == 0 ? request : request.substr(0, request.size() - 5));
                  if (clients.size() <= count)
                      continue;
                  clients.pop_front();
                  std::this_thread::sleep_for(100ms);
              }
          }) {}

private:
    std::jthread thread;
};

// How many translations the service has under way.
int underWay(int port, SSL_CTX* context) {
    const std::string name = "\nlumarin_translations ";
    Connection client(port, context);
    client.send("GET /metrics HTTP/1.1\r\nConnection: close\r\n\r\n");
    std::string answer;
    while (client.receive(answer))
        continue;
    const auto found = answer.find(name);
    return found != std::string::npos ? std::stoi(answer.substr(found + name.size())) : 0;
}

// Each on a connection of its own.
void sendMalformed(int port, SSL_CTX* context, unsigned first, unsigned count) {
    for (unsigned seed = first; seed < first + count; ++seed) {
        Connection client(port, context);
        client.send(malformedRequest(seed));
        std::string answer;
        client.waitNoLongerThan(5ms); // The service waits for the rest of many of them.
        if (seed % 2 == 0)
            client.receive(answer);
    }
}

void sendAllMalformed(int port, SSL_CTX* context) {
    constexpr unsigned senders = 8;
    constexpr unsigned each = 10'000 / senders;
    std::vector<std::thread> threads;
    threads.reserve(senders);
    for (unsigned sender = 0; sender < senders; ++sender)
        threads.emplace_back(sendMalformed, port, context, sender * each, each);
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace

int main(int count, char** arguments) {
    const std::chrono::seconds time(count > 1 ? std::atoi(arguments[1]) : 60);
    const int streams = count > 2 ? std::atoi(arguments[2]) : 100;
    std::signal(SIGPIPE, SIG_IGN);
    const TLSServer upstream(nullptr, streamPieces);
    Service service(upstream.port);
    const std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context(SSL_CTX_new(TLS_client_method()),
                                                                    &SSL_CTX_free);

    std::printf("%d streams at once, %ld s each, a piece every %ld ms; from leaving the model server to the "
                "client, ms\n  %-34s %8s %8s %6s %9s %9s %9s\n",
                streams, time.count(), timeBetweenPieces.count(), "", "answers", "pieces", "faults", "p50",
                "p99", "longest");
    print("direct, plain HTTP", run(streams, time, upstream.port, nullptr));
    print("through the service, TLS", run(streams, time, service.port, context.get()));
    const long before = service.kilobytes();
    {
        const SlowClients slow(service.port, context.get(), 100);
        print("the same beside 100 slow clients", run(streams, time, service.port, context.get()));
        std::printf("  (at the end %d translations were held up by them)\n",
                    underWay(service.port, context.get()));
    }
    const long between = service.kilobytes();
    sendAllMalformed(service.port, context.get());
    const long half = service.kilobytes();
    sendAllMalformed(service.port, context.get());
    std::printf("memory in kB: %ld after the streams, %ld after the slow clients, %ld after 10,000 malformed "
                "requests, %ld after 10,000 more\n",
                before, between, half, service.kilobytes());
    print("and then", run(streams, std::min(time, 5s), service.port, context.get()));
    std::printf("the service ended in order: %s\n", service.end() ? "yes" : "NO");
    std::printf("a client that vanished was known to the model server after %.2f ms at the longest of 50\n",
                longestFarewell(50));
}
