#pragma once

#include "Core/TranslationStateMachine.h"
#include "Platform/Kit/Application.h"
#include "Platform/Kit/StatusItem.h"

#include <memory>
#include <vector>

namespace lumarin {

// Wires the program together when it has launched, and stays for as long as it runs. Main thread; to be owned
// by a shared_ptr.
class AppDelegate : public platform::ApplicationDelegate, public std::enable_shared_from_this<AppDelegate> {
public:
    void applicationDidFinishLaunching() override;

private:
    void setupEditMenu();

    std::unique_ptr<platform::StatusItem> statusItem;
    const std::shared_ptr<TranslationStateMachine> stateMachine = std::make_shared<TranslationStateMachine>();
};

} // namespace lumarin
