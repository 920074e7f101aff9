#pragma once

#include "common/Log.h"

constexpr char kLogTag[] = "ORBITWALK_ENGINE KALMAN_STABILIZATION";
