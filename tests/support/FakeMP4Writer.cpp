#include "support/FakeMP4Writer.h"

#include <MP4Writer.h>

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>

namespace {

std::mutex lock;
std::condition_variable changed;
fake_writer::Record calls;
int initResult = 1;
int encodeResult = 1;
std::map<int, int> encodeResultOf;
bool gateOpen = true;
bool recording = false;
int entered = 0;

}  // namespace

int InitMP4Engine(const char* fileName, const char* tempDir, int width, int height, int setting5,
                  int bitRate, int setting7, int setting8, int setting9, int fileId, FILE* file) {
    const std::lock_guard guard(lock);
    calls.inits.push_back({fileName == nullptr, tempDir, width, height, setting5, bitRate, setting7,
                           setting8, setting9, fileId, file});
    if (recording)
        ++calls.misuses;
    recording = initResult == 1;
    return initResult;
}

int EncodeFrame(const unsigned char* frame) {
    std::unique_lock guard(lock);
    const int n = entered++;
    changed.notify_all();
    changed.wait(guard, [] { return gateOpen; });
    calls.frames.emplace_back(frame, frame + 4);
    if (!recording && initResult == 1)
        ++calls.misuses;
    const auto single = encodeResultOf.find(n);
    return single != encodeResultOf.end() ? single->second : encodeResult;
}

int DeInitMP4Engine(void) {
    const std::lock_guard guard(lock);
    if (!recording)
        ++calls.misuses;
    recording = false;
    ++calls.deinits;
    return 1;
}

namespace fake_writer {

void reset() {
    const std::lock_guard guard(lock);
    calls = {};
    initResult = encodeResult = 1;
    encodeResultOf.clear();
    gateOpen = true;
    recording = false;
    entered = 0;
    changed.notify_all();
}

void setInitResult(int result) {
    const std::lock_guard guard(lock);
    initResult = result;
}

void setEncodeResult(int result) {
    const std::lock_guard guard(lock);
    encodeResult = result;
}

void setEncodeResultOf(int n, int result) {
    const std::lock_guard guard(lock);
    encodeResultOf[n] = result;
}

void closeGate() {
    const std::lock_guard guard(lock);
    gateOpen = false;
}

void openGate() {
    const std::lock_guard guard(lock);
    gateOpen = true;
    changed.notify_all();
}

bool waitForEntered(int n) {
    std::unique_lock guard(lock);
    return changed.wait_for(guard, std::chrono::seconds(10), [n] { return entered >= n; });
}

Record record() {
    const std::lock_guard guard(lock);
    return calls;
}

std::vector<int> firstBytes() {
    std::vector<int> bytes;
    for (const auto& frame : record().frames)
        bytes.push_back(frame[0]);
    return bytes;
}

}  // namespace fake_writer
