#include "common/PendingFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <system_error>

#include "common/ToolError.h"

namespace orbitwalk::tool {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail(const fs::path& target, const std::string& reason) {
    throw ToolError("cannot write " + target.string() + ": " + reason);
}

}  // namespace

PendingFile::PendingFile(fs::path target)
    : mTarget(std::move(target)),
      mTemporary(mTarget.string() + ".partial-" + std::to_string(getpid())) {
    std::error_code ignored;
    const fs::file_status status = fs::status(mTarget, ignored);
    if (fs::exists(status) && !fs::is_regular_file(status))
        fail(mTarget, "there is something of that name that is no file");
    const int descriptor = open(mTemporary.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor < 0)
        fail(mTarget, std::strerror(errno));
    mStream = fdopen(descriptor, "w+b");
    if (mStream == nullptr) {
        ::close(descriptor);
        unlink(mTemporary.c_str());
        fail(mTarget, "out of memory");
    }
}

PendingFile::~PendingFile() {
    if (mStream != nullptr)
        std::fclose(mStream);
    if (!mTemporary.empty())
        unlink(mTemporary.c_str());
}

void PendingFile::close() {
    const bool failedBefore = std::ferror(mStream) != 0;
    const bool closed = std::fclose(mStream) == 0;
    const int reason = errno;
    mStream = nullptr;
    if (failedBefore || !closed)
        fail(mTarget, closed ? "a write failed" : std::strerror(reason));
}

void PendingFile::publish() {
    std::error_code error;
    fs::rename(mTemporary, mTarget, error);
    if (error)
        fail(mTarget, error.message());
    mTemporary.clear();
}

}  // namespace orbitwalk::tool
