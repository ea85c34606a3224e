#include "Platform/Desktop/Painting/SetText.h"

#include "Platform/Desktop/Painting/EmojiRanges.h"
#include "Platform/Foundation/Text.h"

#include <algorithm>
#include <string>

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>

namespace platform::desktop {
namespace {

// A line stays one line, whatever is in it.
QString singleLine(std::string_view text) {
    auto line = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    for (auto& unit : line)
        if (unit.category() == QChar::Other_Control || unit == QChar::LineSeparator
            || unit == QChar::ParagraphSeparator)
            unit = u' ';
    return line;
}

// The interface's fonts often have emoji in outline only.
QList<QTextLayout::FormatRange> formatsFor(const QString& line) {
    QTextCharFormat inColor;
    inColor.setFontFamilies(QStringList{QStringLiteral("emoji")});
    QList<QTextLayout::FormatRange> formats;
    for (const auto& range : emojiRanges(line))
        formats.push_back({static_cast<int>(range.start), static_cast<int>(range.length), inColor});
    return formats;
}

QFont::Weight weightOf(FontWeight weight) {
    switch (weight) {
    case FontWeight::medium:
        return QFont::Medium;
    case FontWeight::semibold:
        return QFont::DemiBold;
    case FontWeight::regular:
        break;
    }
    return QFont::Normal;
}

// Wider than any line.
constexpr double unlimited = 1e6;

} // namespace

QFont fontFor(const Font& font) {
    auto face = QGuiApplication::font();
    face.setPixelSize(qRound(font.size));
    face.setWeight(weightOf(font.weight));
    // Letters keep their shapes and distances at any scale, and their edges clear of colours on glass.
    face.setHintingPreference(QFont::PreferNoHinting);
    face.setStyleStrategy(
        static_cast<QFont::StyleStrategy>(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
    return face;
}

SetText::SetText(std::string_view text, const Font& font)
    : SetText(text, font, unlimited, QTextOption::NoWrap, Qt::AlignLeft) {}

SetText SetText::wrapped(std::string_view text, const Font& font, double width, TextAlignment alignment) {
    return {text, font, width, QTextOption::WordWrap,
            alignment == TextAlignment::center ? Qt::AlignHCenter : Qt::AlignLeft};
}

SetText::SetText(std::string_view text, const Font& font, double lineWidth, QTextOption::WrapMode wrapMode,
                 Qt::Alignment alignment)
    : width(lineWidth) {
    const auto line = singleLine(text);
    layout = std::make_unique<QTextLayout>(line, fontFor(font));
    layout->setFormats(formatsFor(line));
    // From its left end, also where it is read from the right.
    QTextOption option(alignment | Qt::AlignAbsolute);
    option.setTextDirection(line.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    option.setWrapMode(wrapMode);
    option.setUseDesignMetrics(true);
    layout->setTextOption(option);
    layout->beginLayout();
    // An empty text has no line.
    double top = 0;
    for (auto next = layout->createLine(); next.isValid(); next = layout->createLine()) {
        next.setLineWidth(width);
        next.setPosition({0, top});
        top += QFontMetricsF(layout->font()).height();
    }
    layout->endLayout();
}

SetText SetText::truncated(std::string_view text, const Font& font, double width) {
    // A long text is not set as a whole: its beginning tells that it is too long.
    std::size_t tooMany = 64;
    std::string beginning;
    for (bool fits = true; fits;) {
        tooMany *= 2;
        beginning = text::prefix(text, tooMany);
        SetText set(beginning, font);
        fits = set.size().width <= width;
        if (fits && beginning.size() == text.size())
            return set;
    }
    const auto shortened = [&](std::size_t characters) {
        return SetText(text::trimmed(text::prefix(beginning, characters)) + "…", font);
    };
    std::size_t fitting = 0;
    while (fitting + 1 < tooMany) {
        const auto middle = (fitting + tooMany) / 2;
        (shortened(middle).size().width <= width ? fitting : tooMany) = middle;
    }
    return shortened(fitting);
}

Size SetText::size() const {
    const double lineHeight = QFontMetricsF(layout->font()).height();
    if (width < unlimited)
        return {width, layout->lineCount() * lineHeight};
    return {layout->lineCount() ? layout->lineAt(0).horizontalAdvance() : 0, lineHeight};
}

double SetText::ascent() const {
    return QFontMetricsF(layout->font()).ascent();
}

void SetText::draw(QPainter& painter, const QPointF& start) const {
    if (layout->lineCount() == 0)
        return;
    layout->draw(&painter, start - QPointF(0, layout->lineAt(0).ascent()));
}

} // namespace platform::desktop
