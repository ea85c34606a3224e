#include "Core/TextManagerError.h"

#include "Core/LocalizationManager.h"

namespace lumarin {
namespace {

ErrorWording wordingOf(TextManagerError::Case errorCase) {
    switch (errorCase) {
    case TextManagerError::Case::noFocusedElement:
        return {"noFocusedElement", "error.no_input_field"};
    case TextManagerError::Case::readFailed:
        return {"readFailed", "error.read_failed"};
    case TextManagerError::Case::writeFailed:
        return {"writeFailed", "error.write_failed"};
    case TextManagerError::Case::emptyText:
        return {"emptyText", "error.empty_text"};
    }
    return {};
}

} // namespace

TextManagerError::TextManagerError(Case which) : LocalizedError(wordingOf(which).name), errorCase(which) {}

std::string TextManagerError::errorDescription() const {
    return localized(wordingOf(errorCase).key);
}

} // namespace lumarin
