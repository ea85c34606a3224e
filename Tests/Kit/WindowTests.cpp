#include "Platform/Kit/AnimationContext.h"
#include "Platform/Kit/Button.h"
#include "Platform/Kit/GradientLayer.h"
#include "Platform/Kit/Panel.h"
#include "Platform/Kit/TextField.h"
#include "Platform/Kit/Transaction.h"
#include "Platform/Kit/VisualEffectView.h"
#include "Support/HeadlessTest.h"

using namespace platform;
using namespace std::chrono_literals;

namespace {

class WindowTest : public tests::HeadlessTest {
protected:
    static std::shared_ptr<Panel> makePanel() {
        return std::make_shared<Panel>(Rect{0, 0, 56, 44}, Window::StyleMask::nonactivatingPanel);
    }

    LayerPresentation shownIn(Duration duration) const {
        return panel->presentation(host.clock.now() + duration);
    }

    std::shared_ptr<Panel> panel = makePanel();
};

} // namespace

TEST_F(WindowTest, MovesAndFadesByItsAnimatorAndItsContentKeepsUp) {
    auto body = std::make_shared<VisualEffectView>();
    panel->setContentView(body);
    panel->setAlphaValue(0);
    AnimationContext::runAnimationGroup([&](AnimationContext& context) {
        context.duration = 200ms;
        context.timingFunction = TimingFunction::linear();
        panel->animator().setAlphaValue(1);
        panel->animator().setFrame({-32, 10, 120, 44});
    });
    EXPECT_EQ(panel->frame(), (Rect{-32, 10, 120, 44}));
    EXPECT_EQ(body->frame(), (Rect{0, 0, 120, 44}));
    const auto half = shownIn(100ms);
    EXPECT_EQ(half.opacity, 0.5);
    EXPECT_EQ(half.frame(), (Rect{-16, 5, 88, 44}));
    EXPECT_EQ(half.sublayers.at(0).frame(), (Rect{0, 0, 88, 44}));
    EXPECT_FALSE(panel->nextChange(host.clock.now() + 200ms));

    // On its way it is taken further, from where it is.
    host.advance(100ms);
    AnimationContext::runAnimationGroup([&](AnimationContext& context) {
        context.duration = 100ms;
        context.timingFunction = TimingFunction::linear();
        panel->animator().setFrame({-112, 5, 280, 44});
    });
    EXPECT_EQ(shownIn(0ms).frame(), half.frame());
    EXPECT_EQ(shownIn(50ms).frame(), (Rect{-64, 5, 184, 44}));
    panel->setFrame({1, 2, 56, 44});
    EXPECT_EQ(shownIn(0ms).frame(), (Rect{1, 2, 56, 44}));
}

TEST_F(WindowTest, AGroupCompletesAfterItsDurationAndNeverBefore) {
    using Changes = std::function<void(AnimationContext&)>;
    panel->setAlphaValue(0);
    for (const auto& [name, changes, completion] : std::vector<std::tuple<const char*, Changes, Duration>>{
             {"nothing", [](AnimationContext& context) { context.duration = 1s; }, 0ms},
             {"a view's own change", [&](AnimationContext&) { panel->contentView()->setAlphaValue(0); }, 0ms},
             {"the usual duration", [&](AnimationContext&) { panel->animator().setAlphaValue(1); }, 250ms},
             {"to what is shown", [&](AnimationContext&) { panel->animator().setAlphaValue(1); }, 250ms},
             {"the longest",
              [&](AnimationContext& context) {
                  context.duration = 300ms;
                  panel->contentView()->animator().setAlphaValue(1);
                  context.duration = 100ms;
                  panel->animator().setAlphaValue(0);
              },
              300ms},
         }) {
        const Duration start = host.clock.now();
        std::optional<Duration> completed;
        AnimationContext::runAnimationGroup(changes, [&] { completed = host.clock.now() - start; });
        EXPECT_FALSE(completed) << name;
        host.advance(1s);
        EXPECT_EQ(completed, completion) << name;
    }
}

