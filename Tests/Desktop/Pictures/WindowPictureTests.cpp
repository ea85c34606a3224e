#include "Platform/Desktop/Pictures/WindowPicture.h"

#include "Desktop/OffscreenTest.h"
#include "Platform/Desktop/Painting/SolidSpans.h"

#include <array>
#include <cmath>

#include <QPainter>

namespace platform::desktop {
namespace {

constexpr auto purple = Color::calibrated(0.58, 0.48, 0.98, 1);

LayerPresentation layerAt(const Rect& frame) {
    LayerPresentation layer;
    layer.position = {frame.midX(), frame.midY()};
    layer.size = frame.size();
    return layer;
}

// A capsule of dark glass in a window without a background of its own, with a glow and a line of text.
LayerPresentation pill(const Rect& frame, const std::string& text = "Hello") {
    auto body = layerAt({0, 0, frame.width, frame.height});
    body.cornerRadius = frame.height / 2;
    body.masksToBounds = true;
    body.borderWidth = 0.5;
    body.borderColor = Color::white(1, 0.06);
    body.drawing.effect = VisualEffect{VisualEffect::Material::hudWindow};
    auto glow = layerAt({0, 0, frame.width, frame.height});
    glow.cornerRadius = body.cornerRadius;
    glow.colors = {purple.withAlphaComponent(0.18), purple.withAlphaComponent(0.06), Color::clear()};
    glow.startPoint = {0, 0.5};
    glow.endPoint = {1, 0.5};
    auto label = layerAt({16, 0, frame.width - 32, frame.height});
    label.drawing.lines.push_back({text,
                                   Font::systemFont(14, FontWeight::medium),
                                   Color::white(1, 0.9),
                                   {0, 13, frame.width - 32, 17},
                                   TextAlignment::center,
                                   LineBreakMode::truncatingTail});
    body.sublayers = {glow, label};
    auto window = layerAt(frame);
    window.sublayers = {body};
    return window;
}

class WindowPictureTest : public OffscreenTest {
protected:
    void paint(const LayerPresentation& window, double scale = 1, Backdrop backdrop = Backdrop::plain) {
        picture.paint(window, true, {{scale, scale}, {0, 600 * scale}}, backdrop);
    }

    // In points from the window's lower left corner, whatever the scale.
    QRgb at(const LayerPresentation& window, double x, double y, double scale = 1) const {
        const auto frame = window.frame();
        return picture.image().pixel(QPoint(static_cast<int>(std::floor((frame.x + x) * scale)),
                                            static_cast<int>(std::floor((600 - frame.y - y) * scale)))
                                     - picture.place().topLeft());
    }

    // Around all that is not transparent, in the pixels of the display.
    QRect shape() const {
        QRect all;
        for (const auto& span : solidSpans(picture.image(), 128))
            all |= span;
        return all.translated(picture.place().topLeft());
    }

