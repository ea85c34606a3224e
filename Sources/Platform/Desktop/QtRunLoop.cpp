#include "Platform/Desktop/QtRunLoop.h"

#include <QCoreApplication>
#include <QEvent>
#include <QThread>
#include <QTimer>

namespace platform::desktop {

// Where the event loop reaches the run loop: by an event at once, by a timer at a later moment.
class QtRunLoop::Waker : public QObject {
public:
    explicit Waker(QtRunLoop& runLoop) : loop(runLoop) {
        timer.setSingleShot(true);
        timer.setTimerType(Qt::PreciseTimer);
        connect(&timer, &QTimer::timeout, this, [this] { loop.runNext(); });
    }

    void wake() { QCoreApplication::postEvent(this, new QEvent(QEvent::User)); }
    void startTimer(std::chrono::steady_clock::duration delay) {
        timer.start(std::chrono::ceil<std::chrono::milliseconds>(delay));
    }

    bool event(QEvent* occurred) override {
        if (occurred->type() != QEvent::User)
            return QObject::event(occurred);
        loop.runNext();
        return true;
    }

    QTimer timer;

private:
    QtRunLoop& loop;
};

QtRunLoop::QtRunLoop() : waker(std::make_unique<Waker>(*this)) {}

QtRunLoop::~QtRunLoop() = default;

void QtRunLoop::post(std::function<void()> work) {
    postAfter(Duration::zero(), std::move(work));
}

void QtRunLoop::postAfter(Duration delay, std::function<void()> work) {
    std::lock_guard lock(mutex);
    auto due = std::chrono::steady_clock::now() + std::chrono::duration_cast<Moment::duration>(delay);
    auto place = queue.emplace(due, std::move(work));
    if (place != queue.begin() || isWoken)
        return;
    // Sparing the loop a turn where that can be.
    if (delay > Duration::zero() && QThread::currentThread() == waker->thread()) {
        waker->startTimer(delay);
    } else {
        isWoken = true;
        waker->wake();
    }
}

Duration QtRunLoop::now() const {
    return std::chrono::steady_clock::now().time_since_epoch();
}

std::chrono::system_clock::time_point QtRunLoop::date() const {
    return std::chrono::system_clock::now();
}

void QtRunLoop::runNext() {
    std::function<void()> work;
    {
        std::lock_guard lock(mutex);
        isWoken = false;
        auto now = std::chrono::steady_clock::now();
        if (!queue.empty() && queue.begin()->first <= now) {
            work = std::move(queue.begin()->second);
            queue.erase(queue.begin());
        }
        // What follows is arranged for first: the work may run an event loop of its own, which goes on here.
        if (queue.empty()) {
            waker->timer.stop();
        } else if (queue.begin()->first <= now) {
            isWoken = true;
            waker->wake();
        } else {
            waker->startTimer(queue.begin()->first - now);
        }
    }
    if (work)
        work();
}

} // namespace platform::desktop
