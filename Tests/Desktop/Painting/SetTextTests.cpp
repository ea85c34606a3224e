#include "Platform/Desktop/Painting/SetText.h"

#include "Desktop/OffscreenTest.h"
#include "Platform/Desktop/Painting/EmojiRanges.h"
#include "Platform/Foundation/Text.h"

#include <array>

#include <QImage>
#include <QPainter>

namespace platform::desktop {

void PrintTo(const TextRange& range, std::ostream* output) {
    *output << range.start << '+' << range.length;
}

bool operator==(const TextRange& one, const TextRange& other) {
    return one.start == other.start && one.length == other.length;
}

namespace {

constexpr auto font = Font::systemFont(14, FontWeight::medium);

class SetTextTest : public OffscreenTest {
protected:
    static QImage imageOf(const SetText& text) {
        QImage image(400, 40, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::black);
        QPainter painter(&image);
        painter.setPen(Qt::white);
        text.draw(painter, {10, 25});
        return image;
    }

    // How many pixels of those columns and rows are light.
    static int ink(const QImage& image, const QRect& part) {
        int pixels = 0;
        for (int y = part.top(); y <= part.bottom(); ++y)
            for (int x = part.left(); x <= part.right(); ++x)
                pixels += qGray(image.pixel(x, y)) > 60;
        return pixels;
    }
};

TEST_F(SetTextTest, KeepsAsManyCharactersAsHaveRoomBeforeTheEllipsis) {
    const std::string family = "👨‍👩‍👧‍👦";
    std::string families;
    std::string letters;
    for (int count = 0; count < 300; ++count) {
        families += family;
        letters += "il";
    }
    for (const std::string& text :
         {std::string("Could you tell me the price of this sample, and the minimum order?"), families,
          letters, std::string("您好，请问这款样品的报价是多少？最小起订量是500件吗？"),
          std::string("ééééééééééééééééééééééééééééééééééééé"),
          std::string("مرحبا، هل يمكنك إخباري بسعر هذه العينة؟ وهل الحد الأدنى للطلب")}) {
        const double width = 150;
        ASSERT_GT(SetText(text, font).size().width, width) << text;
        const auto shown = SetText::truncated(text, font, width);
        EXPECT_LE(shown.size().width, width) << text;
        std::size_t fitting = 0;
        const auto shortened = [&](std::size_t characters) {
            return SetText(text::trimmed(text::prefix(text, characters)) + "…", font);
        };
        while (shortened(fitting + 1).size().width <= width)
            ++fitting;
        EXPECT_GT(fitting, 3U) << text;
        EXPECT_TRUE(imageOf(shown) == imageOf(shortened(fitting))) << text;
    }
    EXPECT_TRUE(imageOf(SetText::truncated("short", font, 150)) == imageOf(SetText("short", font)));
    EXPECT_TRUE(imageOf(SetText::truncated("nowhere", font, 1)) == imageOf(SetText("…", font)));
}

TEST_F(SetTextTest, PutsTheEllipsisWhereTheTextIsReadLast) {
    const auto latin = SetText::truncated("Hello, could you tell me the price?", font, 100);
    const auto arabic = SetText::truncated("العينة، هل يمكنك إخباري بسعر هذه", font, 100);
    const auto isDots = [&](const QImage& image, double left) {
        const int x = static_cast<int>(left);
        return ink(image, {x, 22, 8, 5}) > 0 && ink(image, {x, 0, 8, 21}) == 0;
    };
    EXPECT_TRUE(isDots(imageOf(latin), 10 + latin.size().width - 9));
    EXPECT_FALSE(isDots(imageOf(latin), 11));
    EXPECT_TRUE(isDots(imageOf(arabic), 11));
    EXPECT_FALSE(isDots(imageOf(arabic), 10 + arabic.size().width - 9));
}

TEST_F(SetTextTest, IsMeasuredAsItIsDrawn) {
    for (const char* text :
         {"Hello", "您好こんにちは안녕", "مرحبا", "Привет", "😀👩‍💻🇩🇪❤️"}) {
        const SetText set(text, font);
        const auto image = imageOf(set);
        const int end = 10 + static_cast<int>(std::ceil(set.size().width));
        EXPECT_GT(ink(image, {10, 0, end - 10, 40}), 20) << text;
        EXPECT_EQ(ink(image, {0, 0, 8, 40}) + ink(image, {end + 2, 0, 398 - end, 40}), 0) << text;
    }
    // One line, whatever is in it; and a space at the end counts, as more text follows it.
    EXPECT_EQ(SetText("one\ntwo\r\tthree", font).size(), SetText("one two  three", font).size());
    EXPECT_GT(SetText("one ", font).size().width, SetText("one", font).size().width + 2);
    EXPECT_EQ(SetText("", font).size(), (Size{0, SetText("one", font).size().height}));
    EXPECT_GE(SetText("", font).size().height, 14);
}

TEST_F(SetTextTest, ShowsEmojiInColor) {
    for (const char* text : {"😀", "❤️", "⭐", "👩‍💻"}) {
        const auto image = imageOf(SetText(text, font));
        int colored = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                colored += qRed(image.pixel(x, y)) > qBlue(image.pixel(x, y)) + 40;
        EXPECT_GT(colored, 20) << text;
    }
    // One picture, not several side by side.
    const double one = SetText("😀", font).size().width;
    for (const char* text : {"👩‍💻", "🇩🇪", "👍🏽"})
        EXPECT_NEAR(SetText(text, font).size().width, one, 1) << text;
}

TEST(EmojiRanges, AreWholePictures) {
    struct Case {
        QString text;
        std::vector<TextRange> ranges;
    };
    for (const auto& [text, ranges] : std::to_array<Case>({
             {QStringLiteral("Hello 1 # ©"), {}},
             {QStringLiteral("a😀b"), {{1, 2}}},
             {QStringLiteral("😀 👩‍💻"), {{0, 2}, {3, 5}}},
             {QStringLiteral("👍🏽🇩🇪"), {{0, 8}}},
             {QStringLiteral("❤ ❤️ ⭐ ⭐︎"), {{2, 2}, {5, 1}}},
             {QStringLiteral("你好✅"), {{2, 1}}},
         }))
        EXPECT_EQ(emojiRanges(text), ranges) << text.toStdString();
}

} // namespace
} // namespace platform::desktop
