#pragma once

#include <filesystem>
#include <string>

#include "media/AvHandles.h"
#include "media/InputFile.h"

namespace orbitwalk::media {

/// A file opened for reading and the decoder of its main video stream.
class VideoDecoder {
  public:
    /// @throws MediaError
    VideoDecoder(const std::filesystem::path& file, Interrupted interrupted);

    /// Decodes the next picture. @return null at the end; else valid until the next call.
    /// @throws MediaError when the file cannot be read on.
    const AVFrame* next();

    /// Goes to a place before the time, in units of the stream, from which all later pictures can
    /// be decoded; stays where it is when the file does not allow that.
    void seekBefore(std::int64_t time);

    const AVFormatContext& container() const { return mInput.container(); }
    const AVStream& stream() const { return *container().streams[mStreamIndex]; }
    /// "cannot read FILE: ", the beginning of every message.
    const std::string& complaint() const { return mComplaint; }

    /// Pictures that were given although parts of them are damaged.
    std::int64_t damagedPictures() const { return mDamaged; }
    /// Pictures that are too damaged to be given.
    std::int64_t lostPictures() const { return mLost; }
    /// Counts both of them anew.
    void forgetDamage() { mDamaged = mLost = 0; }
    /// Pictures before the time (in units of the stream, from its start) that the file should still
    /// hold after the last packet that was read, by its own index or its duration. A mere count in
    /// the header is not believed: recorders that write it beforehand get it wrong.
    std::int64_t picturesLeft(std::int64_t beforeTime) const;

  private:
    void openDecoder();
    void feed();
    void noteTimes();
    [[noreturn]] void fail(const std::string& reason) const;
    void check(int result) const;

    std::string mComplaint;
    InputFile mInput;
    CodecPtr mCodec;
    int mStreamIndex = -1;
    FramePtr mFrame;
    PacketPtr mPacket;
    std::int64_t mDamaged = 0;
    std::int64_t mLost = 0;
    std::int64_t mLastDecodingTime = AV_NOPTS_VALUE;  ///< Of the stream's packets.
    std::int64_t mEnd = 0;  ///< Latest end of any stream's packet, microseconds.
};

}  // namespace orbitwalk::media
