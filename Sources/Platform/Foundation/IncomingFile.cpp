#include "Platform/Foundation/IncomingFile.h"

#include "Platform/Foundation/FileManager.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <system_error>
#include <utility>

namespace platform {
namespace {

constexpr std::string_view temporarySuffix = ".part";

std::string temporaryPathIn(const std::filesystem::path& folder, const std::string& name) {
    files::createPrivateDirectory(folder);
    return (folder / (name + ".XXXXXX" + std::string(temporarySuffix))).string();
}

// "Lumarin.tar.gz" becomes "Lumarin (2).tar.gz".
std::string numbered(const std::filesystem::path& name, int number) {
    std::string extension = name.extension().string();
    std::string stem = name.stem().string();
    if (stem.ends_with(".tar")) {
        stem.resize(stem.size() - 4);
        extension = ".tar" + extension;
    }
    return stem + " (" + std::to_string(number) + ")" + extension;
}

} // namespace

IncomingFile::IncomingFile(const std::filesystem::path& intoFolder, std::string chosenName)
    : folder(intoFolder),
      name(std::move(chosenName)),
      temporaryPath(temporaryPathIn(folder, name)),
      file(::mkostemps(temporaryPath.data(), static_cast<int>(temporarySuffix.size()), O_CLOEXEC)) {
    if (!file.isOpen())
        fail(errno);
}

IncomingFile::~IncomingFile() {
    if (mapping)
        ::munmap(mapping, length);
    discard();
}

void IncomingFile::append(std::string_view piece) {
    if (!files::writeAll(file, piece))
        fail(errno);
    length += piece.size();
}

std::string_view IncomingFile::contents() {
    if (length == 0)
        return {};
    if (!mapping) {
        void* const place = ::mmap(nullptr, length, PROT_READ, MAP_PRIVATE, file.number(), 0);
        if (place == MAP_FAILED)
            fail(errno);
        mapping = place;
    }
    return {static_cast<const char*>(mapping), length};
}

std::filesystem::path IncomingFile::keep() {
    // A new, empty file takes the name first: nothing that somebody else puts there is ever replaced.
    for (int number = 1;; ++number) {
        std::filesystem::path target = folder / (number == 1 ? name : numbered(name, number));
        const files::Descriptor reserved(
            ::open(target.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
        if (!reserved.isOpen() && errno == EEXIST)
            continue;
        if (!reserved.isOpen())
            fail(errno);
        if (std::rename(temporaryPath.c_str(), target.c_str()) != 0) {
            const int error = errno;
            ::unlink(target.c_str());
            fail(error);
        }
        return target;
    }
}

void IncomingFile::discard() const {
    ::unlink(temporaryPath.c_str());
}

void IncomingFile::fail(int error) const {
    throw std::system_error(error, std::generic_category(), (folder / name).string());
}

} // namespace platform
