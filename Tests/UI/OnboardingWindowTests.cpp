#include "Support/HeadlessTest.h"
#include "UI/Confetti.h"
#include "main/AppDelegate.h"

#include <set>

using namespace lumarin;
using namespace platform;
using namespace std::chrono_literals;

namespace {

// What there is to read, in order.
std::string textsOf(const LayerPresentation& layer) {
    std::string texts;
    for (const auto& symbol : layer.drawing.symbols)
        texts += "<" + symbol.name + ">";
    for (const auto& line : layer.drawing.lines)
        texts += line.text + "|";
    if (layer.drawing.button)
        texts += "[" + layer.drawing.button->title + "]";
    for (const auto& sublayer : layer.sublayers)
        texts += textsOf(sublayer);
    return texts;
}

// The program launched on a machine in memory, without the permission.
class Onboarding : public tests::HeadlessTest {
protected:
    Onboarding() { launch(); }

    void launch() {
        host.keys.isPermitted = false;
        delegate = std::make_shared<AppDelegate>();
        host.application().delegate = delegate;
        host.application().run();
        host.advance(299ms);
        EXPECT_TRUE(host.windows.shown.empty());
        host.advance(1ms);
    }

    Window& window() { return *host.windows.shown.at(0); }
    std::vector<LayerPresentation> pages(Duration after = {}) {
        return window().presentation(host.clock.now() + after).sublayers.at(0).sublayers.at(0).sublayers;
    }
    LayerPresentation page(Duration after = {}) { return pages(after).at(0); }
    // The title of the only page, or how many there are.
    std::string title() {
        const auto count = pages().size();
        return count == 1 ? page().sublayers.at(1).drawing.lines.at(0).text
                          : std::to_string(count) + " pages";
    }

    void pressReturn() {
        EXPECT_TRUE(window().performKeyEquivalent("\r"));
        host.advance(250ms);
    }
    void press(const std::string& buttonTitle, int times = 1) {
        std::shared_ptr<Button> found;
        window().contentView()->forEach<Button>([&](const auto& button) {
            if (button->title() == buttonTitle)
                found = button;
        });
        ASSERT_TRUE(found) << buttonTitle;
        for (; times > 0; --times)
            found->performClick();
        host.advance(250ms);
    }
    void skip() { press("Skip"); }
    void permit() { host.keys.isPermitted = true; }

    bool comesToRest() { return timeToRest() < 30s; }

    std::shared_ptr<AppDelegate> delegate;
};

const std::string permissionTitle = "Let Lumarin type for you";
const std::string doneTitle = "You are ready to go";

} // namespace

TEST_F(Onboarding, LeadsToTheEndOnEveryWay) {
    using Step = std::pair<std::function<void()>, std::string>;
    const auto enter = [this] { pressReturn(); };
    const auto leave = [this] { skip(); };
    const auto grant = [this] { permit(); };
    const auto wait = [this](Duration duration) { return [=, this] { host.advance(duration); }; };
    for (const auto& [name, steps] : std::vector<std::pair<const char*, std::vector<Step>>>{
             {"granted on the first page", {{grant, "Lumarin"}, {enter, doneTitle}}},
             {"granted while it waits",
              {{enter, permissionTitle},
               {enter, permissionTitle},
               {grant, permissionTitle},
               // It is seen a second after the page came, half of which has gone by.
               {wait(500ms + 399ms), permissionTitle},
               {wait(1ms), "2 pages"},
               {wait(250ms), doneTitle}}},
             {"gone on before it is seen",
              {{enter, permissionTitle}, {grant, permissionTitle}, {enter, doneTitle}}},
             {"gone on as soon as it is seen",
              {{enter, permissionTitle},
               {grant, permissionTitle},
               {wait(800ms), permissionTitle},
               {enter, doneTitle}}},
             {"skipped", {{enter, permissionTitle}, {leave, doneTitle}, {grant, doneTitle}}},
         }) {
        SCOPED_TRACE(name);
        EXPECT_EQ(title(), "Lumarin");
        host.trustPrompts = 0;
        for (const auto& [act, expected] : steps) {
            act();
            EXPECT_EQ(title(), expected);
        }
        EXPECT_EQ(host.trustPrompts, steps.size() == 6 ? 1 : 0);
        const auto layers = page().sublayers.size();
        host.advance(3s);
        EXPECT_EQ(page().sublayers.size(), layers) << "one burst of confetti";

        const auto menu = host.bar.menu;
        const int clicks = host.bar.clicks;
        const int attempts = host.login.attempts;
        host.login.failure = "disk full";
        EXPECT_TRUE(window().performKeyEquivalent("\r"));
        EXPECT_TRUE(host.windows.shown.empty());
        EXPECT_NE(host.bar.menu, menu) << "built anew";
        EXPECT_EQ(host.login.attempts, attempts + 1);
        host.advance(299ms);
        EXPECT_EQ(host.bar.clicks, clicks);
        host.advance(1ms);
        EXPECT_EQ(host.bar.clicks, clicks + 1);
        EXPECT_TRUE(comesToRest());
        launch();
    }
}

