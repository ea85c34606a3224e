#include "Platform/Desktop/SetText.h"

#include "Platform/Desktop/EmojiRanges.h"
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

} // namespace

QFont fontFor(const Font& font) {
    auto face = QGuiApplication::font();
    face.setPixelSize(qRound(font.size));
    face.setWeight(font.weight == FontWeight::medium ? QFont::Medium : QFont::Normal);
    // Letters keep their shapes and distances at any scale, and their edges clear of colours on glass.
    face.setHintingPreference(QFont::PreferNoHinting);
    face.setStyleStrategy(
        static_cast<QFont::StyleStrategy>(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
    return face;
}

SetText::SetText(std::string_view text, const Font& font) {
    const auto line = singleLine(text);
    layout = std::make_unique<QTextLayout>(line, fontFor(font));
    layout->setFormats(formatsFor(line));
    // From its left end, also where it is read from the right.
    QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
    option.setTextDirection(line.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    option.setWrapMode(QTextOption::NoWrap);
    option.setUseDesignMetrics(true);
    layout->setTextOption(option);
    layout->beginLayout();
    // An empty text has no line.
    if (auto only = layout->createLine(); only.isValid())
        only.setLineWidth(1e6);
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
    const double advance = layout->lineCount() ? layout->lineAt(0).horizontalAdvance() : 0;
    return {advance, QFontMetricsF(layout->font()).height()};
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
