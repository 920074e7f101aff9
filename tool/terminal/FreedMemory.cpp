#include "terminal/FreedMemory.h"

#include <malloc.h>

namespace orbitwalk::tool {

void keepFreedMemory() {
#ifdef __GLIBC__
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    mallopt(M_TRIM_THRESHOLD, 256 << 20);
#endif
}

}  // namespace orbitwalk::tool
