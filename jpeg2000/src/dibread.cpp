#include "dibread.h"

namespace jpeg2000 {

namespace {

// readRow(y) takes the samples of a row of nOfChannels * width bytes.
template <class ReadRow>
void readRows(DIBInput& in, const RectSize& size, unsigned nOfChannels, ReadRow readRow)
{
    const size_t padding = -(size_t{size.width} * nOfChannels) & 3;
    for (unsigned y = size.height; y-- > 0; in.position += padding) readRow(y);
}

} // namespace

void ReadDIBImageDataDepth_8(DIBInput& in, const ImagePn<int>& image)
{
    readRows(in, image.size, 1, [&](unsigned y) {
        int* row = image.plane(0).row(y);
        for (unsigned x = 0; x < image.size.width; x++) row[x] = in.Read8u();
    });
}

void ReadDIBImageDataDepth_24(DIBInput& in, const ImagePn<int>& image)
{
    readRows(in, image.size, 3, [&](unsigned y) {
        int* red = image.plane(0).row(y);
        int* green = image.plane(1).row(y);
        int* blue = image.plane(2).row(y);
        for (unsigned x = 0; x < image.size.width; x++) {
            blue[x] = in.Read8u();
            green[x] = in.Read8u();
            red[x] = in.Read8u();
        }
    });
}

} // namespace jpeg2000
