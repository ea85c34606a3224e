#pragma once

#include <exception>
#include <string>
#include <utility>

namespace lumarin {

// An error of the program's own. `what` is its printed form, for the log.
class LocalizedError : public std::exception {
public:
    explicit LocalizedError(std::string form) : printedForm(std::move(form)) {}

    const char* what() const noexcept override { return printedForm.c_str(); }

    // What a person is told, in the interface language of the moment.
    virtual std::string errorDescription() const = 0;

private:
    std::string printedForm;
};

// Of one case of an error: its name, for the log, and the key of its sentence.
struct ErrorWording {
    const char* name = nullptr;
    const char* key = nullptr;
};

// What a person is told of any error, in the interface language of the moment where there is a sentence in
// it.
std::string localizedDescription(const std::exception& error);

} // namespace lumarin
