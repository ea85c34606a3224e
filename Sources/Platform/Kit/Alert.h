#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace platform {

// What a person is told in a window of its own, and the answers to choose from. Value.
struct Alert {
    enum class Style { informational, warning };

    Style style = Style::informational;
    std::string messageText;
    // In several lines, or empty.
    std::string informativeText;
    // The first one is what Return chooses, the last one what Escape does. The host's own word for
    // agreement if there are none.
    std::vector<std::string> buttons;
};

// A piece of work under way, shown in a window of its own for as long as it lives. Main thread.
class ProgressWindow {
public:
    virtual ~ProgressWindow() = default;

    // How much is done, from 0 to 1; nothing if nobody can tell.
    virtual void setFraction(std::optional<double> fraction) = 0;
};

// The windows a program asks and tells by. Main thread.
class Alerts {
public:
    virtual ~Alerts() = default;

    // Shows the alert until a button is chosen, and gives its place in the list; a window that is closed
    // chooses the last one. Everything else goes on in the meantime.
    virtual std::size_t runModal(const Alert& alert) = 0;

    // `onCancel` is called when the person wants the work to end. The alert's one button says so.
    virtual std::unique_ptr<ProgressWindow> showProgress(const Alert& alert,
                                                         std::function<void()> onCancel) = 0;
};

} // namespace platform
