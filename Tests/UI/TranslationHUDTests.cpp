#include "Support/HeadlessTest.h"
#include "UI/TranslationHUD.h"

using namespace lumarin;
using namespace platform;
using namespace std::chrono_literals;

namespace {

// The share of the way gone at half the time.
constexpr double springAtHalf = 0.9340958071756403;
constexpr double easeInAtHalf = 0.3153568125725393;
constexpr double defaultAtHalf = 0.802403387584857;
// Opacities are kept in single precision.
constexpr double fine = 1e-6;

// So many characters, each 10 points wide.
std::string letters(std::size_t count) {
    return std::string(count, 'n');
}

std::size_t animationsIn(const Layer& layer) {
    std::size_t count = layer.animationKeys().size();
    for (const auto& sublayer : layer.sublayers())
        count += animationsIn(*sublayer);
    return count;
}

// What a person sees of the pill in front: now, or after a while in which nobody does anything.
class TranslationHUDTest : public tests::HeadlessTest {
protected:
    Window& window() const { return *host.windows.shown.at(host.windows.shown.size() - 1); }
    LayerPresentation pill(Duration after = {}) const {
        return window().presentation(host.clock.now() + after);
    }
    LayerPresentation body(Duration after = {}) const { return pill(after).sublayers.at(0); }
    LayerPresentation glow(Duration after = {}) const { return body(after).sublayers.at(0); }
    LayerPresentation shimmer(Duration after = {}) const { return body(after).sublayers.at(1); }
    LayerPresentation label(Duration after = {}) const { return body(after).sublayers.at(2); }
    LayerPresentation caret(Duration after = {}) const { return body(after).sublayers.at(3); }
    TextLine line() const { return label().drawing.lines.at(0); }
    std::size_t sweeps() const { return body().sublayers.size() - 4; }

    bool isMoving() const { return window().nextChange(host.clock.now()).has_value(); }

    static void expectFrame(const LayerPresentation& shown, const Rect& frame, const std::string& name) {
        expectRect(shown.frame(), frame, name);
    }

    // All that is as wide as the pill, at rest.
    void expectWidth(double width, const std::string& name) const {
        expectFrame(pill(), {720 - width / 2, 817, width, 44}, name);
        expectFrame(body(), {0, 0, width, 44}, name);
        expectFrame(glow(), {0, 0, width, 44}, name);
        expectFrame(label(), {16, 0, width - 32, 44}, name);
    }

    static void expectTransform(const LayerPresentation& shown, double scale, double offset) {
        EXPECT_NEAR(shown.transform.scale.width, scale, 1e-9);
        EXPECT_NEAR(shown.transform.scale.height, scale, 1e-9);
        EXPECT_NEAR(shown.transform.translation.y, offset, 1e-9);
    }

    void expectEntrance() const {
        EXPECT_EQ(pill().opacity, 0);
        expectTransform(body(), 0.8, -8);
        EXPECT_NEAR(pill(175ms).opacity, springAtHalf, fine);
        expectTransform(body(175ms), 0.8 + 0.2 * springAtHalf, -8 + 8 * springAtHalf);
        EXPECT_EQ(pill(350ms).opacity, 1);
        expectTransform(body(350ms), 1, 0);
    }

    std::optional<TranslationHUD> hud{std::in_place};
};

} // namespace

TEST_F(TranslationHUDTest, ComesInAsAnEmptyCapsuleUnderTheBarAndTakesNoFocus) {
    hud->show("请报价");
    EXPECT_EQ(window().styleMask, Window::StyleMask::nonactivatingPanel);
    EXPECT_EQ(window().level, WindowLevel::floating);
    EXPECT_EQ(body().cornerRadius, 22);
    EXPECT_EQ(line().text, "");
    EXPECT_EQ(line().font, Font::systemFont(14, FontWeight::medium));
    EXPECT_EQ(line().lineBreakMode, LineBreakMode::truncatingTail);
    EXPECT_DOUBLE_EQ(line().place.midY(), 22);
    EXPECT_EQ(caret().opacity, 0);
    expectWidth(56, "empty");
    expectEntrance();
}

