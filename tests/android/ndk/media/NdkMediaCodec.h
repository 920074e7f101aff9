#pragma once

#include "NdkMediaFormat.h"

extern "C" {
typedef struct AMediaCodec AMediaCodec;
typedef struct AMediaCrypto AMediaCrypto;
typedef struct ANativeWindow ANativeWindow;
typedef struct AMediaCodecBufferInfo {
    int32_t offset;
    int32_t size;
    int64_t presentationTimeUs;
    uint32_t flags;
} AMediaCodecBufferInfo;
enum {
    AMEDIACODEC_BUFFER_FLAG_CODEC_CONFIG = 2,
    AMEDIACODEC_BUFFER_FLAG_END_OF_STREAM = 4,
    AMEDIACODEC_CONFIGURE_FLAG_ENCODE = 1,
    AMEDIACODEC_INFO_OUTPUT_BUFFERS_CHANGED = -3,
    AMEDIACODEC_INFO_OUTPUT_FORMAT_CHANGED = -2,
    AMEDIACODEC_INFO_TRY_AGAIN_LATER = -1
};
AMediaCodec* AMediaCodec_createEncoderByType(const char* mime);
media_status_t AMediaCodec_delete(AMediaCodec*);
media_status_t AMediaCodec_configure(AMediaCodec*, const AMediaFormat*, ANativeWindow*,
                                     AMediaCrypto*, uint32_t flags);
media_status_t AMediaCodec_start(AMediaCodec*);
AMediaFormat* AMediaCodec_getInputFormat(AMediaCodec*);
AMediaFormat* AMediaCodec_getOutputFormat(AMediaCodec*);
ssize_t AMediaCodec_dequeueInputBuffer(AMediaCodec*, int64_t timeoutUs);
uint8_t* AMediaCodec_getInputBuffer(AMediaCodec*, size_t index, size_t* size);
media_status_t AMediaCodec_queueInputBuffer(AMediaCodec*, size_t index, off_t offset, size_t size,
                                            uint64_t timeUs, uint32_t flags);
ssize_t AMediaCodec_dequeueOutputBuffer(AMediaCodec*, AMediaCodecBufferInfo*, int64_t timeoutUs);
uint8_t* AMediaCodec_getOutputBuffer(AMediaCodec*, size_t index, size_t* size);
media_status_t AMediaCodec_releaseOutputBuffer(AMediaCodec*, size_t index, bool render);
}
