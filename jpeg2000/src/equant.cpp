#include "equant.h"

#include "qovi.h"
#include "qovs.h"

namespace jpeg2000 {

namespace {

void scale(ImageC<float, 1u>& band, const QuantValue& quant, int bits)
{
    if (!band.data) return;
    qoviMulC_32f_C1IR(static_cast<float>(1 / stepOf(quant, bits)), band.data, static_cast<int>(band.step),
                      band.size);
}

// The same memory holds floats before and integers after.
void convert(ImageC<float, 1u>& band, ImageC<int, 1u>& indices)
{
    for (unsigned y = 0; band.data && y < band.size.height; y++)
        qovsConvert_32f32s_Sfs(band.row(y), reinterpret_cast<int*>(band.row(y)),
                               static_cast<int>(band.size.width), qovRndNear, 0);
    indices.TakeStorage(band);
}

} // namespace

void fillQuantComponent(const CmdOptions& options, unsigned nOfLevels, int bits, QuantComponent& quant)
{
    const bool isDerived = !options.isReversible && options.isDerivedQuant;
    quant.ll = isDerived ? QuantValue{options.mantissa, options.exponent} : QuantValue{0, bits};
    quant.triplets.Free();
    quant.triplets.Alloc(nOfLevels);
    for (unsigned i = 0; i < nOfLevels; i++) {
        if (isDerived) {
            const int exponent = options.exponent - static_cast<int>(nOfLevels - 1 - i);
            const QuantValue all{options.mantissa, exponent};
            quant.triplets[i] = {all, all, all};
        } else {
            quant.triplets[i] = {{0, bits + 1}, {0, bits + 1}, {0, bits + 2}};
        }
    }
}

void quantise(SBTree<float>& bands, const QuantComponent& quant, bool isDerived, int bits,
              SBTree<int>& indices)
{
    indices.nOfLevels = bands.nOfLevels;
    indices.triplets.Free();
    indices.triplets.Alloc(bands.nOfLevels);
    if (isDerived) {
        for (unsigned i = 0; i < bands.nOfLevels; i++) {
            scale(bands.triplets[i].hl, quant.triplets[i].hl, bits);
            scale(bands.triplets[i].lh, quant.triplets[i].lh, bits);
            scale(bands.triplets[i].hh, quant.triplets[i].hh, bits);
        }
        scale(bands.ll, quant.ll, bits);
    }
    for (unsigned i = 0; i < bands.nOfLevels; i++) {
        convert(bands.triplets[i].hl, indices.triplets[i].hl);
        convert(bands.triplets[i].lh, indices.triplets[i].lh);
        convert(bands.triplets[i].hh, indices.triplets[i].hh);
    }
    convert(bands.ll, indices.ll);
}

} // namespace jpeg2000
