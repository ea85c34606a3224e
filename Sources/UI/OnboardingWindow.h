#pragma once

#include "Platform/Foundation/Timer.h"
#include "Platform/Kit/Button.h"
#include "Platform/Kit/TextField.h"
#include "Platform/Kit/Window.h"

#include <functional>
#include <memory>
#include <random>

namespace lumarin {

// Leads a person to the first translation: shows what a gesture does, waits for the permission to do it, and
// celebrates. Main thread; owned by a shared_ptr. What it waits for ends with it.
class OnboardingWindow : public std::enable_shared_from_this<OnboardingWindow> {
public:
    // The size of the window's content and of each page, in points.
    static constexpr double width = 380;
    static constexpr double height = 320;

    // Called when the person has finished, not when the window is only closed.
    std::function<void()> onComplete;

    // Opens the window on the first page. Once.
    void show();

private:
    enum Step : int { welcome, permission, done };
    static constexpr const char* grantedSymbol = "checkmark.circle.fill";

    // What stands there leaves to the left as the new page comes in from the right. Does not set the current
    // step, except where it leaves out the permission that is already there.
    void showStep(int step, bool animated);
    std::shared_ptr<platform::View> buildStep(int step);
    void buildWelcome(platform::View& page);
    void buildPermission(platform::View& page);
    void buildDone(platform::View& page);
    std::shared_ptr<platform::Button> makeSkipButton(double y);
    void addMainButton(const std::string& titleKey, int step, double y, platform::View& page);
    void addStatus(bool isGranted, platform::View& page);

    void stepAction(int step);
    void finish();

    void pollAccessibility();
    void showGranted();
    // The permission has come or is done without.
    void leavePermission();

    std::shared_ptr<platform::Window> window;
    std::shared_ptr<platform::View> containerView;
    int currentStep = welcome;
    platform::Timer accessibilityTimer;
    std::shared_ptr<platform::TextField> statusLabel;
    platform::Timer demoTimer;
    std::mt19937 random{std::random_device{}()};
};

} // namespace lumarin
