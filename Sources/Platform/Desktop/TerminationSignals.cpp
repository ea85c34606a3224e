#include "Platform/Desktop/TerminationSignals.h"

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

#include <QSocketNotifier>

namespace platform::desktop {

TerminationSignals::TerminationSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (int number : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&signals, number);
    // Every thread inherits this, so the signals reach the file alone.
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    file = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
}

TerminationSignals::~TerminationSignals() {
    notifier.reset();
    close(file);
}

void TerminationSignals::report(std::function<void()> action) {
    notifier = std::make_unique<QSocketNotifier>(file, QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, [this, action = std::move(action)] {
        signalfd_siginfo received;
        if (read(file, &received, sizeof received) == sizeof received)
            action();
    });
}

} // namespace platform::desktop
