#include "capture/RepeatedMotion.h"

#include <cstdio>
#include <cstring>

namespace orbitwalk::tool {

void RepeatedMotion::takeLine(const char* text) {
    if (std::strstr(text, "insufficeint")) {
        mInsufficient = true;
        return;
    }
    int frame = 0;
    Motion motion{};
    if (std::sscanf(text, "CalculatePrevToCurTransform : Frame[%d] : Transform[ %lf, %lf, %lf ]",
                    &frame, &motion[0], &motion[1], &motion[2]) != 4)
        return;
    if (mInsufficient || (motion == mLast && motion != Motion{}))
        mFrames.insert(frame);
    mInsufficient = false;
    mLast = motion;
}

}  // namespace orbitwalk::tool
