#include "Service/FileFolder.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <sys/stat.h>

namespace lumarin::service {
namespace {

struct Type {
    std::string_view extension;
    const char* name;
};

constexpr auto types = std::to_array<Type>({
    {".xml", "application/xml; charset=utf-8"},
    {".html", "text/html; charset=utf-8"},
    {".txt", "text/plain; charset=utf-8"},
    {".md", "text/markdown; charset=utf-8"},
    {".json", "application/json"},
    {".png", "image/png"},
    {".deb", "application/vnd.debian.binary-package"},
    {".zip", "application/zip"},
    {".gz", "application/gzip"},
});

const char* typeOf(const std::filesystem::path& file) {
    const auto found = std::ranges::find(types, file.extension().native(), &Type::extension);
    return found != types.end() ? found->name : "application/octet-stream";
}

// Names as they stand in an address: each of them one step down, to something that is not hidden.
bool isPlain(std::string_view path) {
    if (path.empty() || path.ends_with('/') || path.find('\0') != std::string_view::npos)
        return false;
    return std::ranges::none_of(std::filesystem::path(path), [](const std::filesystem::path& step) {
        return step.empty() || step.native().starts_with('.') || step.native().starts_with('/');
    });
}

} // namespace

std::optional<FileFolder::File> FileFolder::find(std::string_view path) const {
    if (!isPlain(path))
        return std::nullopt;
    std::error_code none;
    const auto target = std::filesystem::canonical(root / path, none);
    if (none || std::ranges::mismatch(root, target).in1 != root.end())
        return std::nullopt;
    Descriptor file(::open(target.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat facts {};
    if (!file.isOpen() || ::fstat(file.number(), &facts) != 0 || !S_ISREG(facts.st_mode))
        return std::nullopt;
    return File{std::move(file), static_cast<std::size_t>(facts.st_size), typeOf(target)};
}

} // namespace lumarin::service
