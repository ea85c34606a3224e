#pragma once

#include "Platform/Kit/View.h"

namespace platform {

// A view that tells by a small turning wheel that something is under way for as long as it is started. Main
// thread.
class ProgressIndicator : public View {
public:
    explicit ProgressIndicator(const Rect& frame);

    void startAnimation();
    void stopAnimation();
};

} // namespace platform
