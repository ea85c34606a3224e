#pragma once

#include "Platform/Desktop/XConnection.h"
#include "Support/TestProcess.h"

namespace tests {

// A window manager that is through with its start: only windows that come later get the keyboard.
class WindowManager {
public:
    explicit WindowManager(const TestProcess::Environment& environment = {})
        : process({"openbox"}, environment) {
        const platform::desktop::XConnection x;
        // The last list that it makes then.
        if (!comesTrue([&x] { return x.property(x.root(), x.atom("_NET_CLIENT_LIST")).has_value(); }))
            throw std::runtime_error("No window manager: " + process.output());
    }

private:
    TestProcess process;
};

} // namespace tests
