#include "UI/TranslationHUD.h"

#include "Core/LocalizationManager.h"
#include "Platform/Foundation/Text.h"
#include "Platform/Host.h"
#include "Platform/Kit/AnimationContext.h"
#include "Platform/Kit/Screen.h"
#include "Platform/Kit/Transaction.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace lumarin {
namespace {

using namespace platform;
using namespace std::chrono_literals;

constexpr double collapsedWidth = 56;
constexpr double expandedMinWidth = 120;
constexpr double expandedMaxWidth = 560;
constexpr double caretGap = 2;
// Between the screen's bar and the pill.
constexpr double topMargin = 14;
constexpr auto successGreen = Color::calibrated(0.38, 0.82, 0.56, 1.0);
constexpr auto errorRose = Color::calibrated(0.96, 0.42, 0.42, 1.0);
constexpr auto errorText = Color::calibrated(1.0, 0.78, 0.74, 0.95);
constexpr Duration wideningTime = 180ms;
// A fast start that settles gently.
constexpr TimingFunction springLike(0.25, 1.0, 0.5, 1.0);

double textWidthOf(const std::string& text) {
    return sizeWithAttributes(text, Pill::font).width;
}

double widthFor(double textWidth) {
    return std::clamp(textWidth + 40, expandedMinWidth, expandedMaxWidth);
}

// From rest by the curve. Texts come faster than that: what is still on its way goes on at the speed it has,
// so that the end of the text, which the eye follows, stays in sight.
TimingFunction wideningTo(double width, const Layer& layer, TimingFunction fromRest) {
    constexpr Duration moment = 10us;
    constexpr double rest = 0.05;
    const auto now = Host::current().mainRunLoop().now();
    const double shown = layer.presentation(now).size.width;
    const double growth = layer.presentation(now + moment).size.width - shown;
    const double speed = growth / (width - shown) * static_cast<double>(wideningTime / moment);
    return std::abs(speed) < rest ? fromRest : TimingFunction::goingOn(speed);
}

// Then it fades and changes and no more.
bool movesLess() {
    return Host::current().accessibility().shouldReduceMotion();
}

double bottomUnderBar(const Screen& screen) {
    return screen.visibleFrame.maxY() - Pill::pillHeight - topMargin;
}

} // namespace

void TranslationHUD::show(const std::string&) {
    dismiss();
    bringIn(collapsedWidth);
    Host::current().accessibility().announce(localized("hud.waiting"));
    if (movesLess())
        return;
    startBreathing();
    startShimmer();
}

void TranslationHUD::bringIn(double width) {
    pill.emplace(width);
    if (const auto screen = Screen::mainScreen())
        pill->panel->setFrameOrigin({screen->visibleFrame.midX() - width * 0.5, bottomUnderBar(*screen)});
    pill->panel->orderFrontRegardless();

    AnimationContext::runAnimationGroup([&](AnimationContext& context) {
        context.duration = 350ms;
        context.timingFunction = springLike;
        pill->panel->animator().setAlphaValue(1);
    });
    if (movesLess())
        return;
    auto& body = *pill->visualEffect->layer();
    body.setTransform(Transform::concat(Transform::makeScale(0.8, 0.8), Transform::makeTranslation(0, -8)));
    const Transaction transaction(350ms, springLike);
    body.setTransform(Transform::identity());
}

void TranslationHUD::update(const std::string& text) {
    if (!pill)
        return;
    if (pill->textField->alphaValue() == 0)
        showFirstText();
    pill->textField->setStringValue(text);

    const auto screen = Screen::mainScreen();
    if (!screen)
        return;
    const double textWidth = textWidthOf(text);
    const double width = widthFor(textWidth);
    const Rect before = pill->panel->frame();
    // It keeps its height on a screen, whatever becomes of the bar there; another has a height of its own.
    const bool isThere = screen->frame.contains({before.midX(), before.midY()});
    const Rect frame{screen->visibleFrame.midX() - width * 0.5, isThere ? before.y : bottomUnderBar(*screen),
                     width, Pill::pillHeight};
    if (frame != before) {
        const Duration time = movesLess() ? 0ms : wideningTime;
        AnimationContext::runAnimationGroup([&](AnimationContext& context) {
            context.duration = time;
            context.timingFunction =
                wideningTo(width, *pill->visualEffect->layer(), TimingFunction::easeInEaseOut());
            pill->panel->animator().setFrame(frame);
        });
        const Transaction transaction(time,
                                      wideningTo(width, *pill->glowLayer, TimingFunction::defaultCurve()));
        pill->glowLayer->setFrame({0, 0, width, Pill::pillHeight});
    }
    pill->textField->setFrame(Pill::labelFrame(width));
    auto caret = Pill::cursorFrame(Pill::inset + textWidth + caretGap);
    // Such a text ends on the left, however far in the pill that is.
    if (text::isRightToLeft(text))
        caret.x = (width - textWidth) / 2 - caretGap - caret.width;
    const auto transaction = Transaction::withActionsDisabled();
    pill->cursorLayer->setFrame(caret);
}

void TranslationHUD::showFirstText() {
    // A breath more would bring the glow back.
    stopBreathing();
    stopShimmer();
    {
        const Transaction transaction(300ms);
        pill->glowLayer->setOpacity(0.15F);
    }
    AnimationContext::runAnimationGroup([&](AnimationContext& context) {
        context.duration = 250ms;
        context.timingFunction = springLike;
        pill->textField->animator().setAlphaValue(1);
    });
    startCursorBlink();
}

