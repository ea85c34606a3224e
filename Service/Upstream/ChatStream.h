#pragma once

#include "Platform/Foundation/LineSplitter.h"
#include "Service/Engine/Refusal.h"

#include <optional>
#include <string>
#include <string_view>

namespace lumarin::service {

// Reads the streamed answer of a chat-completions endpoint. For one thread at a time.
class ChatStream {
public:
    void append(std::string_view bytes) { lines.append(bytes); }

    // The next piece of text among what has been appended; none if more bytes are needed or the answer is
    // complete. Throws a Refusal for an answer that makes no sense, reports an error or ends too early.
    std::optional<std::string> next();

    bool isComplete() const { return complete; }

    // The connection has ended in order: after what has been appended the answer has to be complete.
    void finish();

private:
    std::optional<std::string> readLine(std::string_view line);
    std::optional<std::string> readData(std::string_view payload);
    void checkEnd();
    void checkSense() const;

    platform::LineSplitter lines;
    bool hasData = false;
    bool hasReason = false; // A reason to end in order: some servers say no more.
    bool complete = false;
    bool hasEnded = false;
    std::optional<Refusal> brokenOff; // Thrown when the piece it came with has been handed out.
    std::string strange; // Lines that are no event's, before there is any data: an error, perhaps.
};

} // namespace lumarin::service
