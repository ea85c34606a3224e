#include "Platform/Kit/GradientLayer.h"
#include "Platform/Kit/Transaction.h"
#include "Support/HeadlessTest.h"

using namespace platform;
using namespace std::chrono_literals;

namespace {

const auto linear = TimingFunction::linear();

class LayerTest : public tests::HeadlessTest {
protected:
    Duration now() const { return host.clock.now(); }
    LayerPresentation shown() const { return layer->presentation(now()); }
    // What is shown so long from now.
    LayerPresentation shownIn(Duration duration) const { return layer->presentation(now() + duration); }
    bool isMovingIn(Duration duration) const { return layer->nextChange(now() + duration).has_value(); }

    std::shared_ptr<GradientLayer> layer = std::make_shared<GradientLayer>();
};

} // namespace

TEST_F(LayerTest, IsAtRestWithActionsDisabledAndWhenSetToWhatIsShown) {
    const Transaction outer(300ms);
    layer->setOpacity(1);
    layer->setFrame(layer->frame());
    EXPECT_FALSE(isMovingIn(0ms));
    const auto transaction = Transaction::withActionsDisabled();
    layer->setOpacity(0.25F);
    EXPECT_EQ(shown().opacity, 0.25);
    EXPECT_FALSE(isMovingIn(0ms));
}

TEST_F(LayerTest, MovesFromWhatIsShownToTheNewValue) {
    {
        const Transaction transaction(200ms, linear);
        layer->setOpacity(0);
    }
    EXPECT_EQ(layer->opacity(), 0);
    for (const auto& [after, opacity] : {std::pair{0ms, 1.0}, {50ms, 0.75}, {199ms, 0.005}, {200ms, 0.0}})
        EXPECT_NEAR(shownIn(after).opacity, opacity, 1e-12) << after.count();

    // Turned back half way, it goes on from there, and for the whole duration.
    host.advance(100ms);
    {
        const Transaction transaction(400ms, linear);
        layer->setOpacity(1);
    }
    EXPECT_DOUBLE_EQ(shownIn(0ms).opacity, 0.5);
    EXPECT_DOUBLE_EQ(shownIn(200ms).opacity, 0.75);
    // Set at once, it is there.
    host.advance(100ms);
    layer->setOpacity(0.25F);
    EXPECT_EQ(shown().opacity, 0.25);
    EXPECT_FALSE(isMovingIn(0ms));
}

TEST_F(LayerTest, TheInnerTransactionDecidesAndThenTheOuterAgain) {
    const Transaction outer(1s, linear);
    {
        const Transaction inner(100ms);
        layer->setOpacity(0);
    }
    layer->setCornerRadius(10);
    EXPECT_NEAR(shownIn(50ms).opacity, 1 - 0.80240338758485698951, 1e-12) << "the default curve";
    EXPECT_EQ(shownIn(100ms).opacity, 0);
    EXPECT_DOUBLE_EQ(shownIn(100ms).cornerRadius, 1);
}

TEST_F(LayerTest, EveryPropertyMoves) {
    layer->setFrame({0, 0, 56, 44});
    layer->setColors({Color::white(1, 0), Color::clear()});
    layer->setLocations({0, 1});
    {
        const Transaction transaction(100ms, linear);
        layer->setFrame({10, 20, 120, 44});
        layer->setTransform(
            Transform::concat(Transform::makeTranslation(0, -10), Transform::makeScale(0.5, 0.8)));
        layer->setBackgroundColor(Color::calibrated(1, 0.5, 0, 1));
        layer->setCornerRadius(22);
        layer->setBorderWidth(1);
        layer->setBorderColor(Color::white(1, 0.5));
        layer->setColors({Color::white(0, 1), Color::white(1, 1)});
        layer->setLocations({0.5, 1});
    }
    const auto half = shownIn(50ms);
    EXPECT_EQ(half.frame(), (Rect{5, 10, 88, 44}));
    EXPECT_EQ(half.transform, (Transform{{0.75, 0.9}, {0, -4}}));
    EXPECT_EQ(half.backgroundColor, Color::calibrated(0.5, 0.25, 0, 0.5));
    EXPECT_EQ(half.cornerRadius, 11);
    EXPECT_EQ(half.borderWidth, 0.5);
    EXPECT_EQ(half.borderColor, Color::white(0.5, 0.25));
    EXPECT_EQ(half.colors, (std::vector{Color::white(0.5, 0.5), Color::white(0.5, 0.5)}));
    EXPECT_EQ(half.locations, (std::vector{0.25, 1.0}));
}

