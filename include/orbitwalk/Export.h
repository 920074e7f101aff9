#pragma once

/// Marks a declaration that the engine library exports; everything else in it is hidden.
#define OBW_API __attribute__((visibility("default")))