void TranslationHUD::showDone() {
    if (!pill)
        return;
    stopBreathing();
    pill->cursorLayer->removeAllAnimations();
    {
        const Transaction transaction(150ms);
        pill->cursorLayer->setOpacity(0);
    }
    {
        const Transaction transaction(400ms, springLike);
        pill->glowLayer->setColors(Pill::glowColors(successGreen, 0.22, 0.06));
        pill->glowLayer->setOpacity(0.7F);
    }
    if (!movesLess())
        sweepAndPulse();
    Host::current().accessibility().announce(pill->textField->stringValue());
    Host::current().mainRunLoop().postAfter(800ms, [weak = std::weak_ptr(pill->glowLayer)] {
        if (auto glow = weak.lock()) {
            const Transaction transaction(500ms);
            glow->setOpacity(0.3F);
        }
    });
}

void TranslationHUD::sweepAndPulse() {
    auto& body = *pill->visualEffect->layer();
    const double width = pill->panel->frame().width;
    auto sweep =
        Pill::makeGradient({-width, 0, width, Pill::pillHeight},
                           {Color::clear(), successGreen.withAlphaComponent(0.12), Color::white(1, 0.2),
                            successGreen.withAlphaComponent(0.12), Color::clear()},
                           {0, 0.3, 0.5, 0.7, 1});
    body.addSublayer(sweep);
    sweep->addAnimation(
        BasicAnimation{{.keyPath = "position.x", .duration = 500ms, .timingFunction = springLike},
                       -0.5 * width,
                       1.5 * width},
        "sweep");
    Host::current().mainRunLoop().postAfter(550ms, [weak = std::weak_ptr(sweep)] {
        if (auto swept = weak.lock())
            swept->removeFromSuperlayer();
    });
    body.addAnimation(
        KeyframeAnimation{{.keyPath = "transform.scale", .duration = 400ms, .timingFunction = springLike},
                          {1.0, 1.02, 1.0},
                          {0, 0.4, 1}},
        "successPulse");
}

void TranslationHUD::showError(const std::string& message) {
    if (!pill)
        bringIn(widthFor(textWidthOf(message)));
    stopBreathing();
    stopShimmer();
    pill->cursorLayer->removeAllAnimations();
    pill->cursorLayer->setOpacity(0);
    {
        const Transaction transaction(300ms);
        pill->glowLayer->setColors(Pill::glowColors(errorRose, 0.25, 0.08));
        pill->glowLayer->setOpacity(0.8F);
    }
    pill->textField->setAlphaValue(1);
    pill->textField->setStringValue(message);
    pill->textField->setTextColor(errorText);
    if (!pill->textField->showsWhole())
        Host::current().userNotifications().deliver(message);
    Host::current().accessibility().announce(message);
    if (movesLess())
        return;
    pill->visualEffect->layer()->addAnimation(
        KeyframeAnimation{{.keyPath = "transform.translation.x", .duration = 300ms},
                          {0.0, -2.0, 2.0, -1.5, 1.5, 0.0},
                          {0, 0.15, 0.35, 0.55, 0.75, 1}},
        "shake");
}

void TranslationHUD::dismiss() {
    if (!pill)
        return;
    stopBreathing();
    stopShimmer();
    pill->cursorLayer->removeAllAnimations();
    AnimationContext::runAnimationGroup(
        [&](AnimationContext& context) {
            context.duration = 200ms;
            context.timingFunction = TimingFunction::easeIn();
            pill->panel->animator().setAlphaValue(0);
        },
        [panel = pill->panel] { panel->orderOut(); });
    if (!movesLess()) {
        const Transaction transaction(200ms, TimingFunction::easeIn());
        pill->visualEffect->layer()->setTransform(
            Transform::concat(Transform::makeScale(0.95, 0.95), Transform::makeTranslation(0, 12)));
    }
    pill.reset();
}

void TranslationHUD::startBreathing() {
    auto breathe = [glow = pill->glowLayer, phase = 0.0]() mutable {
        phase += 0.022;
        const double breath = (std::sin(2 * std::numbers::pi * phase) + 1) * 0.5;
        const auto transaction = Transaction::withActionsDisabled();
        glow->setOpacity(static_cast<float>(breath * 0.45 + 0.35));
        glow->setLocations({0, 0.4 + breath * 0.25, 1});
    };
    pulseTimer = Host::current().mainRunLoop().every(Duration(1s) / 30, breathe);
}

void TranslationHUD::startShimmer() {
    pill->shimmerLayer->addAnimation(BasicAnimation{{.keyPath = "position.x",
                                                     .duration = 1800ms,
                                                     .repeatCount = Animation::forever,
                                                     .timingFunction = TimingFunction::easeInEaseOut()},
                                                    -56.0,
                                                    112.0},
                                     "shimmer");
}

void TranslationHUD::startCursorBlink() {
    pill->cursorLayer->setOpacity(1);
    pill->cursorLayer->addAnimation(
        KeyframeAnimation{{.keyPath = "opacity", .duration = 900ms, .repeatCount = Animation::forever},
                          {1.0, 1.0, 0.0, 0.0},
                          {0, 0.45, 0.55, 1}},
        "blink");
}

void TranslationHUD::stopShimmer() {
    pill->shimmerLayer->removeAllAnimations();
    const Transaction transaction(300ms);
    pill->shimmerLayer->setOpacity(0);
}

} // namespace lumarin
