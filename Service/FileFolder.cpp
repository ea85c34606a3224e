#include "Service/FileFolder.h"

#include "Service/Support/Handles.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <memory>
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

bool sendPart(const Descriptor& file, std::size_t offset, std::size_t length, httplib::DataSink& sink) {
    std::array<char, 65536> buffer;
    const ssize_t count =
        ::pread(file.number(), buffer.data(), std::min(length, buffer.size()), static_cast<off_t>(offset));
    return count > 0 && sink.write(buffer.data(), static_cast<std::size_t>(count));
}

} // namespace

bool FileFolder::answer(std::string_view path, httplib::Response& response) const {
    if (!isPlain(path))
        return false;
    std::error_code none;
    const auto target = std::filesystem::canonical(root / path, none);
    if (none || std::ranges::mismatch(root, target).in1 != root.end())
        return false;
    const auto file = std::make_shared<Descriptor>(::open(target.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat facts {};
    if (!file->isOpen() || ::fstat(file->number(), &facts) != 0 || !S_ISREG(facts.st_mode))
        return false;
    response.set_header("Cache-Control", "no-cache");
    response.set_header("Accept-Ranges", "none");
    response.set_header("X-Content-Type-Options", "nosniff");
    if (facts.st_size == 0) {
        response.set_content("", typeOf(target));
        return true;
    }
    response.set_content_provider(static_cast<std::size_t>(facts.st_size), typeOf(target),
                                  [file](std::size_t offset, std::size_t length, httplib::DataSink& sink) {
                                      return sendPart(*file, offset, length, sink);
                                  });
    return true;
}

} // namespace lumarin::service
