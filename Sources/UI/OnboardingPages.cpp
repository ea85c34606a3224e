#include "Core/LocalizationManager.h"
#include "Platform/Host.h"
#include "Platform/Kit/ImageView.h"
#include "Platform/Kit/ProgressIndicator.h"
#include "UI/CenteredLabel.h"
#include "UI/Confetti.h"
#include "UI/OnboardingWindow.h"
#include "UI/WelcomeDemo.h"

#include <cmath>

namespace lumarin {
namespace {

using namespace platform;

constexpr auto secondary = Color::system(SystemColor::secondaryLabel);

void addHead(const char* emoji, const std::string& title, View& page) {
    constexpr auto color = Color::system(SystemColor::label);
    page.addSubview(centeredLabel(emoji, Font::systemFont(28), color, {20, 280, 340, 34}));
    page.addSubview(
        centeredLabel(title, Font::systemFont(18, FontWeight::semibold), color, {20, 252, 340, 24}));
}

void addProgress(int step, View& page) {
    const auto addBar = [&](double length, SystemColor color) {
        auto bar = std::make_shared<View>(Rect{160, 12, length, 2});
        bar->layer()->setCornerRadius(1);
        bar->layer()->setBackgroundColor(Color::system(color));
        page.addSubview(std::move(bar));
    };
    addBar(60, SystemColor::separator);
    addBar((step + 1) * 20, SystemColor::controlAccent);
}

} // namespace

std::shared_ptr<View> OnboardingWindow::buildStep(int step) {
    auto page = std::make_shared<View>(Rect{0, 0, width, height});
    if (step == welcome)
        buildWelcome(*page);
    else if (step == permission)
        buildPermission(*page);
    else
        buildDone(*page);
    addProgress(step, *page);
    return page;
}

void OnboardingWindow::buildWelcome(View& page) {
    addHead("💬", "Lumarin", page);
    page.addSubview(centeredLabel(localized("onboarding.welcome.tagline"), Font::systemFont(13), secondary,
                                  {20, 230, 340, 18}));
    demoTimer = startWelcomeDemo(page);
    addMainButton("onboarding.welcome.cta", welcome, 32, page);
}

void OnboardingWindow::buildPermission(View& page) {
    addHead("🔐", localized("onboarding.permission.title"), page);
    auto body = centeredLabel(localized("onboarding.permission.body"), Font::systemFont(12), secondary,
                              {40, 204, 300, 40});
    body->setLineBreakMode(LineBreakMode::wordWrapping);
    page.addSubview(body);
    const bool isGranted = Host::current().isProcessTrusted();
    addStatus(isGranted, page);
    if (isGranted) {
        addMainButton("onboarding.permission.continue", permission, 32, page);
        return;
    }
    addMainButton("onboarding.permission.open_settings", permission, 44, page);
    page.addSubview(makeSkipButton(22));
    pollAccessibility();
}

void OnboardingWindow::addStatus(bool isGranted, View& page) {
    constexpr double side = 14;
    constexpr auto green = Color::system(SystemColor::green);
    const Font font = Font::systemFont(12);
    const auto text =
        localized(isGranted ? "onboarding.permission.granted" : "onboarding.permission.detecting");
    const double textWidth = std::ceil(sizeWithAttributes(text, font).width);
    const double left = (width - (textWidth + side + 6)) / 2;

    auto row = std::make_shared<View>(Rect{0, 174, width, 20});
    const Rect indicatorFrame{left, 3, side, side};
    if (isGranted) {
        auto check = std::make_shared<ImageView>(Symbol{grantedSymbol, {}});
        check->setContentTintColor(green);
        check->setFrame(indicatorFrame);
        row->addSubview(check);
    } else {
        auto wheel = std::make_shared<ProgressIndicator>(indicatorFrame);
        wheel->startAnimation();
        row->addSubview(wheel);
    }
    statusLabel = TextField::labelWithString<TextField>(text);
    statusLabel->setFont(font);
    statusLabel->setTextColor(isGranted ? green : secondary);
    statusLabel->setFrame({left + side + 6, 1, textWidth + 4, 18});
    row->addSubview(statusLabel);
    page.addSubview(row);
}

void OnboardingWindow::buildDone(View& page) {
    addHead("🎉", localized("onboarding.done.title"), page);
    page.addSubview(centeredLabel(localized("onboarding.done.body"), Font::systemFont(12), secondary,
                                  {20, 226, 340, 18}));
    addMainButton("onboarding.done.cta", done, 36, page);
    if (!Host::current().accessibility().shouldReduceMotion())
        startConfetti(page, random);
}

void OnboardingWindow::addMainButton(const std::string& titleKey, int step, double y, View& page) {
    auto button = std::make_shared<Button>(localized(titleKey), [weak = weak_from_this()](Button& pressed) {
        if (auto self = weak.lock())
            self->stepAction(pressed.tag);
    });
    button->setKeyEquivalent("\r");
    button->tag = step;
    button->setFrame({140, y, 100, 28});
    page.addSubview(button);
}

std::shared_ptr<Button> OnboardingWindow::makeSkipButton(double y) {
    auto button =
        std::make_shared<Button>(localized("onboarding.permission.skip"), [weak = weak_from_this()](Button&) {
            if (auto self = weak.lock())
                self->leavePermission();
        });
    button->setBezelStyle(BezelStyle::inlined);
    button->setBordered(false);
    button->setFont(Font::systemFont(11));
    button->setContentTintColor(Color::system(SystemColor::tertiaryLabel));
    button->setFrame({170, y, 40, 16});
    return button;
}

} // namespace lumarin
