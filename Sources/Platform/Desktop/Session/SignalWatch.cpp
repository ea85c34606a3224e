#include "Platform/Desktop/Session/SignalWatch.h"

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

#include <QSocketNotifier>

namespace platform::desktop {

SignalWatch::SignalWatch(std::initializer_list<int> numbers) {
    sigset_t signals;
    sigemptyset(&signals);
    for (int number : numbers)
        sigaddset(&signals, number);
    // Every thread inherits this, so the signals reach the file alone.
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    file = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
}

SignalWatch::~SignalWatch() {
    notifier.reset();
    close(file);
}

void SignalWatch::report(std::function<void()> action) {
    notifier = std::make_unique<QSocketNotifier>(file, QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, [this, action = std::move(action)] {
        signalfd_siginfo received;
        if (read(file, &received, sizeof received) == sizeof received)
            action();
    });
}

} // namespace platform::desktop
