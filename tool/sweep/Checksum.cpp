#include "sweep/Checksum.h"

#include <openssl/evp.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "terminal/SignalGuard.h"
#include "terminal/ToolError.h"

namespace orbitwalk::tool {

namespace {

/// By libcrypto, which takes the processor's own instructions for it where there are some: a
/// captured video is large.
class Sha {
  public:
    Sha() {
        if (!mState || EVP_DigestInit_ex(mState.get(), EVP_sha256(), nullptr) != 1)
            throw std::bad_alloc();
    }

    void add(std::span<const char> bytes) {
        EVP_DigestUpdate(mState.get(), bytes.data(), bytes.size());
    }

    std::string digits() {
        std::array<std::uint8_t, 256 / 8> digest{};
        EVP_DigestFinal_ex(mState.get(), digest.data(), nullptr);
        std::string text;
        for (const std::uint8_t byte : digest)
            for (const int digit : {byte >> 4, byte & 15})
                text += "0123456789abcdef"[digit];
        return text;
    }

  private:
    struct Free {
        void operator()(EVP_MD_CTX* state) const { EVP_MD_CTX_free(state); }
    };
    std::unique_ptr<EVP_MD_CTX, Free> mState{EVP_MD_CTX_new()};
};

}  // namespace

std::string sha256(std::span<const char> bytes) {
    Sha sha;
    sha.add(bytes);
    return sha.digits();
}

std::string sha256OfStream(std::FILE* stream) {
    Sha sha;
    std::array<char, 1 << 16> block;
    std::rewind(stream);
    while (const std::size_t count = std::fread(block.data(), 1, block.size(), stream)) {
        SignalGuard::check();
        sha.add(std::span(block).first(count));
    }
    if (std::ferror(stream))
        throw ToolError(std::strerror(errno));
    return sha.digits();
}

std::string sha256OfFile(const std::filesystem::path& file) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error))
        throw ToolError(file.string() + ": " + (error ? error.message() : "no regular file"));
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen(file.c_str(), "rb"),
                                                                 std::fclose);
    try {
        if (!stream)
            throw ToolError(std::strerror(errno));
        return sha256OfStream(stream.get());
    } catch (const ToolError& failure) {
        SignalGuard::check();
        throw ToolError(file.string() + ": " + failure.what());
    }
}

}  // namespace orbitwalk::tool
