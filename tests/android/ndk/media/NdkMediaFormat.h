#pragma once

// What the sample uses of an NDK's media headers, as their documentation declares it.
#include <sys/types.h>

#include <cstdint>

extern "C" {
typedef enum { AMEDIA_OK = 0, AMEDIA_ERROR_UNKNOWN = -10000 } media_status_t;

typedef struct AMediaFormat AMediaFormat;
extern const char* AMEDIAFORMAT_KEY_BIT_RATE;
extern const char* AMEDIAFORMAT_KEY_COLOR_FORMAT;
extern const char* AMEDIAFORMAT_KEY_FRAME_RATE;
extern const char* AMEDIAFORMAT_KEY_HEIGHT;
extern const char* AMEDIAFORMAT_KEY_I_FRAME_INTERVAL;
extern const char* AMEDIAFORMAT_KEY_MIME;
extern const char* AMEDIAFORMAT_KEY_SLICE_HEIGHT;
extern const char* AMEDIAFORMAT_KEY_STRIDE;
extern const char* AMEDIAFORMAT_KEY_WIDTH;
AMediaFormat* AMediaFormat_new();
media_status_t AMediaFormat_delete(AMediaFormat*);
bool AMediaFormat_getInt32(AMediaFormat*, const char* name, int32_t* out);
void AMediaFormat_setInt32(AMediaFormat*, const char* name, int32_t value);
void AMediaFormat_setFloat(AMediaFormat*, const char* name, float value);
void AMediaFormat_setString(AMediaFormat*, const char* name, const char* value);
}