TEST_F(WindowTest, AGroupInsideAnotherHasItsOwnPace) {
    auto view = panel->contentView();
    AnimationContext::runAnimationGroup([&](AnimationContext& outer) {
        outer.duration = 400ms;
        outer.timingFunction = TimingFunction::linear();
        AnimationContext::runAnimationGroup([&](AnimationContext& inner) {
            inner.duration = 100ms;
            view->animator().setAlphaValue(0);
        });
        panel->animator().setAlphaValue(0);
    });
    EXPECT_EQ(shownIn(100ms).sublayers.at(0).opacity, 0);
    EXPECT_DOUBLE_EQ(shownIn(100ms).opacity, 0.75);
}

TEST_F(WindowTest, AViewChangesAtOnceInsideATransactionToo) {
    const Transaction transaction(1s);
    auto label = TextField::labelWithString<TextField>("");
    panel->contentView()->addSubview(label);
    label->setFrame({16, 0, 88, 44});
    label->setAlphaValue(0);
    const auto shown = shownIn(0ms).sublayers.at(0).sublayers.at(0);
    EXPECT_EQ(shown.frame(), (Rect{16, 0, 88, 44}));
    EXPECT_EQ(shown.opacity, 0);
}

TEST_F(WindowTest, SubviewsAndSublayersLieInTheOrderTheyWereAdded) {
    auto body = std::make_shared<VisualEffectView>();
    body->setMaterial(VisualEffect::Material::hudWindow);
    panel->setContentView(body);
    auto glow = std::make_shared<GradientLayer>();
    auto label = TextField::labelWithString<TextField>("Hello");
    auto caret = std::make_shared<Layer>();
    body->layer()->addSublayer(glow);
    body->addSubview(label);
    body->layer()->addSublayer(caret);
    EXPECT_EQ(body->layer()->sublayers(), (std::vector<std::shared_ptr<Layer>>{glow, label->layer(), caret}));

    const auto shown = shownIn(0ms).sublayers.at(0);
    EXPECT_EQ(shown.drawing.effect.value().material, VisualEffect::Material::hudWindow);
    EXPECT_EQ(shown.sublayers.at(1).drawing.lines.at(0).text, "Hello");

    label->removeFromSuperview();
    EXPECT_TRUE(body->subviews().empty());
    EXPECT_EQ(body->layer()->sublayers(), (std::vector<std::shared_ptr<Layer>>{glow, caret}));
    // A layer that outlives its view has nothing left to draw.
    auto remains = label->layer();
    label.reset();
    EXPECT_TRUE(remains->presentation({}).drawing.lines.empty());
}

TEST_F(WindowTest, IsShownInFrontOfItsLevelUntilItIsOrderedOutOrGone) {
    using Windows = std::vector<Window*>;
    auto plain = makePanel();
    auto last = makePanel();
    panel->setFloatingPanel(true);
    panel->orderFrontRegardless();
    plain->orderFrontRegardless();
    last->orderFrontRegardless();
    EXPECT_EQ(host.windows.shown, (Windows{plain.get(), last.get(), panel.get()}));
    plain->orderFrontRegardless();
    EXPECT_EQ(host.windows.shown, (Windows{last.get(), plain.get(), panel.get()}));
    plain->orderOut();
    EXPECT_FALSE(plain->isVisible());
    last.reset();
    EXPECT_EQ(host.windows.shown, Windows{panel.get()});
}

