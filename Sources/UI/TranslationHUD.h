#pragma once

#include <string>

namespace lumarin {

// The floating pill that shows how a translation comes along. Main thread.
class TranslationHUD {
public:
    void show(const std::string& originalText);
    void update(const std::string& text);
    void showDone();
    void showError(const std::string& message);
    void dismiss();
};

} // namespace lumarin
