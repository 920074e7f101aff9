#pragma once

namespace orbitwalk::capi {

/// One call of the C interface: what the log says of it as an error, on its thread, is kept for
/// orbitwalkLastError.
class CallText {
  public:
    /// Forgets the thread's last call.
    CallText() noexcept;

    /// @param success  the call's outcome; a failure of which the log said nothing gets
    /// `otherwise`.
    /// @return 1 or -1.
    int finish(bool success, const char* otherwise) const noexcept;
};

/// Text of the thread's last call, empty after a success.
const char* lastError() noexcept;

}  // namespace orbitwalk::capi