    WindowPicture picture;
};

// The window is 200 points wide and 44 high, so the upper left corner's arc goes around (22, 22).
TEST_F(WindowPictureTest, IsACapsuleOfDenseGlassWithAShadowThatFadesOut) {
    const auto window = pill({100, 300, 200, 44}, "");
    for (const double scale : {1.0, 1.25, 2.0}) {
        paint(window, scale);
        const auto alpha = [&](double x, double y) { return qAlpha(at(window, x, y, scale)); };
        // Read on whatever is behind, and nowhere thinner than where the glow is all but gone.
        for (const double x : {3.0, 100.0, 197.0})
            EXPECT_GE(alpha(x, 22), 230) << x << " at " << scale;
        // In the corner there is shadow only, just inside the arc there is glass.
        EXPECT_LT(alpha(2, 42), 128) << scale;
        EXPECT_GE(alpha(22 - 14.5, 22 + 14.5), 230) << scale;
        EXPECT_LT(alpha(22 - 17, 22 + 17), 128) << scale;
        int last = alpha(100, -1);
        EXPECT_GT(last, 40) << scale;
        for (int below = 2; below < 32; ++below) {
            // It is rounded up and down by turns.
            EXPECT_LE(alpha(100, -below), last + 1) << below << " at " << scale;
            last = alpha(100, -below);
        }
        EXPECT_LE(last, 1) << scale;
        // The edges of the picture cut nothing off.
        const auto& image = picture.image();
        for (int x = 0; x < image.width(); ++x)
            ASSERT_EQ(qAlpha(image.pixel(x, 0)) + qAlpha(image.pixel(x, image.height() - 1)), 0) << scale;
    }
}

TEST_F(WindowPictureTest, WithoutABackdropIsOpaqueAndHasNoShadow) {
    const auto window = pill({100, 300, 200, 44}, "");
    paint(window, 1, Backdrop::none);
    const auto& image = picture.image();
    int partly = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            partly += qAlpha(image.pixel(x, y)) % 255 != 0;
    // The edges of the two ends.
    EXPECT_LT(partly, 200);
    EXPECT_EQ(qAlpha(at(window, 100, 22)), 255);
    EXPECT_EQ(qAlpha(at(window, 100, -1)), 0);

    // Its shape is as wide as the window in the middle, and less at the top.
    EXPECT_EQ(shape(), QRect(100, 600 - 344, 200, 44));
    EXPECT_LT(solidSpans(image, 128).front().width(), 180);
}

TEST_F(WindowPictureTest, PaintsOnlyWhatIsNewAndThatRight) {
    const auto expectRight = [&](const LayerPresentation& window, const char* name) {
        WindowPicture anew;
        anew.paint(window, true, {{1, 1}, {0, 600}}, Backdrop::plain);
        const auto common = anew.place() & picture.place();
        EXPECT_EQ(common, anew.place()) << name;
        EXPECT_TRUE(picture.image().copy(common.translated(-picture.place().topLeft())) == anew.image())
            << name;
    };
    auto window = pill({100, 300, 200, 44});
    paint(window);
    EXPECT_EQ(picture.changed(), picture.place());

    window.sublayers[0].sublayers[0].opacity = 0.4;
    window.sublayers[0].sublayers[1].drawing.lines[0].text = "Hello, could you tell me";
    paint(window);
    EXPECT_EQ(picture.changed(), QRect(100, 600 - 344, 200, 44));
    expectRight(window, "content");

    window = pill({60, 300, 280, 44});
    paint(window);
    EXPECT_EQ(picture.changed(), picture.place());
    expectRight(window, "wider");

    window = pill({130.5, 300, 140, 44});
    paint(window);
    expectRight(window, "narrower, between pixels");

    window.sublayers[0].transform =
        Transform::concat(Transform::makeScale(0.8, 0.8), Transform::makeTranslation(3, -8));
    paint(window);
    expectRight(window, "transformed");
}

TEST_F(WindowPictureTest, ScalesAndMovesAboutTheMiddle) {
    auto window = pill({100, 300, 200, 40}, "");
    window.sublayers[0].transform =
        Transform::concat(Transform::makeScale(0.5, 0.5), Transform::makeTranslation(10, 100));
    paint(window, 2, Backdrop::none);
    // From (150, 310) to (250, 330) in points, moved by (10, 100), in pixels from the top.
    EXPECT_EQ(shape(), QRect(320, 1200 - 860, 200, 40));
}

TEST_F(WindowPictureTest, FadesALayerAsAWhole) {
    // Two that lie on one another let through as much as one.
    auto window = layerAt({100, 300, 40, 40});
    auto group = layerAt({0, 0, 40, 40});
    auto one = layerAt({0, 0, 30, 40});
    one.backgroundColor = Color::white(1, 1);
    auto other = layerAt({10, 0, 30, 40});
    other.backgroundColor = Color::white(1, 1);
    group.sublayers = {one, other};
    group.opacity = 0.5;
    window.sublayers = {group};
    picture.paint(window, false, {{1, 1}, {0, 600}}, Backdrop::plain);
    for (const double x : {5.0, 20.0, 35.0})
        EXPECT_NEAR(qAlpha(at(window, x, 20)), 128, 1) << x;
}

TEST_F(WindowPictureTest, ShowsGradientsWithoutSteps) {
    auto window = layerAt({0, 300, 560, 48});
    auto glow = layerAt({0, 0, 560, 48});
    glow.colors = {purple.withAlphaComponent(0.18), purple.withAlphaComponent(0.06), Color::clear()};
    glow.locations = {0, 0.4, 1};
    glow.startPoint = {0, 0.5};
    glow.endPoint = {1, 0.5};
    window.sublayers = {glow};
    picture.paint(window, false, {{1, 1}, {0, 600}}, Backdrop::plain);
    for (int left = 0; left < 560; left += 8) {
        double sum = 0;
        for (int x = left; x < left + 8; ++x)
            for (int y = 0; y < 8; ++y)
                sum += qBlue(picture.image().pixel(QPoint(x, 252 + y) - picture.place().topLeft()));
        const double place = (left + 4) / 560.0;
        const double alpha = place < 0.4 ? 0.18 - 0.12 * place / 0.4 : 0.06 * (1 - place) / 0.6;
        // Rounded alike, whole blocks would be off by up to 0.5.
        EXPECT_NEAR(sum / 64, 255 * 0.98 * alpha, 0.15) << left;
    }
}

TEST_F(WindowPictureTest, HasItsTextInTheMiddleAndClearOfTheEnds) {
    // The columns with letters in them, from the left end.
    const auto columns = [&](const std::string& text) {
        const auto window = pill({100, 300, 240, 44}, text);
        paint(window);
        std::vector<int> result;
        for (int x = 2; x < 238; ++x)
            for (int y = 2; y < 42 && (result.empty() || result.back() != x); ++y)
                if (qRed(at(window, x, y)) > 140)
                    result.push_back(x);
        return result;
    };
    for (const char* text : {"Hello, could you tell me the price of this sample, please?",
                             "您好，请问这款样品的报价是多少？最小起订量是500件吗？",
                             "مرحبا، هل يمكنك إخباري بسعر هذه العينة؟ وهل الحد الأدنى للطلب"}) {
        const auto inked = columns(text);
        EXPECT_GE(inked.front(), 16) << text;
        EXPECT_LT(inked.back(), 225) << text;
        EXPECT_GT(inked.size(), 100U) << text;
    }
    const auto inked = columns("HHHH");
    EXPECT_GT(inked.back(), inked.front() + 20);
    EXPECT_NEAR((inked.front() + inked.back() + 1) / 2.0, 120, 1.5);
}

} // namespace
} // namespace platform::desktop
