#pragma once

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

/// Whether a start is allowed: before the first capture, within one (it begins anew), after one.
constexpr bool acceptsStart(int state) {
    return state == OBW_STATE_DONE || state == OBW_STATE_IDLE;
}
