#pragma once

// Every operation of the engine opens with a line that names these.
inline constexpr char kEngineVersion[] = "OBW_ENGINE_V_0.31_20_06_2016";
inline constexpr char kEngineDate[] = "Jun 20 2016";
inline constexpr char kEngineTime[] = "18:20:57";
