#pragma once

#include <atomic>
#include <cstdint>

/// States of the engine.
///
///     CREATED --init--> INITIALIZING --> IDLE        (init: from any state)
///     IDLE, DONE --start--> START_PARAMS --> IDLE --> START_SETUP --> IDLE
///     IDLE --setFrameInfo--> FRAME --> IDLE           (stays FRAME when the hand-over fails)
///     IDLE --stop--> STOPPING --post-processing--> DONE
///     IDLE --cancel--> CANCELLING --> DONE
///     any --deinit--> DEINIT --> IDLE, then the instance is deleted
///
/// Left alone deliberately, until init or deinit: START_PARAMS after a start without a stream or a
/// metadata buffer, FRAME after a failed hand-over, STOPPING after a stop that failed half-way.
enum OBWEngineState : int {
    OBW_STATE_CREATED = -1,
    OBW_STATE_INITIALIZING = 0,
    OBW_STATE_START_PARAMS = 1,  ///< Start takes over the parameters.
    OBW_STATE_FRAME = 3,         ///< A frame is being handed over.
    OBW_STATE_START_SETUP = 4,   ///< Start creates the working objects.
    OBW_STATE_STOPPING = 5,      ///< Stop and post-processing.
    OBW_STATE_CANCELLING = 6,
    OBW_STATE_DONE = 7,  ///< A capture ended, one way or the other.
    OBW_STATE_DEINIT = 8,
    OBW_STATE_IDLE = 9,  ///< After init, after start, between frames.
};

/// Results of the engine's operations. The entry points fold them to 1 and -1; the value itself is
/// seen only in the log. 1 and 3 are not used.
enum OBWResult : int {
    OBW_RESULT_OK = 0,
    OBW_RESULT_TEMP_DIR_ERROR = 2,    ///< The temporary directory was not removed or not created.
    OBW_RESULT_INVALID_STATE = 4,     ///< Not allowed in the engine's present state.
    OBW_RESULT_INVALID_PARAM = 5,     ///< A null pointer, a bad size, a bad number of frames.
    OBW_RESULT_POSTPROCESS_FAIL = 6,  ///< Smoothing or filling of the motion record failed.
    OBW_RESULT_FAIL = 7,              ///< A component failed.
};

namespace orbitwalk {

/// Whether a start is allowed: before the first capture, within one (it begins anew), after one.
constexpr bool acceptsStart(int state) {
    return state == OBW_STATE_DONE || state == OBW_STATE_IDLE;
}

/// Where the engine stands. Written by the operation that has its turn, but for cancel's flag and
/// for what a cleanup without a turn resets; logged by all of them before they wait for theirs.
struct EngineStatus {
    std::atomic<std::int32_t> engineState = OBW_STATE_CREATED;
    std::atomic<std::int32_t> totalNumFrames = 0;  ///< Frames handed over since the last start.
    std::atomic<std::int32_t> numCapture = 0;      ///< Captures started.
    std::atomic<std::int32_t> progress = 0;
    std::atomic<bool> cancelCmdReceived = false;
};

}  // namespace orbitwalk