TEST_F(LayerTest, AnAnimationRepeatsFromItsBeginningUntilItIsRemoved) {
    layer->setFrame({-56, 0, 112, 44});
    layer->addAnimation(BasicAnimation{{.keyPath = "position.x",
                                        .duration = 1800ms,
                                        .repeatCount = Animation::forever,
                                        .timingFunction = TimingFunction::easeInEaseOut()},
                                       -56.0,
                                       112.0},
                        "shimmer");
    const double quarter = -56 + 168 * 0.12916193104731981164;
    for (const auto& [after, x] : {std::pair<Duration, double>{450ms, quarter}, {1800ms, -56}, {2h, -56}})
        EXPECT_NEAR(shownIn(after).position.x, x, 1e-9) << after.count();
    EXPECT_EQ(layer->position().x, 0);
    // A frame for a moment just before it began shows the beginning, not the end.
    EXPECT_EQ(layer->presentation(now() - 1ms).position.x, -56);

    EXPECT_TRUE(isMovingIn(2h));
    layer->removeAnimation("blink");
    EXPECT_TRUE(isMovingIn(0ms));
    layer->removeAllAnimations();
    EXPECT_FALSE(isMovingIn(0ms));
    EXPECT_EQ(shown().position.x, 0);
}

TEST_F(LayerTest, AnAnimationEndsAfterItsRepetitionsAndIsForgottenThen) {
    BasicAnimation grow{{.keyPath = "transform.scale", .duration = 300ms, .repeatCount = 3}, 1.0, 2.0};
    layer->addAnimation(grow, "grow");
    grow.isRemovedOnCompletion = false;
    layer->addAnimation(grow, "kept");
    EXPECT_DOUBLE_EQ(shownIn(750ms).transform.scale.height, 1.5);
    EXPECT_EQ(shownIn(900ms).transform, Transform::identity());
    EXPECT_TRUE(isMovingIn(899ms));
    EXPECT_FALSE(isMovingIn(900ms));
    EXPECT_EQ(layer->animationKeys(), (std::vector<std::string>{"grow", "kept"}));
    host.advance(900ms);
    EXPECT_EQ(layer->animationKeys(), std::vector<std::string>{"kept"});
}

TEST_F(LayerTest, AnAnimationBeginsWhenItIsToldAndStaysAtItsEndIfItFills) {
    const Animation later{.keyPath = "transform.rotation.z",
                          .duration = 200ms,
                          .beginTime = now() + 100ms,
                          .isRemovedOnCompletion = false,
                          .fillMode = FillMode::forwards};
    layer->setRotation(9);
    layer->addAnimation(BasicAnimation{later, 2.0, 4.0}, "turn");
    for (const auto& [after, angle] :
         {std::pair{99ms, 9.0}, {100ms, 2.0}, {200ms, 3.0}, {300ms, 4.0}, {5s, 4.0}})
        EXPECT_DOUBLE_EQ(shownIn(after).rotation, angle) << after.count();
    EXPECT_EQ(layer->nextChange(now()), now() + 100ms);
    EXPECT_TRUE(isMovingIn(250ms));
    EXPECT_FALSE(isMovingIn(300ms));
    layer->removeAnimation("turn");
    EXPECT_EQ(shownIn(5s).rotation, 9);
}

