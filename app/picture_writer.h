// Pictures as PNG files, written while the caller goes on.
#pragma once
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/d3d9/d3d9_types.h"

namespace sparkrig {

/// A picture, row by row from the top, A8R8G8B8.
struct Picture {
    UINT width = 0, height = 0;
    std::vector<D3DCOLOR> pixels;
};

/// Writes opaque PNGs one after the other on a thread of its own, each named on the standard output when it is whole.
/// One picture is being written while another waits.
class PictureWriter {
  public:
    PictureWriter() : thread_([this] { Work(); }) {}
    ~PictureWriter() { Finish(); }
    PictureWriter(const PictureWriter&) = delete;
    PictureWriter& operator=(const PictureWriter&) = delete;

    /// Hands a picture over, once the one before it is being written. False when an earlier one could not be.
    bool Write(std::string name, Picture picture);
    /// Waits for the last one. False, with a sentence on the error stream, when any could not be written.
    bool Finish();

  private:
    struct Order {
        std::string name;
        Picture picture;
    };

    void Work();
    std::optional<Order> TakeOrder();

    std::mutex mutex_;   // of the members up to the thread
    std::condition_variable changed_;
    std::optional<Order> waiting_;
    bool ended_ = false;
    bool failed_ = false;
    std::thread thread_;
};

/// The same here and now.
bool WritePng(const std::string& name, const Picture& picture);

}   // namespace sparkrig
