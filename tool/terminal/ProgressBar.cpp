#include "terminal/ProgressBar.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace orbitwalk::tool {

ProgressBar::ProgressBar(std::string label, std::int64_t total)
    : mLabel(std::move(label)), mTotal(total), mShown(isatty(STDERR_FILENO) != 0) {}

ProgressBar::~ProgressBar() {
    if (mShown)
        std::fputs("\r\033[K", stderr);
}

void ProgressBar::update(std::int64_t done) {
    const auto now = Clock::now();
    if (!mShown || (now - mLastDraw < std::chrono::milliseconds(100) && done != mTotal))
        return;
    mLastDraw = now;
    const double seconds = std::chrono::duration<double>(now - mStart).count();
    const double rate = seconds > 0 ? static_cast<double>(done) / seconds : 0;
    if (mTotal > 0) {
        constexpr int width = 30;
        const int filled = static_cast<int>(std::min(done, mTotal) * width / mTotal);
        std::fprintf(stderr, "\r\033[K%s [%s%s] %3d %%  %.1f/s", mLabel.c_str(),
                     std::string(filled, '#').c_str(), std::string(width - filled, '.').c_str(),
                     static_cast<int>(std::min(done, mTotal) * 100 / mTotal), rate);
    } else {
        std::fprintf(stderr, "\r\033[K%s %lld  %.1f/s", mLabel.c_str(),
                     static_cast<long long>(done), rate);
    }
    std::fflush(stderr);
}

}  // namespace orbitwalk::tool
