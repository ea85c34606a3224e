#include "Data/TerminologyDB.h"

#include "Data/BuiltinTerms.h"
#include "Data/DataDirectory.h"
#include "Platform/Foundation/FileManager.h"
#include "Platform/Foundation/Json.h"

#include <stdexcept>

namespace lumarin {

namespace files = platform::files;

TerminologyDB::TerminologyDB() : customTermsPath(createDataDirectory() / "custom-terms.json") {
    loadBuiltinTerms();
    loadCustomTerms();
    merge();
}

TermDictionary TerminologyDB::findRelevantTerms(std::string_view text) const {
    return index.termsIn(text);
}

void TerminologyDB::addCustomTerm(const std::string& chinese, const std::string& english) {
    changeCustomTerms([&](TermDictionary& terms) { terms.insert_or_assign(chinese, english); });
}

void TerminologyDB::removeCustomTerm(const std::string& chinese) {
    changeCustomTerms([&](TermDictionary& terms) { terms.erase(chinese); });
}

void TerminologyDB::loadBuiltinTerms() {
    for (const auto& term : lumarin::builtinTerms)
        builtinTerms.emplace(term.chinese, term.english);
}

void TerminologyDB::loadCustomTerms() {
    if (auto bytes = files::contents(customTermsPath))
        customTerms = platform::decodeStringDictionary(*bytes).value_or(TermDictionary());
}

void TerminologyDB::merge() {
    mergedTerms = customTerms;
    mergedTerms.insert(builtinTerms.begin(), builtinTerms.end());
    index = TermIndex(mergedTerms);
}

template <typename Change>
void TerminologyDB::changeCustomTerms(Change change) {
    TermDictionary terms;
    auto file = files::read(customTermsPath);
    if (file.status != files::ReadStatus::missing) {
        auto decoded = file.status == files::ReadStatus::read ? platform::decodeStringDictionary(file.bytes)
                                                              : std::nullopt;
        if (!decoded)
            throw std::runtime_error("The glossary " + customTermsPath.string()
                                     + " cannot be read, so it is left as it is.");
        terms = std::move(*decoded);
    }
    change(terms);
    files::writeAtomically(customTermsPath, platform::encodeStringDictionary(terms));
    customTerms = std::move(terms);
    merge();
}

} // namespace lumarin
