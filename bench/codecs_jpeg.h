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

// encoder: a function that codes the picture into the stream. decoder: one that decodes the stream into the
// picture, whose size and channels are right. Both keep their codec's object from call to call.
struct JpegSide {
    const char* who;
    std::function<void()> (*encoder)(const SharedPicture&, const JpegVariant&,
                                     const std::shared_ptr<CodedStream>&);
    std::function<void()> (*decoder)(const std::shared_ptr<const CodedStream>&,
                                     const std::shared_ptr<Picture>&);
};

extern const JpegSide quolkitJpeg;
#ifdef QK_HAVE_LIBJPEG
extern const JpegSide libjpegTurbo;
#endif

#endif
