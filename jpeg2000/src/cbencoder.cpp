#include "cbencoder.h"
#include "basics.h"

namespace jpeg2000 {

CBEncoder::CBEncoder(int guardBits, int styleFlags, QoviMQTermination termination)
    : codeStyleFlags(styleFlags), mqTermination(termination), nOfGuardBits(guardBits)
{
    qoviEncodeInitAlloc_JPEG2K(&state, {64, 64});
    if (!state) fail<MemoryException{0}>();
}

CBEncoder::~CBEncoder()
{
    qoviEncodeFree_JPEG2K(state);
}

void CBEncoder::Encode(const ImageCoreC<int, 1u>& band, const Rect& rect, QoviWTSubband subband,
                       int dynamicRange, int shift, ECodeBlock& codeBlock)
{
    const ImageCore<int> block = band.at(rect.x, rect.y);
    const int step = static_cast<int>(block.step);
    const QoviSize size = rect;
    if (shift > 0) qoviLShiftC_32s_C1IR(static_cast<unsigned>(shift), block.data, step, size);
    if (shift < 0) qoviRShiftC_32s_C1IR(static_cast<unsigned>(-shift), block.data, step, size);
    qoviComplement_32s_C1IR(block.data, step, size);

    const int magnBits = Max(0, Min(31, 31 - shift));
    int sfBits = 0, nOfPasses = 0, nOfTermPasses = 0;
    qoviEncodeLoadCodeBlock_JPEG2K_32s_C1R(block.data, step, size, state, subband, magnBits, mqTermination,
                                           qoviMQRateSafe, codeStyleFlags, &sfBits, &nOfPasses,
                                           &nOfTermPasses);
    codeBlock.SetNOfZeroBits(dynamicRange + nOfGuardBits - sfBits - 1);

    for (int isNotFinish = 1; isNotFinish;) {
        int given = bufferSize;
        qoviEncodeStoreBits_JPEG2K_1u(buffer, &given, state, &isNotFinish);
        stream.Write(buffer, static_cast<unsigned>(given));
    }
    codeBlock.data.Free();
    codeBlock.data.Alloc(stream.size);
    stream.Read(codeBlock.data, stream.size);

    for (int pass = 0; pass < nOfPasses; pass++) {
        int rate = 0;
        double dist = 0;
        qoviEncodeGetRate_JPEG2K(state, pass, &rate);
        qoviEncodeGetDist_JPEG2K(state, pass, &dist);
        codeBlock.PushPass(rate, dist);
    }
}

} // namespace jpeg2000
