#include "Platform/Updates/UpdateProgress.h"

#include "Platform/Host.h"

namespace platform {

UpdateProgress::UpdateProgress(Alert alert, Duration delay, std::function<void()> onCancel) {
    auto show = [weak = std::weak_ptr(shown), alert = std::move(alert), onCancel = std::move(onCancel)] {
        if (auto waiting = weak.lock()) {
            Host::current().activate();
            waiting->window = Host::current().alerts().showProgress(alert, onCancel);
        }
    };
    if (delay == Duration::zero())
        show();
    else
        Host::current().mainRunLoop().postAfter(delay, std::move(show));
}

std::function<void(double)> UpdateProgress::fractionSetter() const {
    return [weak = std::weak_ptr(shown)](double fraction) {
        if (auto waiting = weak.lock(); waiting && waiting->window)
            waiting->window->setFraction(fraction);
    };
}

} // namespace platform
