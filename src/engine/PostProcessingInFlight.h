#pragma once

namespace orbitwalk {

/// Stands for a post-processing thread from its first line to its last. The thread unlocks the
/// engine before its last call of the listener, so that the listener may use the engine and even
/// delete it; what tells others that the call is over therefore lives outside the engine.
class PostProcessingInFlight {
  public:
    PostProcessingInFlight();
    ~PostProcessingInFlight();
    PostProcessingInFlight(const PostProcessingInFlight&) = delete;
    PostProcessingInFlight& operator=(const PostProcessingInFlight&) = delete;

    /// Waits until every post-processing thread but the calling one has ended.
    static void waitForOthers();
};

}  // namespace orbitwalk
