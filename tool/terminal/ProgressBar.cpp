#include "terminal/ProgressBar.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "terminal/Print.h"

namespace orbitwalk::tool {
namespace {

int columnsOfTerminal() {
    winsize size{};
    const bool known = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col : 80;
}

std::string timeText(double seconds) {
    const auto whole = static_cast<std::int64_t>(seconds + 0.5);
    char text[40];
    if (whole < 3600)
        std::snprintf(text, sizeof text, "%d:%02d", static_cast<int>(whole / 60),
                      static_cast<int>(whole % 60));
    else
        std::snprintf(text, sizeof text, "%lld:%02d:%02d", static_cast<long long>(whole / 3600),
                      static_cast<int>(whole / 60 % 60), static_cast<int>(whole % 60));
    return text;
}

std::string barText(std::int64_t done, std::int64_t total) {
    constexpr int width = 24;
    const int filled = static_cast<int>(done * width / total);
    std::string text(" [");
    text.append(filled, '#').append(width - filled, '.');
    return text += ']';
}

}  // namespace

std::string progressLine(const std::string& label, std::int64_t done, std::int64_t total,
                         double seconds, int columns) {
    done = total > 0 ? std::min(done, total) : done;
    const double rate = seconds > 0 ? static_cast<double>(done) / seconds : 0;
    std::string count(1, ' ');
    count += std::to_string(done);
    if (total > 0)
        count.append(1, '/').append(std::to_string(total));
    char perSecond[40];
    std::snprintf(perSecond, sizeof perSecond, ", %.1f/s", rate);
    std::string left;
    if (total > 0 && rate > 0)
        left = ", " + timeText(static_cast<double>(total - done) / rate) + " left";
    // The last column stays free: a terminal may go on to the next line after it.
    const auto room = static_cast<std::size_t>(std::max(columns - 1, 0));
    const std::string full = label + count + perSecond + left;
    if (const std::string bar = total > 0 ? barText(done, total) : "";
        bar.size() + full.size() <= room)
        return label + bar + full.substr(label.size());
    for (const std::string& line : {full, label + count + left, label + count})
        if (line.size() <= room)
            return line;
    return count.substr(1, room);
}

ProgressBar::ProgressBar(std::string label, std::int64_t total)
    : mLabel(std::move(label)), mTotal(total), mShown(!isQuiet() && isatty(STDERR_FILENO) != 0) {}

ProgressBar::~ProgressBar() {
    if (mShown)
        std::fputs("\r\033[K", stderr);
}

void ProgressBar::update(std::int64_t done) {
    const auto now = Clock::now();
    if (!mShown || (now - mLastDraw < std::chrono::milliseconds(100) && done != mTotal))
        return;
    mLastDraw = now;
    const std::chrono::duration<double> time = now - mStart;
    std::fprintf(stderr, "\r\033[K%s",
                 progressLine(mLabel, done, mTotal, time.count(), columnsOfTerminal()).c_str());
    std::fflush(stderr);
}

}  // namespace orbitwalk::tool
