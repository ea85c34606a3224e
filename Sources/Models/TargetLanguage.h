#pragma once

#include "Models/RawValue.h"

namespace lumarin {

// The language translated into.
enum class TargetLanguage {
    english,
    chinese,
    japanese,
    korean,
    french,
    spanish,
    german,
    russian,
    arabic,
    portuguese,
};

template <>
struct RawValues<TargetLanguage> {
    static constexpr auto texts =
        std::to_array<std::string_view>({"english", "chinese", "japanese", "korean", "french", "spanish",
                                         "german", "russian", "arabic", "portuguese"});
};

// Two upper-case letters, as the service wants them.
constexpr std::string_view code(TargetLanguage language) {
    constexpr auto codes =
        std::to_array<std::string_view>({"EN", "ZH", "JA", "KO", "FR", "ES", "DE", "RU", "AR", "PT"});
    return codes[static_cast<std::size_t>(language)];
}

// The name by which a language model is told the language.
constexpr std::string_view englishName(TargetLanguage language) {
    constexpr auto names =
        std::to_array<std::string_view>({"English", "Simplified Chinese", "Japanese", "Korean", "French",
                                         "Spanish", "German", "Russian", "Arabic", "Portuguese"});
    return names[static_cast<std::size_t>(language)];
}

// Which client translates: one request with a whole result, or the streaming one.
enum class TranslationMode { free, ai };

template <>
struct RawValues<TranslationMode> {
    static constexpr auto texts = std::to_array<std::string_view>({"free", "ai"});
};

} // namespace lumarin
