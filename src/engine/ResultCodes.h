#pragma once

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
