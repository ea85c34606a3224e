#include "UI/TranslationHUD.h"

namespace lumarin {

// The pill is not drawn yet.

void TranslationHUD::show(const std::string&) {}

void TranslationHUD::update(const std::string&) {}

void TranslationHUD::showDone() {}

void TranslationHUD::showError(const std::string&) {}

void TranslationHUD::dismiss() {}

} // namespace lumarin
