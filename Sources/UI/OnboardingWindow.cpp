#include "UI/OnboardingWindow.h"

#include "Core/LocalizationManager.h"
#include "Platform/Host.h"
#include "Platform/Kit/AnimationContext.h"

#include <exception>

namespace lumarin {

using namespace platform;
using namespace std::chrono_literals;

void OnboardingWindow::show() {
    const Rect frame{0, 0, width, height};
    window = std::make_shared<Window>(frame, Window::StyleMask::titled | Window::StyleMask::closable);
    window->title = "Lumarin";
    window->center();
    containerView = std::make_shared<View>(window->contentView()->bounds());
    containerView->layer()->setMasksToBounds(true);
    window->contentView()->addSubview(containerView);
    currentStep = welcome;
    showStep(welcome, false);
    window->makeKeyAndOrderFront();
    Host::current().application().activate();
}

void OnboardingWindow::showStep(int step, bool animated) {
    if (step > done)
        return;
    if (step == permission && Host::current().isProcessTrusted())
        step = currentStep = done;
    auto page = buildStep(step);
    const auto previous = containerView->subviews();
    if (!animated || previous.empty() || Host::current().accessibility().shouldReduceMotion()) {
        for (const auto& view : previous)
            view->removeFromSuperview();
        containerView->addSubview(std::move(page));
        return;
    }
    page->setFrame({width, 0, width, height});
    containerView->addSubview(page);
    AnimationContext::runAnimationGroup(
        [&](AnimationContext& context) {
            context.duration = 250ms;
            context.timingFunction = TimingFunction(0.25, 1.0, 0.5, 1.0);
            page->animator().setFrame({0, 0, width, height});
            for (const auto& view : previous) {
                view->animator().setFrame({-width / 2, 0, width, height});
                view->animator().setAlphaValue(0);
            }
        },
        [previous] {
            for (const auto& view : previous)
                view->removeFromSuperview();
        });
}

void OnboardingWindow::stepAction(int step) {
    // A page that slides away may still be pressed.
    if (step != currentStep)
        return;
    switch (step) {
    case welcome:
        demoTimer = {};
        currentStep = permission;
        showStep(permission, true);
        break;
    case permission:
        if (Host::current().isProcessTrusted())
            leavePermission();
        else
            Host::current().promptForTrust();
        break;
    case done:
        finish();
        break;
    default:
        break;
    }
}

void OnboardingWindow::leavePermission() {
    // The page slides away already: skipped twice, or gone on by the button before the permission was seen.
    if (currentStep != permission)
        return;
    accessibilityTimer = {};
    currentStep = done;
    showStep(done, true);
}

void OnboardingWindow::finish() {
    demoTimer = {};
    try {
        Host::current().loginItem().registerItem();
    } catch (const std::exception&) {
        // It can be chosen in the menu, which tells why it fails.
    }
    window->close();
    if (onComplete)
        onComplete();
    // The open menu shows where the program lives.
    Host::current().mainRunLoop().postAfter(300ms, [] {
        const auto delegate = Host::current().application().delegate.lock();
        if (auto* item = delegate ? delegate->statusItem() : nullptr)
            item->performClick();
    });
}

void OnboardingWindow::pollAccessibility() {
    accessibilityTimer = Host::current().mainRunLoop().every(1s, [this] {
        if (!Host::current().isProcessTrusted())
            return;
        accessibilityTimer = {};
        showGranted();
    });
}

void OnboardingWindow::showGranted() {
    if (auto symbol = Symbol::named(grantedSymbol)) {
        constexpr auto green = Color::system(SystemColor::green);
        statusLabel->setAttributedStringValue(
            {{"", Font::systemFont(11), green, std::move(symbol)},
             {" " + localized("onboarding.permission.granted"), Font::systemFont(12), green}});
    }
    Host::current().mainRunLoop().postAfter(400ms, [weak = weak_from_this()] {
        if (auto self = weak.lock())
            self->leavePermission();
    });
}

} // namespace lumarin
