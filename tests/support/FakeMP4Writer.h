#pragma once

#include <cstdio>
#include <string>
#include <vector>

/// An MP4 writer whose results are set by the test, which can hold it at a gate, and which
/// remembers every call. Replaces the writer library in the test programs that link it. Any thread.
namespace fake_writer {

struct InitCall {
    bool fileNameIsNull;
    std::string tempDir;
    int width, height, setting5, bitRate, setting7, setting8, setting9, fileId;
    std::FILE* file;
};

struct Record {
    std::vector<InitCall> inits;
    /// First four bytes of each frame, in order, as EncodeFrame got them.
    std::vector<std::vector<unsigned char>> frames;
    int deinits = 0;
    /// EncodeFrame or DeInitMP4Engine without a recording, or a second InitMP4Engine within one.
    int misuses = 0;
};

/// Forgets all calls and sets: init succeeds, every encode succeeds, gate open.
void reset();
void setInitResult(int result);
/// Result of EncodeFrame from now on.
void setEncodeResult(int result);
/// Result of the n-th EncodeFrame (0 = the first) alone.
void setEncodeResultOf(int n, int result);
/// EncodeFrame waits at the closed gate until it is opened.
void closeGate();
void openGate();
/// Waits until EncodeFrame was entered at least n times since reset. @return false after ten
/// seconds.
bool waitForEntered(int n);
Record record();
/// First byte of each frame that EncodeFrame got.
std::vector<int> firstBytes();

}  // namespace fake_writer
