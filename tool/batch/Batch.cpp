#include "batch/Batch.h"

#include <poll.h>
#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <cstring>
#include <list>
#include <nlohmann/json.hpp>

#include "batch/BatchSummary.h"
#include "batch/ClipFolder.h"
#include "batch/ClipProcess.h"
#include "files/OutputFiles.h"
#include "terminal/Print.h"
#include "terminal/ProgressBar.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

namespace fs = std::filesystem;

constexpr int kLookEveryMilliseconds = 20;

struct RunningClip {
    ClipWork work;
    ChildProcess process;
};

/// Why a clip has no folder: what its commands said, and how its process ended where they did not.
std::string failureText(const ChildProcess& process) {
    std::string text = process.errors();
    if (process.status() > 128) {
        const int signal = process.status() - 128;
        text += "its process was ended by signal " + std::to_string(signal) + " (" +
                strsignal(signal) + ")\n";
    }
    return text;
}

class Run {
  public:
    explicit Run(const BatchOptions& options)
        : mOptions(options),
          mBase(fs::absolute(options.manifest).parent_path()),
          mClips(readManifest(options.manifest)),
          mDirectory(fs::absolute(options.directory)) {
        OutputFiles folders(false);
        folders.makeDirectory(mDirectory);
        folders.makeDirectory(workFolder(mDirectory));
        folders.commit();
        for (std::size_t i = 0; i < mClips.size(); ++i)
            if (static_cast<int>(i % options.shard.count) == options.shard.index)
                mMine.push_back(&mClips[i]);
    }

    /// All are told to end before one is waited for.
    ~Run() {
        for (const RunningClip& clip : mRunning)
            clip.process.terminate();
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    BatchResult run() {
        const Stopwatch watch;
        ProgressBar bar("Clips", std::ssize(mMine));
        // What cannot be written is told before the work, and the overview is there meanwhile.
        writeBatchSummary(mClips, mDirectory, mOptions.force);
        auto next = mMine.begin();
        while (next != mMine.end() || !mRunning.empty()) {
            SignalGuard::check();
            while (next != mMine.end() && std::ssize(mRunning) < mOptions.jobs)
                begin({**next++, mBase});
            poll(nullptr, 0, mRunning.empty() ? 0 : kLookEveryMilliseconds);
            mRunning.remove_if([&](RunningClip& clip) { return clip.process.poll() && end(clip); });
            bar.update(mResult.clips());
        }
        writeBatchSummary(mClips, mDirectory, mOptions.force);
        mResult.directory = mOptions.directory;
        mResult.seconds = watch.seconds();
        return mResult;
    }

  private:
    /// Starts a clip's process, unless nothing is to be done.
    void begin(const ClipJob& job) {
        const ClipFolder names(mDirectory, job.clip.id);
        try {
            if (isDone(names, job))
                return;
            auto lock = NameLock::take(names.lock);
            if (!lock) {
                ++mResult.busy;
                return;
            }
            // Whoever held the lock may have made the clip meanwhile.
            if (isDone(names, job))
                return;
            ClipWork work(names, *std::move(lock), mOptions.force);
            ChildProcess process({kRunClipCommand, std::to_string(getpid()), toJson(job).dump()},
                                 names.work);
            mRunning.push_back({std::move(work), std::move(process)});
        } catch (const ToolError& error) {
            SignalGuard::check();
            noteFailure(names, error.what() + std::string("\n"));
        }
    }

    bool isDone(const ClipFolder& names, const ClipJob& job) {
        const auto sidecar = names.sidecar();
        if (!sidecar || !isUnchanged(*sidecar, job))
            return false;
        std::error_code ignored;
        fs::remove(names.error, ignored);
        ++mResult.unchanged;
        return true;
    }

    /// @return true: the clip runs no more.
    bool end(RunningClip& clip) {
        const ClipFolder& names = clip.work.names();
        if (clip.process.status() != 0) {
            noteFailure(names, failureText(clip.process));
            return true;
        }
        try {
            OutputFiles outputs(false);
            outputs.write(names.work / "messages.txt", clip.process.errors());
            outputs.commit();
            clip.work.finish();
            ++mResult.made;
        } catch (const ToolError& error) {
            noteFailure(names, error.what() + std::string("\n"));
        }
        return true;
    }

    /// What cannot be written is told here: a full device keeps no errors.
    void noteFailure(const ClipFolder& names, const std::string& why) {
        ++mResult.failed;
        try {
            writeFailure(names, why);
        } catch (const ToolError& error) {
            printWarning(lastLineOf(why));
            printWarning(error.what());
        }
    }

    const BatchOptions& mOptions;
    const fs::path mBase;
    const std::vector<Clip> mClips;
    const fs::path mDirectory;
    std::vector<const Clip*> mMine;
    std::list<RunningClip> mRunning;
    BatchResult mResult;
};

}  // namespace

Shard parseShard(const std::string& text) {
    Shard shard;
    const char* const end = text.data() + text.size();
    const auto [slash, wrongIndex] = std::from_chars(text.data(), end, shard.index);
    const bool parted = wrongIndex == std::errc{} && slash != end && *slash == '/';
    const auto [last, wrongCount] = std::from_chars(parted ? slash + 1 : end, end, shard.count);
    if (!parted || wrongCount != std::errc{} || last != end || shard.index < 0 ||
        shard.index >= shard.count)
        throw UsageError("--shard: " + text +
                         " is not INDEX/COUNT, with INDEX from 0 to COUNT - 1");
    return shard;
}

BatchResult runBatch(const BatchOptions& options) {
    const SignalGuard signals;
    return Run(options).run();
}

std::string toText(const BatchResult& result) {
    char text[400];
    std::snprintf(text, sizeof text,
                  "clips             %d: %d made, %d unchanged, %d failed, %d with another run\n"
                  "seconds           %.1f\n",
                  result.clips(), result.made, result.unchanged, result.failed, result.busy,
                  result.seconds);
    return text + ("overview          " + shown(result.directory / "index.html") + '\n');
}

std::string toJsonText(const BatchResult& result) {
    return jsonText({{"clips", result.clips()},
                     {"made", result.made},
                     {"unchanged", result.unchanged},
                     {"failed", result.failed},
                     {"withAnotherRun", result.busy},
                     {"seconds", result.seconds},
                     {"outputs",
                      {{"overview", (result.directory / "index.html").string()},
                       {"table", (result.directory / "summary.csv").string()},
                       {"summary", (result.directory / "summary.json").string()}}}});
}

}  // namespace orbitwalk::tool
