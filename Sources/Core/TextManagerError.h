#pragma once

#include "Core/LocalizedError.h"

namespace lumarin {

// What can go wrong with the text of the focused field.
class TextManagerError : public LocalizedError {
public:
    enum class Case { noFocusedElement, readFailed, writeFailed, emptyText };

    explicit TextManagerError(Case errorCase);

    std::string errorDescription() const override;

    const Case errorCase;
};

} // namespace lumarin
