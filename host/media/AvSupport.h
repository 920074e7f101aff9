#pragma once

#include <memory>
#include <string>

#include "media/AvHandles.h"

namespace orbitwalk::media {

/// Stops libav from printing on stderr; failures are told by MediaError instead.
void silenceLibav();

/// A negative libav result in words.
std::string avErrorText(int result);

/// @throws std::bad_alloc instead of giving null.
FramePtr makeFrame();
PacketPtr makePacket();

}  // namespace orbitwalk::media
