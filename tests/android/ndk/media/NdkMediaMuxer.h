#pragma once

#include "NdkMediaCodec.h"

extern "C" {
typedef struct AMediaMuxer AMediaMuxer;
typedef enum { AMEDIAMUXER_OUTPUT_FORMAT_MPEG_4 = 0 } OutputFormat;
AMediaMuxer* AMediaMuxer_new(int fd, OutputFormat);
media_status_t AMediaMuxer_delete(AMediaMuxer*);
ssize_t AMediaMuxer_addTrack(AMediaMuxer*, const AMediaFormat*);
media_status_t AMediaMuxer_start(AMediaMuxer*);
media_status_t AMediaMuxer_stop(AMediaMuxer*);
media_status_t AMediaMuxer_writeSampleData(AMediaMuxer*, size_t track, const uint8_t* data,
                                           const AMediaCodecBufferInfo*);
}
