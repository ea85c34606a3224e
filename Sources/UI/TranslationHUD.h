#pragma once

#include "Platform/Foundation/Timer.h"
#include "UI/Pill.h"

#include <optional>
#include <string>

namespace lumarin {

// The floating pill that shows how a translation comes along. It stays until it is dismissed, and lets go of
// a pill that fades away, so that the next one may stand beside it. Main thread.
class TranslationHUD {
public:
    // Brings in an empty pill, waiting; the original text is in the field for the person to see.
    void show(const std::string& originalText);
    // Shows the translation so far, in a pill of its width.
    void update(const std::string& text);
    void showDone();
    // In the pill there is, as wide as it is, or else in one of the message's width; a message that it has no
    // room for is told by the desktop besides.
    void showError(const std::string& message);
    void dismiss();

private:
    void bringIn(double width);
    void showFirstText();
    void sweepAndPulse();

    void startBreathing();
    void startShimmer();
    void startCursorBlink();
    void stopBreathing() { pulseTimer = {}; }
    void stopShimmer();

    std::optional<Pill> pill;
    platform::Timer pulseTimer;
};

} // namespace lumarin
