#include "Platform/Desktop/TitledWindow.h"

#include "Platform/Desktop/ColorOf.h"

#include <algorithm>

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QWindow>

namespace platform::desktop {
namespace {

constexpr Duration frameTime = std::chrono::duration_cast<Duration>(std::chrono::duration<double>(1.0 / 60));

Qt::WindowFlags flagsFor(Window::StyleMask style) {
    const Qt::WindowFlags flags =
        Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint;
    return contains(style, Window::StyleMask::closable) ? flags | Qt::WindowCloseButtonHint : flags;
}

// Where the window is on the monitor, as Qt counts: the corner in pixels, and points from there.
QPoint placeOn(const Monitor& monitor, const Rect& frame) {
    return monitor.pixels.topLeft()
           + QPointF(frame.x - monitor.screen.frame.x, monitor.screen.frame.maxY() - frame.maxY()).toPoint();
}

} // namespace

TitledWindow::TitledWindow(Window& window, const RunLoop& clock, const Bundle& bundle, const Monitor* monitor)
    : QWidget(nullptr, flagsFor(window.styleMask)), model(window), time(clock), controls(*this, bundle) {
    setWindowTitle(QString::fromStdString(window.title));
    const auto frame = window.frame();
    setFixedSize(QSizeF(frame.width, frame.height).toSize());
    if (monitor)
        setGeometry(QRect(placeOn(*monitor, frame), size()));
    // The picture covers all of it.
    setAttribute(Qt::WA_OpaquePaintEvent);
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    connect(&timer, &QTimer::timeout, this, [this] { prepareFrame(); });
    controls.adapt(*model.contentView());
    show();
}

void TitledWindow::requestFrame(Duration notBefore) {
    const auto next = std::max({time.now(), lastFrame + frameTime, notBefore});
    if (due && *due <= next)
        return;
    due = next;
    timer.start(std::chrono::ceil<std::chrono::milliseconds>(next - time.now()));
}

// Widgets may not come and go while they are painted.
void TitledWindow::prepareFrame() {
    due.reset();
    // One that cannot be seen is painted when it is shown again.
    if (!windowHandle() || !windowHandle()->isExposed())
        return;
    controls.adapt(*model.contentView());
    update();
}

void TitledWindow::paintEvent(QPaintEvent*) {
    lastFrame = time.now();
    const auto shown = model.presentation(lastFrame);
    const double scale = devicePixelRatioF();
    QImage picture((QSizeF(size()) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    picture.fill(colorOf(shown.backgroundColor));
    const PixelGrid grid{{scale, scale}, {0, height() * scale}};
    for (const auto& layer : shown.sublayers)
        layers.paint(layer, picture, {0, 0}, grid, scale, Backdrop::none);
    picture.setDevicePixelRatio(scale);
    QPainter(this).drawImage(0, 0, picture);
    if (const auto next = model.nextChange(lastFrame))
        requestFrame(*next);
}

void TitledWindow::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isReturn || event->isAutoRepeat() || !model.performKeyEquivalent("\r"))
        event->ignore();
}

void TitledWindow::closeEvent(QCloseEvent*) {
    model.close();
}

void TitledWindow::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange)
        requestFrame();
    QWidget::changeEvent(event);
}

} // namespace platform::desktop
