#include "Platform/Desktop/Windows/TitledWindow.h"

#include "Platform/Desktop/Painting/ColorOf.h"
#include "Platform/Desktop/Pictures/LayerChanges.h"
#include "Platform/Desktop/Windows/ApplicationIcon.h"
#include "Platform/Desktop/Windows/FrameTime.h"

#include <algorithm>
#include <utility>

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QWindow>

namespace platform::desktop {
namespace {

// A window that keeps its size is a dialog to window managers, which put no more into its frame than it
// needs.
Qt::WindowFlags flagsFor(Window::StyleMask style) {
    const Qt::WindowFlags flags =
        Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint;
    return contains(style, Window::StyleMask::closable) ? flags | Qt::WindowCloseButtonHint : flags;
}

// Where the window is on the monitor, as Qt counts: the corner in pixels, and points from there.
QPoint placeOn(const Monitor& monitor, const Rect& frame) {
    return monitor.pixels.topLeft()
           + QPointF(frame.x - monitor.screen.frame.x, monitor.screen.frame.maxY() - frame.maxY()).toPoint();
}

} // namespace

TitledWindow::TitledWindow(Window& window, const RunLoop& clock, const Bundle& bundle, const Monitor* monitor)
    : QDialog(nullptr, flagsFor(window.styleMask)), model(window), time(clock), controls(*this, bundle) {
    setWindowTitle(QString::fromStdString(window.title));
    setWindowIcon(applicationIcon(bundle));
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
    shown = model.presentation(time.now());
    show();
}

void TitledWindow::requestFrame(Duration notBefore) {
    const auto next = std::max({time.now(), lastFrame + frameTime, notBefore});
    if (due && *due <= next)
        return;
    due = next;
    timer.start(std::chrono::ceil<std::chrono::milliseconds>(next - time.now()));
}

PixelGrid TitledWindow::grid() const {
    const double scale = devicePixelRatioF();
    return {{scale, scale}, {0, height() * scale}};
}

// Widgets may not come and go while they are painted.
void TitledWindow::prepareFrame() {
    due.reset();
    isBehind = !windowHandle() || !windowHandle()->isExposed();
    if (isBehind)
        return;
    lastFrame = time.now();
    controls.adapt(*model.contentView());
    const auto before = std::exchange(shown, model.presentation(lastFrame));
    const double scale = devicePixelRatioF();
    QRectF area;
    if (before.backgroundColor != shown.backgroundColor)
        area = QRectF(QPointF(), QSizeF(size()) * scale);
    else if (!before.sublayers.empty())
        area = changedArea(before.sublayers.front(), shown.sublayers.front(), grid());
    update(QRectF(area.topLeft() / scale, area.size() / scale).toAlignedRect());
    if (const auto next = model.nextChange(lastFrame))
        requestFrame(*next);
}

// Also for a button that the pointer has come over, whose look is the widget's.
void TitledWindow::paintEvent(QPaintEvent* event) {
    const double scale = devicePixelRatioF();
    const QRectF dirty = event->rect();
    const auto area = QRectF(dirty.topLeft() * scale, dirty.size() * scale).toAlignedRect();
    QImage picture(area.size(), QImage::Format_ARGB32_Premultiplied);
    picture.fill(colorOf(shown.backgroundColor));
    for (const auto& layer : shown.sublayers)
        layers.paint(layer, picture, area.topLeft(), grid(), scale, Backdrop::none);
    picture.setDevicePixelRatio(scale);
    QPainter(this).drawImage(QPointF(area.topLeft()) / scale, picture);
    if (isBehind)
        requestFrame();
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
    QDialog::changeEvent(event);
}

} // namespace platform::desktop
