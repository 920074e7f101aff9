#include "support/VideoFile.h"

#include <cstdio>
#include <memory>

#include "media/VideoReader.h"
#include "media/VideoWriter.h"

namespace test_support {

void writeVideo(const std::filesystem::path& file,
                const orbitwalk::media::EncoderSettings& settings, int frames,
                const std::function<Frame(int)>& frameAt) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen(file.c_str(), "w+b"),
                                                                 std::fclose);
    orbitwalk::media::VideoWriter writer(stream.get(), settings);
    for (int i = 0; i < frames; ++i)
        writer.write(frameAt(i));
    writer.finish();
}

std::vector<Frame> readVideo(const std::filesystem::path& file) {
    orbitwalk::media::VideoReader reader(file);
    std::vector<Frame> frames;
    for (Frame frame; reader.read(frame);)
        frames.push_back(frame);
    return frames;
}

}  // namespace test_support
