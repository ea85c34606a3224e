#pragma once

#include "Platform/Desktop/Clipboard/SelectionContent.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>
#include <xcb/xcb.h>

namespace tests {

// What a program at the other end of the clipboard does, well or badly.
struct ClientScript {
    using Milliseconds = std::chrono::milliseconds;

    // An owner: what it owns from the start, how late it answers, and where it stops.
    std::optional<std::vector<platform::desktop::SelectionForm>> owned = std::nullopt;
    Milliseconds answerDelay{0};
    bool neverAnswers = false;
    bool diesWhenAskedForData = false;
    std::size_t pieceSize = 0; // incremental from this size on; 0: never
    std::size_t stopsAfterPieces = SIZE_MAX;

    // An application with a text field, in a window that takes the keyboard.
    bool hasField = false;
    bool speaksPing = true;
    bool pongsBeforeKeys = false;
    bool ownsPrimary = false;

    // A clipboard manager: fetches the text at each change, puts a text of its own on a clipboard without any
    // form, and saves what is handed over.
    bool fetchesEachChange = false;
    std::optional<std::string> fillsEmpty = std::nullopt;
    bool isManager = false;
};

// A program with a connection of its own to $DISPLAY that lives as long as this object, a fork of the test.
class SelectionClient {
public:
    explicit SelectionClient(const ClientScript& script);
    ~SelectionClient();
    SelectionClient(const SelectionClient&) = delete;
    SelectionClient& operator=(const SelectionClient&) = delete;

    xcb_window_t window() const { return clientWindow; }

private:
    pid_t process;
    xcb_window_t clientWindow = 0;
};

} // namespace tests
