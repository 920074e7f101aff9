#pragma once

#include <malloc.h>

namespace orbitwalk::tool {

/// For commands whose frames come and go all the time: memory that is freed stays at hand for the
/// next frame. Given back to the system it would come anew page by page, which takes up to half of
/// a panorama's time.
inline void keepFreedMemory() {
#ifdef __GLIBC__
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    mallopt(M_TRIM_THRESHOLD, 256 << 20);
#endif
}

}  // namespace orbitwalk::tool