TEST_F(WindowTest, NeedsDisplayAtWhateverChangesWhileItIsShown) {
    auto label = TextField::labelWithString<TextField>("");
    auto glow = std::make_shared<GradientLayer>();
    panel->contentView()->addSubview(label);
    label->layer()->addSublayer(glow);
    EXPECT_TRUE(host.windows.needingDisplay.empty());
    panel->orderFrontRegardless();
    const BasicAnimation pulse{{.keyPath = "opacity", .duration = 1s}, 1.0, 0.0};
    for (const auto& [name, change] : std::vector<std::pair<const char*, std::function<void()>>>{
             {"text", [&] { label->setStringValue("Hello"); }},
             {"text colour", [&] { label->setTextColor(Color::white(1, 1)); }},
             {"deep below", [&] { glow->setCornerRadius(1); }},
             {"animation", [&] { glow->addAnimation(pulse, "pulse"); }},
             {"its end", [&] { glow->removeAllAnimations(); }},
             {"gone", [&] { glow->removeFromSuperlayer(); }},
             {"frame",
              [&] {
                  panel->setFrameOrigin(Point{10, 10});
              }},
             {"animator", [&] { panel->animator().setAlphaValue(0.5); }},
             {"content", [&] { panel->setContentView(std::make_shared<View>()); }},
         }) {
        host.windows.needingDisplay.clear();
        change();
        EXPECT_EQ(host.windows.needingDisplay.count(panel.get()), 1U) << name;
    }
    host.windows.needingDisplay.clear();
    label->setStringValue("No longer in the window");
    panel->orderOut();
    panel->setAlphaValue(1);
    EXPECT_TRUE(host.windows.needingDisplay.empty());
}

TEST_F(WindowTest, AKeyPressesTheButtonThatStandsForItIfItCanBePressed) {
    std::string pressed;
    const auto add = [&](const std::string& title, const std::string& key) {
        auto button = std::make_shared<Button>(title, [&](Button& one) { pressed += one.title(); });
        button->setKeyEquivalent(key);
        auto page = std::make_shared<View>();
        page->addSubview(button);
        panel->contentView()->addSubview(page);
        return button;
    };
    const auto press = [&] {
        pressed.clear();
        return panel->performKeyEquivalent("\r") ? pressed : "nothing";
    };
    EXPECT_EQ(press(), "nothing");
    auto first = add("first", "\r");
    add("second", "");
    add("third", "\r");
    EXPECT_EQ(press(), "first");
    first->setEnabled(false);
    EXPECT_EQ(press(), "third");
    first->setEnabled(true);
    // A page that fades away is done with.
    first->superview()->animator().setAlphaValue(0);
    EXPECT_EQ(press(), "third");
    first->setEnabled(false);
    first->performClick();
    EXPECT_EQ(pressed, "third");
}

TEST_F(WindowTest, ColoursAreTheThemesAsTheyAreWhenItIsDrawn) {
    auto label = TextField::labelWithString<TextField>("plain");
    panel->contentView()->addSubview(label);
    panel->setBackgroundColor(Color::system(SystemColor::windowBackground));
    label->setAttributedStringValue(
        {{"", Font::systemFont(10), Color::system(SystemColor::green), Symbol{"check", ""}},
         {"text", Font::systemFont(14), Color::system(SystemColor::label)}});
    label->setFrame({0, 0, 56, 40});
    const auto shown = shownIn(0ms);
    EXPECT_EQ(shown.backgroundColor, host.windows.color(SystemColor::windowBackground));
    const auto drawing = shown.sublayers.at(0).sublayers.at(0).drawing;
    EXPECT_EQ(drawing.symbols.at(0).color, host.windows.color(SystemColor::green));
    EXPECT_EQ(drawing.symbols.at(0).place, (Rect{2, 28, 12, 12}));
    EXPECT_EQ(drawing.lines.at(0).color, host.windows.color(SystemColor::label));
    EXPECT_EQ(drawing.lines.at(0).place.x, 14);
    EXPECT_EQ(label->stringValue(), "text");
    label->setStringValue("plain");
    EXPECT_EQ(shownIn(0ms).sublayers.at(0).sublayers.at(0).drawing.lines.at(0).text, "plain");
}