TEST_F(Onboarding, APageThatSlidesAwayLeadsOnOnce) {
    press("Get Started", 2);
    EXPECT_EQ(title(), permissionTitle);
    press("Skip", 2);
    EXPECT_EQ(title(), doneTitle);
}

TEST_F(Onboarding, ShowsItsPagesWithoutMotionWhereLessIsToMove) {
    host.needs.reducesMotion = true;
    EXPECT_TRUE(window().performKeyEquivalent("\r"));
    EXPECT_EQ(title(), permissionTitle);
    permit();
    EXPECT_TRUE(window().performKeyEquivalent("\r"));
    EXPECT_EQ(title(), doneTitle);
    EXPECT_EQ(page().frame().x, 0);
    EXPECT_FALSE(window().nextChange(host.clock.now())) << "no confetti";
}

TEST_F(Onboarding, ClosedItCallsNothingAndOnlyWaitsOn) {
    for (int step = 0; step < 3; ++step) {
        SCOPED_TRACE(step);
        if (step > 0)
            pressReturn();
        if (step > 1)
            skip();
        const auto menu = host.bar.menu;
        const int attempts = host.login.attempts;
        window().close();
        EXPECT_EQ(comesToRest(), step == 2) << "the demonstration and the waiting go on";
        EXPECT_TRUE(host.windows.needingDisplay.empty());
        permit();
        EXPECT_EQ(comesToRest(), step != 0);
        EXPECT_TRUE(host.windows.shown.empty());
        EXPECT_EQ(host.bar.menu, menu);
        EXPECT_EQ(host.bar.clicks, 0);
        EXPECT_EQ(host.login.attempts, attempts);
        launch();
    }
}

TEST_F(Onboarding, StandsInTheMiddleWithTheKeyboard) {
    EXPECT_EQ(host.windows.key, &window());
    EXPECT_EQ(host.activations, 1);
    EXPECT_EQ(window().title, "Lumarin");
    EXPECT_EQ(window().styleMask, Window::StyleMask::titled | Window::StyleMask::closable);
    EXPECT_EQ(window().frame(), (Rect{530, 277.5, 380, 320}));
}

TEST_F(Onboarding, PagesSayWhatTheyAreAndSlideAlong) {
    const auto expectPage = [this](const std::string& texts, double fill) {
        EXPECT_EQ(textsOf(page()), texts);
        std::set<double> bars;
        for (const auto& layer : page().sublayers)
            if (layer.frame().y == 12 && layer.frame().x == 160)
                bars.insert(layer.frame().width);
        EXPECT_EQ(bars, (std::set<double>{fill, 60}));
    };
    expectPage("💬|Lumarin|Write in your language, send in theirs.||Fn|→||[Get Started]", 20);
    pressReturn();
    const std::string head =
        "🔐|" + permissionTitle
        + "|This session does not yet let Lumarin detect the key you hold and type for you.|";
    expectPage(head + "Waiting for permission…|[Show How][Skip]", 40);
    permit();
    host.advance(750ms);
    expectPage(head + "<checkmark.circle.fill> Permission granted|[Show How][Skip]", 40);
    host.advance(400ms);

    const double half = TimingFunction(0.25, 1, 0.5, 1).value(0.5);
    const auto leaving = pages(125ms).at(0);
    const auto coming = pages(125ms).at(1);
    EXPECT_DOUBLE_EQ(leaving.frame().x, -190 * half);
    EXPECT_DOUBLE_EQ(leaving.opacity, 1 - half);
    EXPECT_DOUBLE_EQ(coming.frame().x, 380 * (1 - half));
    EXPECT_EQ(coming.opacity, 1);
    EXPECT_TRUE(window().performKeyEquivalent("\r")) << "of the page that comes";
    EXPECT_TRUE(host.windows.shown.empty());
    host.advance(250ms);
    launch();
    pressReturn();
    skip();
    expectPage("🎉|" + doneTitle + "|Hold Fn (or Right Ctrl) in any text field and watch.|[Start Now]", 60);
}

