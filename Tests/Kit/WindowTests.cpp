#include "Platform/Kit/AnimationContext.h"
#include "Platform/Kit/GradientLayer.h"
#include "Platform/Kit/Panel.h"
#include "Platform/Kit/TextField.h"
#include "Platform/Kit/Transaction.h"
#include "Platform/Kit/VisualEffectView.h"
#include "Support/HeadlessTest.h"

using namespace platform;
using namespace std::chrono_literals;

namespace {

const auto linear = TimingFunction::linear();

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

// Stands in the middle of its field's height.
class MiddleCell : public TextFieldCell {
public:
    Rect titleRectForBounds(const Rect& bounds) const override {
        const Rect base = TextFieldCell::titleRectForBounds(bounds);
        const double height = cellSizeForBounds(bounds).height;
        return {base.x, bounds.y + (bounds.height - height) / 2, base.width, height};
    }
    void drawInterior(const Rect& frame, Drawing& drawing) const override {
        TextFieldCell::drawInterior(titleRectForBounds(frame), drawing);
    }
};

class MiddleField : public TextField {
public:
    MiddleField() : TextField(std::make_unique<MiddleCell>()) {}
};

} // namespace

TEST_F(WindowTest, MovesAndFadesByItsAnimatorAndItsContentKeepsUp) {
    auto body = std::make_shared<VisualEffectView>();
    panel->setContentView(body);
    EXPECT_EQ(body->frame(), (Rect{0, 0, 56, 44}));
    panel->setAlphaValue(0);
    AnimationContext::runAnimationGroup([&](AnimationContext& context) {
        context.duration = 200ms;
        context.timingFunction = linear;
        panel->animator().setAlphaValue(1);
        panel->animator().setFrame({-32, 10, 120, 44});
    });
    EXPECT_EQ(panel->alphaValue(), 1);
    EXPECT_EQ(panel->frame(), (Rect{-32, 10, 120, 44}));
    EXPECT_EQ(body->frame(), (Rect{0, 0, 120, 44}));

    const auto start = shownIn(0ms);
    EXPECT_EQ(start.opacity, 0);
    EXPECT_EQ(start.frame(), (Rect{0, 0, 56, 44}));
    const auto half = shownIn(100ms);
    EXPECT_EQ(half.opacity, 0.5);
    EXPECT_EQ(half.frame(), (Rect{-16, 5, 88, 44}));
    EXPECT_EQ(half.sublayers.at(0).frame(), (Rect{0, 0, 88, 44}));
    EXPECT_EQ(shownIn(200ms).frame(), panel->frame());
    EXPECT_FALSE(panel->nextChange(host.clock.now() + 200ms));

    // On its way it is taken further, from where it is.
    host.advance(100ms);
    AnimationContext::runAnimationGroup([&](AnimationContext& context) {
        context.duration = 100ms;
        context.timingFunction = linear;
        panel->animator().setFrame({-112, 5, 280, 44});
    });
    EXPECT_EQ(shownIn(0ms).frame(), half.frame());
    EXPECT_EQ(shownIn(50ms).frame(), (Rect{-64, 5, 184, 44}));
    panel->setFrame({1, 2, 56, 44});
    EXPECT_EQ(shownIn(0ms).frame(), (Rect{1, 2, 56, 44}));
    EXPECT_EQ(shownIn(0ms).sublayers.at(0).frame(), (Rect{0, 0, 56, 44}));
}

TEST_F(WindowTest, AGroupCompletesAfterItsDurationAndNeverBefore) {
    struct Case {
        const char* name;
        std::function<void(AnimationContext&)> changes;
        Duration completion;
    };
    panel->setAlphaValue(0);
    for (const auto& [name, changes, completion] : std::vector<Case>{
             {"nothing", [](AnimationContext& context) { context.duration = 1s; }, 0ms},
             {"a view's own change", [&](AnimationContext&) { panel->contentView()->setAlphaValue(0); }, 0ms},
             {"the usual duration", [&](AnimationContext&) { panel->animator().setAlphaValue(1); }, 250ms},
             {"to what is shown",
              [&](AnimationContext& context) {
                  context.duration = 200ms;
                  panel->animator().setAlphaValue(1);
              },
              200ms},
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
        outer.timingFunction = linear;
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
             {"deep below",
              [&] {
                  glow->setLocations({0, 0.5, 1});
              }},
             {"animation", [&] { glow->addAnimation(pulse, "pulse"); }},
             {"its end", [&] { glow->removeAllAnimations(); }},
             {"gone", [&] { glow->removeFromSuperlayer(); }},
             {"frame",
              [&] {
                  panel->setFrameOrigin({10, 10});
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

TEST_F(WindowTest, KnowsTheMainScreenIfThereIsOne) {
    host.windows.screen = Screen{{0, 0, 800, 600}, {0, 40, 800, 530}, 1};
    EXPECT_EQ(Screen::mainScreen().value().visibleFrame.maxY(), 570);
    host.windows.screen.reset();
    EXPECT_FALSE(Screen::mainScreen());
}

TEST_F(WindowTest, ACellPlacesTheTextOfItsField) {
    // At 14 points a character is 10 wide and a line 16.8 high.
    struct Case {
        const char* text;
        Rect frame;
        Rect place;
    };
    for (const auto& [text, frame, place] : std::vector<Case>{
             {"Hello", {16, 0, 88, 44}, {2, 13.6, 84, 16.8}},
             {"", {16, 0, 88, 44}, {2, 13.6, 84, 16.8}},
             {"wider than its field", {0, 0, 24, 44}, {2, 13.6, 20, 16.8}},
             {"taller", {0, 0, 88, 10}, {2, -3.4, 84, 16.8}},
         }) {
        auto label = TextField::labelWithString<MiddleField>(text);
        label->setFont(Font::systemFont(14, FontWeight::medium));
        label->setAlignment(TextAlignment::center);
        label->setLineBreakMode(LineBreakMode::truncatingTail);
        label->setFrame(frame);
        const auto line = label->layer()->presentation({}).drawing.lines.at(0);
        EXPECT_EQ(line.text, text);
        EXPECT_EQ(line.font, label->font());
        EXPECT_EQ(line.alignment, TextAlignment::center);
        EXPECT_EQ(line.lineBreakMode, LineBreakMode::truncatingTail);
        EXPECT_DOUBLE_EQ(line.place.x, place.x) << text;
        EXPECT_DOUBLE_EQ(line.place.y, place.y) << text;
        EXPECT_DOUBLE_EQ(line.place.width, place.width) << text;
        EXPECT_DOUBLE_EQ(line.place.height, place.height) << text;
    }
    EXPECT_EQ(sizeWithAttributes("Hé世", Font::systemFont(14, FontWeight::medium)), (Size{30, 16.8}));
}
