#include "Platform/Foundation/FileManager.h"

#include "Platform/Foundation/Descriptor.h"

#include <cstdlib>
#include <fcntl.h>
#include <mutex>
#include <sys/stat.h>
#include <system_error>
#include <tuple>
#include <utility>

namespace platform::files {

namespace {

constexpr mode_t fileMode = S_IRUSR | S_IWUSR;

// Opens without ever waiting: a pipe or a device is recognised afterwards, once it is open.
Descriptor open(const std::filesystem::path& path, int flags) {
    return Descriptor(::open(path.c_str(), flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, fileMode));
}

std::optional<std::size_t> sizeOfRegularFile(const Descriptor& file) {
    struct stat information {};
    if (!file.isOpen() || ::fstat(file.number(), &information) != 0 || !S_ISREG(information.st_mode))
        return std::nullopt;
    return static_cast<std::size_t>(information.st_size);
}

[[noreturn]] void fail(const std::filesystem::path& path, int error = errno) {
    throw std::system_error(error, std::generic_category(),
                            "The file " + path.string() + " could not be written");
}

// The file that a path means in the end; it need not exist.
std::filesystem::path followingLinks(std::filesystem::path path) {
    constexpr int maximumLinks = 40;
    std::error_code error;
    for (int links = 0; std::filesystem::is_symlink(path, error); ++links) {
        if (links == maximumLinks)
            fail(path, ELOOP);
        path = path.parent_path() / std::filesystem::read_symlink(path, error);
    }
    return path;
}

// A new file beside the one to be written, gone again unless it has been moved into place.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::filesystem::path& target)
        : path_((target.parent_path() / ".tmp-XXXXXX").string()),
          file_(::mkostemp(path_.data(), O_CLOEXEC)) {}
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (file_.isOpen() && !isMoved_)
            ::unlink(path_.c_str());
    }

    bool write(std::string_view bytes) const {
        return file_.isOpen() && writeAll(file_, bytes) && ::fsync(file_.number()) == 0;
    }

    bool moveTo(const std::filesystem::path& target) {
        isMoved_ = ::rename(path_.c_str(), target.c_str()) == 0;
        return isMoved_;
    }

private:
    std::string path_;
    Descriptor file_;
    bool isMoved_ = false;
};

} // namespace

ReadResult read(const std::filesystem::path& path) {
    const Descriptor file = open(path, O_RDONLY);
    if (!file.isOpen())
        return {errno == ENOENT || errno == ENOTDIR ? ReadStatus::missing : ReadStatus::unreadable, {}};
    const std::optional<std::size_t> size = sizeOfRegularFile(file);
    if (!size || *size > maximumFileSize)
        return {ReadStatus::unreadable, {}};

    // The size is only where to begin: some files tell none, and one may grow while it is read.
    std::string bytes(*size + 1, '\0');
    std::size_t length = 0;
    while (true) {
        const ssize_t count = uninterrupted(
            [&] { return ::read(file.number(), bytes.data() + length, bytes.size() - length); });
        if (count < 0)
            return {ReadStatus::unreadable, {}};
        if (count == 0)
            break;
        length += static_cast<std::size_t>(count);
        if (length > maximumFileSize)
            return {ReadStatus::unreadable, {}};
        if (length == bytes.size())
            bytes.resize(2 * length);
    }
    bytes.resize(length);
    return {ReadStatus::read, std::move(bytes)};
}

std::optional<std::string> contents(const std::filesystem::path& path) {
    ReadResult result = read(path);
    if (result.status != ReadStatus::read)
        return std::nullopt;
    return std::move(result.bytes);
}

void writeAtomically(const std::filesystem::path& path, std::string_view bytes) {
    const std::filesystem::path target = followingLinks(path);
    struct stat information {};
    if (::stat(target.c_str(), &information) == 0 && !S_ISREG(information.st_mode))
        fail(path, EINVAL);
    TemporaryFile file(target);
    if (!file.write(bytes) || !file.moveTo(target))
        fail(path);
}

bool append(const std::filesystem::path& path, std::string_view bytes) {
    // No other thread's entry comes behind a part of this one before the part is taken back.
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    const Descriptor file = open(path, O_WRONLY | O_CREAT | O_APPEND);
    if (!sizeOfRegularFile(file))
        return false;
    const ssize_t written = uninterrupted([&] { return ::write(file.number(), bytes.data(), bytes.size()); });
    if (written >= 0 && static_cast<std::size_t>(written) == bytes.size())
        return true;
    // A full disk takes a part; another process may have found room behind it.
    const off_t end = ::lseek(file.number(), 0, SEEK_CUR);
    if (written > 0 && sizeOfRegularFile(file) == static_cast<std::size_t>(end))
        std::ignore = ::ftruncate(file.number(), end - written);
    return false;
}

bool replace(const std::filesystem::path& path, std::string_view bytes) {
    const Descriptor file = open(path, O_WRONLY | O_CREAT);
    return sizeOfRegularFile(file) && ::ftruncate(file.number(), 0) == 0 && writeAll(file, bytes);
}

void createPrivateDirectory(const std::filesystem::path& path) {
    std::filesystem::path folder;
    for (const std::filesystem::path& part : path) {
        folder /= part;
        ::mkdir(folder.c_str(), S_IRWXU);
    }
}

} // namespace platform::files
