#pragma once

#include "Platform/Kit/View.h"

namespace platform {

// A small wheel that turns, once it is started, to tell that something is under way. Main thread.
class ProgressIndicator : public View {
public:
    explicit ProgressIndicator(const Rect& frame);

    void startAnimation();
};

} // namespace platform
