// Something of each installed library: a sweep refined and read, a frame encoded and its line of
// the log.
#include <MP4Writer.h>
#include <OrbitwalkPlatform.h>
#include <orbitwalk/Engine.h>
#include <orbitwalk/GeometryOpenCV.h>
#include <orbitwalk/MotionKernels.h>
#include <orbitwalk/RecordReader.h>
#include <orbitwalk/SharedBuffers.h>
#include <orbitwalk/refine/MotionEstimator.h>
#include <orbitwalk/refine/PathPlanner.h>
#include <orbitwalk/refine/RecordWriter.h>

#include <cstdio>
#include <vector>

using namespace orbitwalk;

namespace {

void printLine(int, const char* tag, const char*, void*) {
    std::printf("log of %s\n", tag);
}

/// A pan of ten frames without shake, planned and written.
std::vector<std::byte> record() {
    std::vector<refine::FrameMotion> motions(10);
    for (refine::FrameMotion& motion : motions) {
        motion.motion.x = -4;
        motion.measured = true;
    }
    const FrameSize size{320, 240};
    const auto plan = std::get<refine::PathPlan>(refine::planPath(motions, size, 0.8));
    refine::RecordFacts facts;
    facts.size = size;
    facts.endIndex = 9;
    facts.renderFlags.assign(10, 1);
    return std::get<std::vector<std::byte>>(refine::writeRecord(facts, plan));
}

}  // namespace

int main() {
    std::printf("record of %d bytes\n", getSizeOrbitwalkInformation());
    const auto reader = std::get<RecordReader>(RecordReader::open(record()));
    std::printf("%d frames, the last one at %.0f\n", reader.frameCount(), reader.displacement(9));

    std::FILE* const mp4 = std::tmpfile();
    const std::vector<unsigned char> grey(320 * 240 * 3 / 2, 128);
    bool encoded = InitMP4Engine(nullptr, nullptr, 320, 240, 0, 1000000, 15, 30, 7, 0, mp4) == 1;
    encoded = encoded && EncodeFrame(grey.data()) == 1;
    encoded = DeInitMP4Engine() == 1 && encoded;
    std::printf("mp4 %s\n", encoded && std::ftell(mp4) > 500 ? "written" : "not written");
    OrbitwalkSetLogListener(printLine, nullptr);
    DeInitMP4Engine();

    std::vector<cv::Mat> pyramid;
    NURV::buildOpticalFlowPyramid(cv::Mat(240, 320, CV_8UC1, cv::Scalar(0)), pyramid, {21, 21}, 1,
                                  false);
    std::printf("pyramid of %zu pictures\n", pyramid.size());
}
