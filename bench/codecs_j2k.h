// The sides that the JPEG 2000 cases compare.
#ifndef BENCH_CODECS_J2K_H
#define BENCH_CODECS_J2K_H

#include "codec_cases.h"

struct J2kVariant {
    bool reversible; // 5-3 with the reversible colour transform, or 9-7 with the irreversible one
    double ratio;    // of the picture's bytes to the stream's; 0 keeps everything
    int levels;
};

// encoder: a function that codes the picture into the stream, as a JP2 file of one tile and one layer.
// decoder: one that decodes the stream into the picture, whose size and channels are right.
struct J2kSide {
    const char* who;
    std::function<void()> (*encoder)(const SharedPicture&, const J2kVariant&,
                                     const std::shared_ptr<CodedStream>&);
    std::function<void()> (*decoder)(const std::shared_ptr<const CodedStream>&,
                                     const std::shared_ptr<Picture>&);
};

extern const J2kSide quolkitJ2k;
#ifdef QK_HAVE_OPENJPEG
extern const J2kSide openJpeg;
#endif

#endif
