#pragma once

#include <optional>
#include <vector>

#include <QImage>
#include <QRect>

namespace platform::desktop {

// A window of the session's that shows pixels: above all others, on every workspace, and nothing to the
// keyboard and the pointer, which reaches what is below. On the display for as long as it lives. Main thread.
class Surface {
public:
    virtual ~Surface() = default;

    // `image` lies at `place` and differs from what was shown in `changed`, both in pixels of the display; of
    // it there is to be only `shape`, in pixels of the image, or the same as before. Comes up at the first
    // time, in front.
    virtual void show(const QRect& place, const QImage& image, const QRect& changed,
                      const std::optional<std::vector<QRect>>& shape) = 0;

    // Where a compositor that can is to blur what is behind, in pixels of the image.
    virtual void setBlurredRegion(const std::vector<QRect>& region) = 0;
};

} // namespace platform::desktop
