#pragma once

#include "Platform/Foundation/Bundle.h"
#include "Platform/Kit/Application.h"

namespace platform::desktop {

// What the host itself has to say, in the language of the interface: the tables Host.strings. Main thread.
class HostTexts {
public:
    HostTexts(const Bundle& resources, const Application& running)
        : bundle(resources), application(running) {}

    // The English one where there is none in that language, else the key.
    std::string text(const std::string& key) const;

private:
    std::string textIn(const std::string& language, const std::string& key,
                       const std::string& ifMissing) const;

    const Bundle& bundle;
    const Application& application;
};

} // namespace platform::desktop
