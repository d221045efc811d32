// The sides that the JPEG cases compare.
#ifndef BENCH_CODECS_JPEG_H
#define BENCH_CODECS_JPEG_H

#include "codec_cases.h"

enum class JpegSampling { s444, s422, s420, grey };

struct JpegVariant {
    bool progressive;
    JpegSampling sampling;
    int quality;
};

// The buffer stays as large as it was made, the stream is its first `bytes`.
struct JpegStream {
    explicit JpegStream(size_t capacity) : buffer(capacity) {}
    std::vector<unsigned char> buffer;
    size_t bytes = 0;
};

// encoder: a function that codes the picture into the stream. decoder: one that decodes the stream into the
// picture, whose size and channels are right. Both keep their codec's object from call to call.
struct JpegSide {
    const char* who;
    std::function<void()> (*encoder)(const SharedPicture&, const JpegVariant&,
                                     const std::shared_ptr<JpegStream>&);
    std::function<void()> (*decoder)(const std::shared_ptr<const JpegStream>&,
                                     const std::shared_ptr<Picture>&);
};

extern const JpegSide quolkitJpeg;
#ifdef QK_HAVE_LIBJPEG
extern const JpegSide libjpegTurbo;
#endif

#endif
