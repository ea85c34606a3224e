#include "Platform/Host.h"
#include "main/AppDelegate.h"

namespace lumarin {

using namespace platform;
using namespace std::chrono_literals;

void AppDelegate::scheduleOnboarding() {
    if (Host::current().isProcessTrusted())
        return;
    Host::current().mainRunLoop().postAfter(300ms, [weak = weak_from_this()] {
        if (auto self = weak.lock())
            self->showOnboarding();
    });
}

void AppDelegate::showOnboarding() {
    onboarding = std::make_shared<OnboardingWindow>();
    onboarding->onComplete = [weak = weak_from_this()] {
        if (auto self = weak.lock())
            self->setupMenu();
    };
    onboarding->show();
}

} // namespace lumarin
