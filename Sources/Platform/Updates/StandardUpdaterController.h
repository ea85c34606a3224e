#pragma once

#include "Platform/Updates/UpdaterDelegate.h"

#include <functional>
#include <memory>

namespace platform {

// Looks for updates when it is asked to, shows what comes of it and fetches what the person wants: a verified
// package in their download folder. Where it looks is said by the bundle's SUFeedURL and SUPublicEDKey. Main
// thread; dropping it ends what is under way.
class StandardUpdaterController {
public:
    // In the language of the interface.
    struct Texts {
        // That of a key of the table "Updates".
        std::function<std::string(const std::string& key)> text;
        // What a person is told of an error.
        std::function<std::string(const std::exception& error)> description;
    };

    StandardUpdaterController(std::weak_ptr<UpdaterDelegate> updaterDelegate, Texts localized);
    ~StandardUpdaterController();
    StandardUpdaterController(const StandardUpdaterController&) = delete;
    StandardUpdaterController& operator=(const StandardUpdaterController&) = delete;

    // Returns at once. While a check or what follows from it is under way, another one is not begun, but the
    // program's windows come to the front, that of the first among them.
    void checkForUpdates();

private:
    class Check;

    const std::weak_ptr<UpdaterDelegate> delegate;
    const Texts texts;
    std::weak_ptr<Check> underWay;
};

} // namespace platform
