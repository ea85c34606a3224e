#include "Platform/Desktop/Painting/SymbolDrawing.h"

#include "Platform/Foundation/FileManager.h"

#include <algorithm>

#include <QIconEngine>
#include <QPainter>
#include <QSvgRenderer>

namespace platform::desktop {

namespace {

class SymbolIcon : public QIconEngine {
public:
    explicit SymbolIcon(SymbolDrawing symbol) : drawing(std::move(symbol)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode, QIcon::State) override {
        drawing.paint(*painter, rect);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap result(size);
        result.fill(Qt::transparent);
        QPainter painter(&result);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return result;
    }

    // What is sent to a panel in another process.
    QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override {
        QList<QSize> sizes;
        for (int side : {16, 22, 24, 32, 48, 64})
            sizes.append({side, side});
        return sizes;
    }

    QIconEngine* clone() const override { return new SymbolIcon(drawing); }

private:
    const SymbolDrawing drawing;
};

} // namespace

SymbolDrawing::SymbolDrawing(const Bundle& bundle, const std::string& name, const QColor& color)
    : renderer(std::make_shared<QSvgRenderer>()) {
    const auto text = files::contents(bundle.path() / "Symbols" / (name + ".svg"));
    if (!text)
        return;
    auto drawing = QByteArray::fromStdString(*text);
    renderer->load(drawing.replace("currentColor", color.name().toUtf8()));
}

void SymbolDrawing::paint(QPainter& painter, const QRectF& rect) const {
    if (!renderer->isValid())
        return;
    const auto side = std::min(rect.width(), rect.height());
    QRectF square(0, 0, side, side);
    square.moveCenter(rect.center());
    renderer->render(&painter, square);
}

QIcon SymbolDrawing::icon() const {
    return QIcon(new SymbolIcon(*this));
}

} // namespace platform::desktop
