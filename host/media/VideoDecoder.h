#pragma once

#include <filesystem>
#include <string>

#include "media/AvHandles.h"

namespace orbitwalk::media {

/// A file opened for reading and the decoder of its main video stream.
class VideoDecoder {
  public:
    /// @throws MediaError
    explicit VideoDecoder(const std::filesystem::path& file);

    /// Decodes the next picture. @return null at the end; else valid until the next call.
    /// @throws MediaError when the file cannot be read on.
    const AVFrame* next();

    const AVFormatContext& container() const { return *mContainer; }
    const AVStream& stream() const { return *mContainer->streams[mStreamIndex]; }
    /// "cannot read FILE: ", the beginning of every message.
    const std::string& complaint() const { return mComplaint; }

  private:
    void openContainer(const std::filesystem::path& file);
    void openDecoder();
    void feed();
    [[noreturn]] void fail(const std::string& reason) const;
    void check(int result) const;

    std::string mComplaint;
    InputPtr mContainer;
    CodecPtr mCodec;
    int mStreamIndex = -1;
    FramePtr mFrame;
    PacketPtr mPacket;
};

}  // namespace orbitwalk::media
