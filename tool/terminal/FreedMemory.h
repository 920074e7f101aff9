#pragma once

namespace orbitwalk::tool {

/// For commands whose frames come and go all the time: memory that is freed stays at hand for the
/// next frame. Given back to the system it would come anew page by page, which takes up to half of
/// a panorama's time.
void keepFreedMemory();

}  // namespace orbitwalk::tool
