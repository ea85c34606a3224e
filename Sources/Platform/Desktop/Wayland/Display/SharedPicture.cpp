#include "Platform/Desktop/Wayland/Display/SharedPicture.h"

#include <sys/mman.h>
#include <unistd.h>

namespace platform::desktop {
namespace {

constexpr int bytesPerPixel = 4;

std::size_t lengthFor(QSize size) {
    return static_cast<std::size_t>(size.width()) * static_cast<std::size_t>(size.height()) * bytesPerPixel;
}

} // namespace

std::unique_ptr<SharedPicture> SharedPicture::make(wl_shm& memory, QSize size) {
    const auto length = lengthFor(size);
    const int file = memfd_create("picture", MFD_CLOEXEC);
    std::unique_ptr<SharedPicture> result;
    if (file >= 0 && ftruncate(file, static_cast<off_t>(length)) == 0) {
        void* const mapped = mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
        if (mapped != MAP_FAILED)
            result.reset(new SharedPicture(memory, size, file, mapped));
    }
    if (file >= 0)
        close(file);
    return result;
}

SharedPicture::SharedPicture(wl_shm& memory, QSize size, int file, void* mapped)
    : stale(QRect({}, size)),
      length(lengthFor(size)),
      bytes(mapped),
      pixels(static_cast<uchar*>(mapped), size.width(), size.height(),
             qsizetype{size.width()} * bytesPerPixel, QImage::Format_ARGB32_Premultiplied) {
    auto* const pool = wl_shm_create_pool(&memory, file, static_cast<std::int32_t>(length));
    handle.reset(wl_shm_pool_create_buffer(pool, 0, size.width(), size.height(), size.width() * bytesPerPixel,
                                           WL_SHM_FORMAT_ARGB8888));
    wl_shm_pool_destroy(pool);
    static constexpr wl_buffer_listener listener{[](void* self, wl_buffer*) {
        auto& picture = *static_cast<SharedPicture*>(self);
        picture.isInUse = false;
        if (picture.onRelease)
            picture.onRelease();
    }};
    wl_buffer_add_listener(handle.get(), &listener, this);
}

SharedPicture::~SharedPicture() {
    munmap(bytes, length);
}

} // namespace platform::desktop