TEST_F(Onboarding, ShowsAGestureOverAndOver) {
    // The layers of the first page: icon, title, tagline, then the demonstration's phrase, key, arrow,
    // result.
    const auto part = [this](std::size_t index) { return page(200ms).sublayers.at(3 + index); };
    const auto text = [](const LayerPresentation& box) {
        return box.sublayers.back().drawing.lines.at(0).text;
    };
    // What is seen of it, the key in brackets while it is down.
    const auto look = [&] {
        const double scale = part(1).transform.scale.width;
        const std::string key = scale == 1 ? " Fn" : scale == 0.92 ? " [Fn]" : " ?";
        EXPECT_EQ(part(2).opacity, part(3).opacity);
        return text(part(0)) + (part(1).opacity == 1 ? key : "") + (part(3).opacity == 1 ? " → " : "")
               + text(part(3));
    };
    const auto start = host.clock.now();
    for (const int cycle : {0, 1})
        for (const auto& [tick, expected] : std::vector<std::pair<int, std::string>>{
                 {0, "你"},
                 {3, "你好世界"},
                 {5, "你好世界"},
                 {6, "你好世界 Fn"},
                 {9, "你好世界 [Fn]"},
                 {12, "你好世界 [Fn]"},
                 {13, "你好世界 Fn"},
                 {14, "你好世界 Fn → "},
                 {15, "你好世界 Fn → "},
                 {16, "你好世界 Fn → H"},
                 {26, "你好世界 Fn → Hello World"},
                 {41, "你好世界 Fn → Hello World"},
                 {42, ""},
             }) {
            host.advance(start + (43 * cycle + tick + 1) * 120ms - host.clock.now());
            EXPECT_EQ(look(), expected) << tick;
        }
    // Phrases of 4 and 11 characters at 12 points, rounded up, and 16 more.
    EXPECT_EQ(part(0).frame(), (Rect{71, 146, 51, 28}));
    EXPECT_EQ(part(3).frame(), (Rect{198, 146, 111, 28}));
}

TEST_F(Onboarding, ConfettiFallsInsideThePageAndFades) {
    View page({0, 0, 380, 320});
    std::mt19937 random(7);
    const auto now = host.clock.now();
    startConfetti(page, random);
    EXPECT_TRUE(page.layer()->masksToBounds());
    const auto at = [&](Duration after) { return page.layer()->presentation(now + after).sublayers; };
    const auto first = at(0ms);
    const auto last = at(2600ms);
    ASSERT_EQ(first.size(), 40U);
    std::set<double> colors;
    for (std::size_t i = 0; i < first.size(); ++i) {
        EXPECT_GE(first[i].frame().y, 320) << "not yet on the page";
        colors.insert(first[i].backgroundColor.red + first[i].backgroundColor.green);
        EXPECT_EQ(last[i].opacity, 0);
        EXPECT_NEAR(last[i].position.x, first[i].position.x, 60);
        EXPECT_NEAR(last[i].position.y, 10, 30);
        EXPECT_LE(std::abs(last[i].rotation), 6);
        EXPECT_EQ(at(1h)[i].position, last[i].position) << "it stays where it fell";
    }
    EXPECT_EQ(colors.size(), 6U);
    EXPECT_FALSE(page.layer()->nextChange(now + 2600ms));
    // On the way all are seen, and they turn.
    const auto middle = at(800ms);
    EXPECT_GT(std::ranges::count_if(middle, [](auto& each) { return each.opacity == 1; }), 20);
    EXPECT_GT(std::ranges::count_if(middle, [](auto& each) { return each.rotation != 0; }), 35);
}
