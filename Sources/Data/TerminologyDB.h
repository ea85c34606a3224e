#pragma once

#include "Data/TermIndex.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace lumarin {

// The glossary of trade terms: the built-in ones and the user's own, which replace built-in ones of the same
// Chinese form. The user's file is read once, when the glossary is made. Terms may be sought from any thread,
// but not while they are changed.
class TerminologyDB {
public:
    TerminologyDB();
    TerminologyDB(const TerminologyDB&) = delete;
    TerminologyDB& operator=(const TerminologyDB&) = delete;

    // Every known term that stands in the text.
    TermDictionary findRelevantTerms(std::string_view text) const;

    // Change the user's file, as it is now, and the memory with it. Throw std::exception and change nothing
    // when the file cannot be read as a glossary or cannot be written.
    void addCustomTerm(const std::string& chinese, const std::string& english);
    void removeCustomTerm(const std::string& chinese);

    const TermDictionary& allTerms() const { return mergedTerms; }

private:
    void loadBuiltinTerms();
    void loadCustomTerms();
    void merge();
    template <typename Change>
    void changeCustomTerms(Change change);

    TermDictionary builtinTerms;
    TermDictionary customTerms;
    const std::filesystem::path customTermsPath;
    TermDictionary mergedTerms;
    TermIndex index;
};

} // namespace lumarin
