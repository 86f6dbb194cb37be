#include "app/picture_writer.h"

#include <png.h>

#include <cerrno>
#include <csetjmp>
#include <utility>

#include "app/output_file.h"

namespace sparkrig {

namespace {

constexpr int kFastest = 1;   // of zlib's levels: the rows are differences already
constexpr int kBitsPerChannel = 8;

void Append(png_structp png, png_bytep bytes, png_size_t size) {
    static_cast<OutputFile*>(png_get_io_ptr(png))->Write({reinterpret_cast<const char*>(bytes), size});
}

void Flush(png_structp) {}

/// The library jumps back here when something fails, past whatever would have to be destroyed: there is nothing.
bool Encode(png_structp png, png_infop info, OutputFile& file, const Picture& picture) {
    if (setjmp(png_jmpbuf(png)) != 0) return false;   // NOLINT(cert-err52-cpp): the library's way
    png_set_write_fn(png, &file, Append, Flush);
    png_set_IHDR(png, info, picture.width, picture.height, kBitsPerChannel, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_compression_level(png, kFastest);
    png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_UP);
    png_write_info(png, info);
    png_set_bgr(png);                           // a pixel is B, G, R
    png_set_filler(png, 0, PNG_FILLER_AFTER);   // and alpha, which is left out
    for (UINT y = 0; y < picture.height; ++y)
        png_write_row(png, reinterpret_cast<png_const_bytep>(&picture.pixels[std::size_t{y} * picture.width]));
    png_write_end(png, info);
    return true;
}

}   // namespace

bool WritePng(const std::string& name, const Picture& picture) {
    OutputFile file(name);
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
    if (info == nullptr || !Encode(png, info, file, picture)) file.Fail(ENOMEM);   // all else is written or ours
    png_destroy_write_struct(&png, &info);
    return file.Finish();
}

bool PictureWriter::Write(std::string name, Picture picture) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return !waiting_ || failed_; });
    if (failed_) return false;
    waiting_ = {std::move(name), std::move(picture)};
    changed_.notify_all();
    return true;
}

bool PictureWriter::Finish() {
    {
        const std::lock_guard lock(mutex_);
        ended_ = true;
        changed_.notify_all();
    }
    if (thread_.joinable()) thread_.join();
    return !failed_;
}

/// Nothing when there will be none any more.
std::optional<PictureWriter::Order> PictureWriter::TakeOrder() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return waiting_ || ended_; });
    changed_.notify_all();
    return std::exchange(waiting_, std::nullopt);
}

void PictureWriter::Work() {
    while (const std::optional<Order> order = TakeOrder()) {
        if (WritePng(order->name, order->picture)) continue;
        const std::lock_guard lock(mutex_);
        failed_ = true;
        changed_.notify_all();
        return;
    }
}

}   // namespace sparkrig
