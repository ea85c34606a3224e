#pragma once

#include "Platform/Foundation/Descriptor.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace platform {

// A file that arrives piece by piece in the folder where it is to stay. Until it is kept it has a name of its
// own, and it is gone with this object unless it is kept. The user's alone (0600). For one thread at a time,
// but `discard` is for any.
class IncomingFile {
public:
    // Creates the folder where it is missing. Throws std::system_error.
    IncomingFile(const std::filesystem::path& intoFolder, std::string chosenName);
    ~IncomingFile();
    IncomingFile(const IncomingFile&) = delete;
    IncomingFile& operator=(const IncomingFile&) = delete;

    // Throws std::system_error.
    void append(std::string_view piece);

    // All that has arrived, for as long as this lives and nothing more is appended; not read into memory as a
    // whole. Throws std::system_error.
    std::string_view contents();

    // Gives the file its name, or the name with a number where something has that name already, and tells
    // where it is now. Throws std::system_error.
    std::filesystem::path keep();

    // Deletes the file unless it has been kept.
    void discard() const;

private:
    [[noreturn]] void fail(int error) const;

    const std::filesystem::path folder;
    const std::string name;
    std::string temporaryPath;
    const files::Descriptor file;
    std::size_t length = 0;
    void* mapping = nullptr;
};

} // namespace platform
