#include "media/AvSupport.h"

#include <array>
#include <new>

extern "C" {
#include <libavutil/log.h>
}

namespace orbitwalk::media {

void silenceLibav() {
    av_log_set_level(AV_LOG_QUIET);
}

std::string avErrorText(int result) {
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(result, text.data(), text.size());
    return text.data();
}

FramePtr makeFrame() {
    FramePtr frame(av_frame_alloc());
    if (!frame)
        throw std::bad_alloc();
    return frame;
}

PacketPtr makePacket() {
    PacketPtr packet(av_packet_alloc());
    if (!packet)
        throw std::bad_alloc();
    return packet;
}

}  // namespace orbitwalk::media