TEST_F(TranslationHUDTest, BreathesAndShimmersWhileItWaits) {
    hud->show("");
    EXPECT_NEAR(shimmer().position.x, -56, fine);
    for (const Duration after : {450ms, 180'450ms})
        EXPECT_NEAR(shimmer(after).position.x, -56 + 168 * 0.12916193104731979, fine);
    host.advance(33ms);
    EXPECT_NEAR(glow().opacity, 0.7, fine) << "before the first breath";
    host.advance(1ms);
    EXPECT_NEAR(glow().opacity, 0.35 + 0.45 * 0.568895145342319, fine);
    EXPECT_NEAR(glow().locations.at(1), 0.4 + 0.25 * 0.568895145342319, fine);

    auto [darkest, brightest] = std::pair{1.0, 0.0};
    for (int tick = 0; tick < 46; ++tick) {
        host.advance(Duration(1s) / 30);
        darkest = std::min(darkest, glow().opacity);
        brightest = std::max(brightest, glow().opacity);
    }
    EXPECT_NEAR(darkest, 0.35, 0.003);
    EXPECT_NEAR(brightest, 0.8, 0.003);
}

TEST_F(TranslationHUDTest, TheFirstTextEndsTheWaiting) {
    hud->show("");
    host.advance(1s);
    const double breath = glow().opacity;
    hud->update("Please");
    EXPECT_EQ(line().text, "Please");
    EXPECT_NEAR(label(125ms).opacity, springAtHalf, fine);
    EXPECT_NEAR(glow(150ms).opacity, breath + (0.15 - breath) * defaultAtHalf, fine);
    EXPECT_NEAR(shimmer(150ms).opacity, 1 - defaultAtHalf, fine);
    expectFrame(shimmer(50ms), {-56, 0, 112, 44}, "the shimmer stands still");
    host.advance(10s);
    EXPECT_NEAR(glow().opacity, 0.15, fine) << "it breathes no more";
    hud->update("Please quote");
    EXPECT_EQ(line().text, "Please quote");
    EXPECT_EQ(label().opacity, 1) << "only the first fades in";
}

TEST_F(TranslationHUDTest, TheCaretBlinksFromTheFirstTextOnAndKeepsItsBeat) {
    hud->show("");
    hud->update("P");
    for (int cycle = 0; cycle < 3; ++cycle) {
        for (const auto& [after, opacity] :
             {std::pair{0ms, 1.0}, {404ms, 1.0}, {450ms, 0.5}, {496ms, 0.0}, {899ms, 0.0}})
            EXPECT_NEAR(caret(after).opacity, opacity, 1e-9) << after.count();
        host.advance(300ms);
        hud->update("Pl");
        host.advance(600ms);
    }
}

TEST_F(TranslationHUDTest, IsAsWideAsItsTextWithinLimitsAboutTheMiddleOfTheScreen) {
    host.windows.screen = Screen{{-800, 0, 801, 600}, {-800, 40, 801, 530}, 1};
    hud->show("");
    // It keeps its height on the screen whatever becomes of the bar.
    host.windows.screen->visibleFrame.height = 500;
    double before = 56;
    struct Case {
        std::size_t characters;
        double width;
        double caretLeft;
    };
    for (const auto& [characters, width, caretLeft] :
         {Case{1, 120, 28}, {30, 340, 318}, {60, 560, 618}, {8, 120, 98}, {9, 130, 108}, {0, 120, 18}}) {
        const auto name = std::to_string(characters);
        hud->update(letters(characters));
        expectFrame(label(), {16, 0, width - 32, 44}, name);
        expectFrame(caret(), {caretLeft, 12, 1.5, 20}, name);
        for (const auto& [after, panelWidth, glowWidth] :
             {std::tuple{0ms, before, before},
              {90ms, (before + width) / 2, before + (width - before) * defaultAtHalf},
              {180ms, width, width}}) {
            expectFrame(pill(after), {-399.5 - panelWidth / 2, 512, panelWidth, 44}, name);
            expectFrame(body(after), {0, 0, panelWidth, 44}, name);
            expectFrame(glow(after), {0, 0, glowWidth, 44}, name);
        }
        host.advance(180ms);
        before = width;
    }
}

TEST_F(TranslationHUDTest, KeepsTheEndOfAFastStreamInSight) {
    for (const int rate : {30, 50}) {
        hud->show("");
        hud->update(letters(8));
        host.advance(1s);
        std::vector<std::pair<Duration, double>> unseen;
        double width = 120;
        double speed = 0;
        const auto passTime = [&](Duration time) {
            for (Duration passed{}; passed < time; passed += 1ms) {
                host.advance(1ms);
                const double now = pill().size.width;
                EXPECT_GE(now, width) << rate << ": it goes back";
                speed = now - width;
                width = now;
                // Its ends are 20 points from the text's.
                std::erase_if(unseen, [&](auto& end) { return now >= end.second - 20; });
                for (const auto& end : unseen)
                    EXPECT_LE(host.clock.now() - end.first, 50ms) << rate << " at " << end.second;
            }
        };
        std::size_t length = 8;
        for (int piece = 0; length < 50; ++piece) {
            length += std::array{2U, 1U, 4U, 3U}[static_cast<std::size_t>(piece % 4)];
            hud->update(letters(length));
            unseen.emplace_back(host.clock.now(), static_cast<double>(length * 10 + 40));
            EXPECT_NEAR((pill(10us).size.width - width) * 100, speed, 0.2) << rate << ": it jerks";
            passTime(Duration(1s) / rate);
        }
        passTime(180ms - Duration(1s) / rate);
        expectWidth(static_cast<double>(length * 10 + 40), "at the end");
        EXPECT_TRUE(unseen.empty());
    }
}

TEST_F(TranslationHUDTest, TheCaretStandsWhereTheTextEnds) {
    hud->show("");
    for (const auto& [text, left] : {std::pair{"Price: سعر", 118.0}, {"سعر: Price", 16.5}, {"سعر", 41.5}}) {
        hud->update(text);
        expectFrame(caret(), {left, 12, 1.5, 20}, text);
    }
}

TEST_F(TranslationHUDTest, LeavesForAnotherScreenAsAWhole) {
    hud->show("");
    for (const Rect& visible : {Rect{1440, 300, 800, 580}, Rect{0, 0, 1440, 875}}) {
        host.windows.screen = Screen{visible, visible, 1};
        hud->update(letters(30));
        host.advance(180ms);
        expectFrame(pill(), {visible.midX() - 170, visible.maxY() - 58, 340, 44}, "under the bar there");
    }
}

TEST_F(TranslationHUDTest, TurnsGreenSweepsAndPulsesWhenDoneAndComesToRest) {
    hud->show("");
    hud->update(letters(30));
    host.advance(1s);
    const auto waiting = glow().colors;
    hud->showDone();
    EXPECT_EQ(line().text, letters(30));
    EXPECT_NEAR(caret(75ms).opacity, 1 - defaultAtHalf, fine);
    EXPECT_NEAR(glow(200ms).opacity, 0.15 + 0.55 * springAtHalf, fine);
    EXPECT_NE(glow(200ms).colors, waiting) << "on its way";
    EXPECT_GT(glow(400ms).colors.at(0).green, 1.5 * glow(400ms).colors.at(0).red);
    // At half the time the curve is well past the pulse's peak.
    expectTransform(body(200ms), 1.02 - 0.02 * (springAtHalf - 0.4) / 0.6, 0);
    expectFrame(body().sublayers.at(4), {-340, 0, 340, 44}, "the sweep comes from the left");
    EXPECT_NEAR(body(250ms).sublayers.at(4).position.x, -170 + 680 * springAtHalf, fine);
    host.advance(549ms);
    EXPECT_EQ(sweeps(), 1U);
    host.advance(1ms);
    EXPECT_EQ(sweeps(), 0U);
    host.advance(250ms);
    EXPECT_NEAR(glow().opacity, 0.7, fine);
    EXPECT_NEAR(glow(250ms).opacity, 0.7 - 0.4 * defaultAtHalf, fine);
    host.advance(500ms);
    EXPECT_FALSE(isMoving());
    EXPECT_EQ(timeToRest(), 0ms);
}

TEST_F(TranslationHUDTest, ShowsAnErrorInThePillThereIs) {
    for (const auto& [text, width] : {std::pair{"", 56.0}, {"Please quote, at your ease.", 310.0}}) {
        hud->show("");
        if (*text)
            hud->update(text);
        host.advance(1s);
        const double before = glow().opacity;
        const auto ofText = line().color;
        hud->showError("The service is not there");
        EXPECT_EQ(line().text, "The service is not there") << text;
        EXPECT_NE(line().color, ofText) << text;
        EXPECT_EQ(label().opacity, 1) << text;
        EXPECT_EQ(caret().opacity, 0) << text;
        expectWidth(width, text);
        for (const auto& [after, offset] :
             {std::pair{45ms, -2.0}, {105ms, 2.0}, {165ms, -1.5}, {225ms, 1.5}, {300ms, 0.0}})
            EXPECT_NEAR(body(after).transform.translation.x, offset, 1e-9) << after.count();
        EXPECT_NEAR(glow(150ms).opacity, before + (0.8 - before) * defaultAtHalf, fine) << text;
        EXPECT_NEAR(shimmer(150ms).opacity, *text ? 0 : 1 - defaultAtHalf, fine) << text;
        host.advance(300ms);
        EXPECT_GT(glow().colors.at(0).red, 2 * glow().colors.at(0).green) << text;
        EXPECT_FALSE(isMoving()) << text;
        EXPECT_EQ(timeToRest(), 0ms) << text;
    }
}

TEST_F(TranslationHUDTest, ShowsAnErrorWithoutAPillInOneOfItsWidth) {
    for (const auto& [characters, width] : {std::pair{3U, 120.0}, {30U, 340.0}, {60U, 560.0}}) {
        hud->showError(letters(characters));
        expectEntrance();
        expectWidth(width, std::to_string(characters));
        EXPECT_EQ(label().opacity, 1);
        EXPECT_EQ(timeToRest(), 0ms);
        hud->dismiss();
        host.advance(200ms);
    }
}

TEST_F(TranslationHUDTest, HasTheDesktopTellWhatThePillHasNoRoomFor) {
    struct Case {
        std::optional<std::size_t> shown;
        std::size_t message;
        bool isTold;
    };
    for (const auto& [shown, message, isTold] :
         {Case{{}, 3, false}, {{}, 52, false}, {{}, 53, true}, {0, 3, true}, {1, 8, false}, {30, 31, true}}) {
        if (shown)
            hud->show("");
        if (shown && *shown > 0)
            hud->update(letters(*shown));
        host.notices.delivered.clear();
        hud->showError(letters(message));
        EXPECT_EQ(host.notices.delivered, std::vector<std::string>(isTold, letters(message))) << message;
        hud->dismiss();
    }
}

TEST_F(TranslationHUDTest, FadesAwayFromEveryLookAndLeavesNothing) {
    const auto hasText = [&] { hud->update("Please"); };
    const auto isDone = [&] { hud->showDone(); };
    const auto hasFailed = [&] { hud->showError("No"); };
    for (const std::function<void()>& look :
         std::vector<std::function<void()>>{[] {}, hasText, isDone, hasFailed}) {
        hud->show("");
        host.advance(1s);
        look();
        host.advance(1s);
        hud->dismiss();
        hud->dismiss();
        EXPECT_NEAR(pill(100ms).opacity, 1 - easeInAtHalf, fine);
        expectTransform(body(100ms), 1 - 0.05 * easeInAtHalf, 12 * easeInAtHalf);
        host.advance(199ms);
        EXPECT_EQ(host.windows.shown.size(), 1U);
        EXPECT_EQ(timeToRest(), 1ms);
        EXPECT_TRUE(host.windows.shown.empty());
    }
    // On its way in, too, and without a pill nothing happens.
    hud->show("");
    hud->dismiss();
    hud->update("Please");
    hud->showDone();
    EXPECT_EQ(timeToRest(), 200ms);
    EXPECT_TRUE(host.windows.shown.empty());
}

TEST_F(TranslationHUDTest, OnlyFadesAndChangesWhereLessIsToMove) {
    host.needs.reducesMotion = true;
    hud->show("");
    const auto stands = [&] {
        for (const Duration after : {0ms, 50ms, 100ms, 250ms}) {
            expectTransform(body(after), 1, 0);
            EXPECT_EQ(body(after).transform.translation.x, 0);
            EXPECT_EQ(shimmer(after).position.x, 0);
            EXPECT_EQ(body(after).sublayers.size(), 4U);
        }
    };
    stands();
    EXPECT_NEAR(pill(175ms).opacity, springAtHalf, fine);
    EXPECT_EQ(timeToRest(), 0ms) << "it does not breathe";
    host.advance(1s);
    EXPECT_FALSE(isMoving());
    hud->update(letters(30));
    expectWidth(340, "at once");
    EXPECT_NEAR(label(125ms).opacity, springAtHalf, fine);
    host.advance(1s);
    hud->showDone();
    stands();
    hud->showError("No");
    stands();
    hud->dismiss();
    stands();
    EXPECT_NEAR(pill(100ms).opacity, 1 - easeInAtHalf, fine);
    EXPECT_EQ(timeToRest(), 800ms);
}

TEST_F(TranslationHUDTest, IsAnnouncedToThoseWhoCannotSeeIt) {
    hud->show("请报价");
    for (const char* text : {"Please", "Please quote"})
        hud->update(text);
    hud->showDone();
    hud->dismiss();
    hud->showError("No text found here.");
    EXPECT_EQ(host.needs.announced,
              (std::vector<std::string>{"Translating…", "Please quote", "No text found here."}));
}

TEST_F(TranslationHUDTest, ANewPillStandsBesideTheOneThatFadesAndIsLeftAlone) {
    for (const Duration fading : {0ms, 100ms}) {
        hud->show("");
        host.advance(1s);
        hud->update("Old");
        hud->showDone();
        if (fading > 0ms)
            hud->dismiss();
        host.advance(fading);
        const Window& old = window();
        hud->show("");
        hud->update("New");
        EXPECT_EQ(old.presentation({}).sublayers.at(0).sublayers.at(2).drawing.lines.at(0).text, "Old");
        host.advance(200ms - fading);
        ASSERT_EQ(host.windows.shown.size(), 1U);
        host.advance(2s);
        EXPECT_EQ(line().text, "New");
        EXPECT_NEAR(glow().opacity, 0.15, fine) << "the old one's success must not touch it";
        hud->dismiss();
        host.advance(200ms);
    }
}

TEST_F(TranslationHUDTest, GoesFromTheScreenWithItsOwner) {
    hud->show("");
    hud->showDone();
    hud.reset();
    EXPECT_TRUE(host.windows.shown.empty());
    EXPECT_EQ(timeToRest(), 800ms);
    // One that fades does so to the end.
    hud.emplace().show("");
    hud->dismiss();
    hud.reset();
    EXPECT_EQ(host.windows.shown.size(), 1U);
    EXPECT_EQ(timeToRest(), 200ms);
    EXPECT_TRUE(host.windows.shown.empty());
}

TEST_F(TranslationHUDTest, StaysAsItIsInTheCornerWithoutAScreen) {
    host.windows.screen.reset();
    hud->show("");
    hud->update(letters(30));
    host.advance(1s);
    EXPECT_EQ(line().text, letters(30));
    expectFrame(pill(), {0, 0, 56, 44}, "pill");
    expectFrame(label(), {16, 0, 24, 44}, "label");
    expectFrame(caret(), {16, 12, 1.5, 20}, "caret");
}

TEST_F(TranslationHUDTest, KeepsUpWithTenThousandTextsAndGathersNothing) {
    hud->show("");
    const Layer& layer = *window().contentView()->layer();
    std::string text;
    std::size_t animations = 0;
    while (text.size() < 10'000) {
        hud->update(text += 'n');
        host.advance(1ms);
        if (text.size() <= 20)
            animations = animationsIn(layer);
        ASSERT_LE(animationsIn(layer), animations) << text.size();
    }
    EXPECT_EQ(line().text, text);
    EXPECT_EQ(pill().frame().width, 560) << "it arrives while texts keep coming";
}
