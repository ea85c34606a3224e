#include "Core/TextManagerError.h"

#include "Core/LocalizationManager.h"

namespace lumarin {
namespace {

struct Description {
    const char* name;
    const char* key;
};

Description describe(TextManagerError::Case errorCase) {
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

TextManagerError::TextManagerError(Case which) : LocalizedError(describe(which).name), errorCase(which) {}

std::string TextManagerError::errorDescription() const {
    return LocalizationManager::shared().localized(describe(errorCase).key);
}

} // namespace lumarin