TEST_F(LayerTest, KeyframesGoStraightFromOneToTheNext) {
    const KeyframeAnimation shake{{.keyPath = "transform.translation.x", .duration = 300ms},
                                  {0.0, -2.0, 2.0, -1.5, 1.5, 0.0},
                                  {0, 0.15, 0.35, 0.55, 0.75, 1}};
    layer->setTransform(Transform::makeScale(2, 2));
    layer->addAnimation(shake, "shake");
    for (const auto& [after, x] :
         {std::pair<Duration, double>{0ms, 0}, {45ms, -2}, {75ms, 0}, {165ms, -1.5}, {262500us, 0.75}}) {
        EXPECT_NEAR(shownIn(after).transform.translation.x, x, 1e-9) << after.count();
        EXPECT_EQ(shownIn(after).transform.scale, (Size{2, 2}));
    }

    // The curve paces the run as a whole: the key times are shares of the way it has gone.
    layer->addAnimation(
        KeyframeAnimation{
            {.keyPath = "cornerRadius", .duration = 400ms, .timingFunction = TimingFunction::easeIn()},
            {0.0, 1.0, 0.0},
            {0, 0.4, 1}},
        "round");
    EXPECT_NEAR(shownIn(200ms).cornerRadius, 0.31535681257253930425 / 0.4, 1e-9);
}

TEST_F(LayerTest, OfTwoAnimationsForAPropertyTheLaterShowsAndAKeyHoldsOne) {
    const auto still = [](double opacity) {
        return BasicAnimation{{.keyPath = "opacity", .duration = 1s}, opacity, opacity};
    };
    layer->addAnimation(still(0.1), "one");
    layer->addAnimation(still(0.2), "two");
    EXPECT_EQ(shown().opacity, 0.2);
    layer->addAnimation(still(0.3), "one");
    EXPECT_EQ(shown().opacity, 0.3);
    EXPECT_EQ(layer->animationKeys(), (std::vector<std::string>{"two", "one"}));
    // A transaction starts from what is shown, and shows in front of both.
    const Transaction transaction(100ms, linear);
    layer->setOpacity(0.7F);
    EXPECT_NEAR(shownIn(50ms).opacity, 0.5, 1e-7);
    EXPECT_THROW(layer->addAnimation(BasicAnimation{{.keyPath = "hue"}, 0.0, 1.0}, "hue"),
                 std::invalid_argument);
}

TEST_F(LayerTest, TellsWhenTheNextChangeIsDue) {
    auto caret = std::make_shared<Layer>();
    layer->addSublayer(caret);
    EXPECT_FALSE(isMovingIn(0ms));
    host.advance(5s);
    caret->addAnimation(
        KeyframeAnimation{{.keyPath = "opacity", .duration = 900ms, .repeatCount = Animation::forever},
                          {1.0, 1.0, 0.0, 0.0},
                          {0, 0.45, 0.55, 1}},
        "blink");
    // From when, and how long until the picture is another.
    for (const auto& [from, wait] :
         {std::pair{404ms, 1ms}, {405ms, 0ms}, {450ms, 0ms}, {496ms, 404ms}, {90'000ms, 405ms}}) {
        const auto next = layer->nextChange(now() + from);
        ASSERT_TRUE(next);
        EXPECT_NEAR(static_cast<double>((*next - now() - from).count()),
                    static_cast<double>(Duration(wait).count()), 1)
            << from.count();
    }
    // The earliest of all in the tree.
    {
        const Transaction transaction(300ms);
        layer->setOpacity(0);
    }
    EXPECT_EQ(layer->nextChange(now() + 100ms), now() + 100ms);
    EXPECT_GT(layer->nextChange(now() + 300ms), now() + 300ms);
    caret->removeFromSuperlayer();
    EXPECT_FALSE(isMovingIn(300ms));
}

TEST_F(LayerTest, OutlivesItsSuperlayerAndLeavesItForAnother) {
    auto sublayer = std::make_shared<Layer>();
    layer->addSublayer(sublayer);
    layer->addSublayer(std::make_shared<Layer>());
    layer->addSublayer(sublayer);
    EXPECT_EQ(layer->sublayers().size(), 2U);
    EXPECT_EQ(layer->sublayers().back(), sublayer);
    auto other = std::make_shared<Layer>();
    other->addSublayer(sublayer);
    EXPECT_EQ(layer->sublayers().size(), 1U);
    EXPECT_EQ(sublayer->superlayer(), other.get());
    other.reset();
    EXPECT_EQ(sublayer->superlayer(), nullptr);
    sublayer->setOpacity(0);
}
