#include "UI/WelcomeDemo.h"

#include "Platform/Foundation/Text.h"
#include "Platform/Host.h"
#include "Platform/Kit/AnimationContext.h"
#include "Platform/Kit/GradientLayer.h"
#include "Platform/Kit/Transaction.h"
#include "UI/CenteredLabel.h"

#include <cmath>

namespace lumarin {
namespace {

using namespace platform;
using namespace std::chrono_literals;

constexpr const char* source = "你好世界";
constexpr const char* translation = "Hello World";
constexpr int sourceLength = 4;
constexpr int translationLength = 11;

// When things happen, in ticks.
constexpr int keyShown = sourceLength + 2;
constexpr int keyPressed = keyShown + 3;
constexpr int keyReleased = keyPressed + 4;
constexpr int resultShown = keyReleased + 1;
constexpr int resultTyped = resultShown + 2;
constexpr int reset = resultTyped + translationLength + 15;

constexpr auto phraseFont = Font::systemFont(12, FontWeight::medium);
constexpr auto keyFont = Font::systemFont(10, FontWeight::medium);
constexpr double rowBottom = 146;
constexpr double rowHeight = 28;
constexpr double keyWidth = 32;
constexpr double arrowWidth = 20;
constexpr double gap = 8;

// From the lower edge to the upper.
std::vector<Color> keyColors(bool isPressed) {
    return isPressed ? std::vector{Color::white(0.18, 1), Color::white(0.14, 1)}
                     : std::vector{Color::white(0.28, 1), Color::white(0.22, 1)};
}

double boxWidth(const char* phrase) {
    return std::ceil(sizeWithAttributes(phrase, phraseFont).width) + 16;
}

std::shared_ptr<View> framed(double x, double width) {
    auto view = std::make_shared<View>(Rect{x, rowBottom, width, rowHeight});
    view->layer()->setCornerRadius(6);
    view->layer()->setBorderWidth(1);
    view->layer()->setBorderColor(Color::system(SystemColor::separator));
    return view;
}

std::shared_ptr<View> box(double x, double width) {
    auto view = framed(x, width);
    view->layer()->setBackgroundColor(Color::white(0.5, 0.06));
    return view;
}

std::shared_ptr<TextField> labelIn(View& view, const char* text, const Font& font, const Color& color) {
    const double height = font.size + 4;
    auto label = centeredLabel(text, font, color, {0, (rowHeight - height) / 2, view.frame().width, height});
    view.addSubview(label);
    return label;
}

void fade(const std::vector<std::shared_ptr<View>>& views, double alpha) {
    AnimationContext::runAnimationGroup([&](AnimationContext& context) {
        context.duration = 200ms;
        for (const auto& view : views)
            view->animator().setAlphaValue(alpha);
    });
}

class Demo {
public:
    explicit Demo(View& page);

    void tick();

private:
    void startOver();
    void setKeyPressed(bool isPressed, Duration duration);

    int time = 0;
    std::shared_ptr<View> keyCap;
    std::shared_ptr<GradientLayer> keyGradient = std::make_shared<GradientLayer>();
    std::shared_ptr<View> arrow;
    std::shared_ptr<View> resultBox;
    std::shared_ptr<TextField> sourceLabel;
    std::shared_ptr<TextField> resultLabel;
};

Demo::Demo(View& page) {
    constexpr auto phraseColor = Color::system(SystemColor::secondaryLabel);
    const double sourceWidth = boxWidth(source);
    const double resultWidth = boxWidth(translation);
    const double rowWidth = sourceWidth + gap + keyWidth + gap + arrowWidth + gap + resultWidth;

    double x = (page.bounds().width - rowWidth) / 2;
    const auto sourceBox = box(x, sourceWidth);
    sourceLabel = labelIn(*sourceBox, "", phraseFont, phraseColor);

    x += sourceWidth + gap;
    keyCap = framed(x, keyWidth);
    keyGradient->setFrame(keyCap->bounds());
    keyGradient->setCornerRadius(6);
    keyGradient->setColors(keyColors(false));
    keyGradient->setStartPoint({0.5, 0});
    keyGradient->setEndPoint({0.5, 1});
    keyCap->layer()->addSublayer(keyGradient);
    labelIn(*keyCap, "Fn", keyFont, Color::white(0.7, 1));

    x += keyWidth + gap;
    arrow = std::make_shared<View>(Rect{x, rowBottom, arrowWidth, rowHeight});
    labelIn(*arrow, "→", Font::systemFont(12), Color::system(SystemColor::tertiaryLabel));

    x += arrowWidth + gap;
    resultBox = box(x, resultWidth);
    resultLabel = labelIn(*resultBox, "", phraseFont, phraseColor);

    for (const auto& hidden : {keyCap, arrow, resultBox})
        hidden->setAlphaValue(0);
    for (const auto& view : {sourceBox, keyCap, arrow, resultBox})
        page.addSubview(view);
}

void Demo::tick() {
    if (time < sourceLength)
        sourceLabel->setStringValue(text::prefix(source, static_cast<std::size_t>(time) + 1));
    else if (time == keyShown)
        fade({keyCap}, 1);
    else if (time == keyPressed)
        setKeyPressed(true, 100ms);
    else if (time == keyReleased)
        setKeyPressed(false, 150ms);
    else if (time == resultShown)
        fade({arrow, resultBox}, 1);
    else if (time >= resultTyped && time < resultTyped + translationLength)
        resultLabel->setStringValue(
            text::prefix(translation, static_cast<std::size_t>(time - resultTyped) + 1));
    else if (time == reset)
        startOver();
    ++time;
}

void Demo::startOver() {
    time = -1;
    sourceLabel->setStringValue("");
    resultLabel->setStringValue("");
    fade({keyCap, arrow, resultBox}, 0);
}

void Demo::setKeyPressed(bool isPressed, Duration duration) {
    const Transaction transaction(duration);
    keyCap->layer()->setTransform(isPressed ? Transform::makeScale(0.92, 0.92) : Transform::identity());
    keyGradient->setColors(keyColors(isPressed));
}

} // namespace

Timer startWelcomeDemo(View& page) {
    return Host::current().mainRunLoop().every(120ms,
                                               [demo = std::make_shared<Demo>(page)] { demo->tick(); });
}

} // namespace lumarin
