#pragma once

#include "Platform/Desktop/Pictures/LayerPainter.h"
#include "Platform/Desktop/Windows/Monitor.h"
#include "Platform/Desktop/Windows/NativeControls.h"
#include "Platform/Foundation/RunLoop.h"
#include "Platform/Kit/Window.h"

#include <QDialog>
#include <QTimer>

namespace platform::desktop {

// A window in the window manager's frame, on the display for as long as it lives. A frame is drawn when
// something has changed and while something moves. Main thread.
class TitledWindow : public QDialog {
public:
    TitledWindow(Window& window, const RunLoop& clock, const Bundle& bundle, const Monitor* monitor);

    // At the next opportunity.
    void requestFrame(Duration notBefore = {});

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    PixelGrid grid() const;
    void prepareFrame();

    Window& model;
    const RunLoop& time;
    NativeControls controls;
    LayerPainter layers{&controls};
    QTimer timer;
    LayerPresentation shown;
    // What has changed while the window could not be seen comes when it can.
    bool isBehind = false;
    Duration lastFrame{};
    std::optional<Duration> due;
};

} // namespace platform::desktop
