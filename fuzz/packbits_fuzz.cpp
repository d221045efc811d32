// PackBits of any bytes, as a row to be packed and as packed bytes of a row whose length stands in the first
// two of them. What was packed, or unpacks to a whole row, comes back the same.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "qovcore.h"
#include "qovi.h"

typedef std::vector<Qov8u> Bytes;

static void require(bool condition)
{
    if (!condition) std::abort();
}

// Blocks of exactly their bytes: a sanitizer sees what lies beside them.
static bool unpack(const Bytes& packed, Bytes& row, int& pos)
{
    return qoviUnpackBitsRow_TIFF_8u_C1(packed.data(), &pos, static_cast<int>(packed.size()), row.data(),
                                        static_cast<int>(row.size())) == qovStsNoErr;
}

static void roundTrip(const Bytes& row)
{
    const size_t bound = row.size() + (row.size() + 127) / 128;
    Bytes packed(bound);
    int end = 0;
    require(qoviPackBitsRow_TIFF_8u_C1(row.data(), static_cast<int>(row.size()), packed.data(), &end,
                                       static_cast<int>(bound)) == qovStsNoErr);
    packed.resize(static_cast<size_t>(end));
    packed.shrink_to_fit();
    Bytes back(row.size());
    int pos = 0;
    require(unpack(packed, back, pos));
    require(pos == end && back == row);

    // Without its last byte the row does not fit, or is not whole.
    if (end > 1) {
        Bytes less(packed.begin(), packed.end() - 1);
        pos = 0;
        require(!unpack(less, back, pos));
        require(qoviPackBitsRow_TIFF_8u_C1(row.data(), static_cast<int>(row.size()), less.data(), &pos,
                                           end - 1) == qovStsDstFull);
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const QovStatus started = qovInit();
    require(started == qovStsNoErr);
    if (size < 3 || size > 1 << 20) return 0;
    Bytes row(1 + (size_t{data[0]} | size_t{data[1]} << 8));
    const Bytes bytes(data + 2, data + size);
    roundTrip(bytes);
    int pos = 0;
    if (unpack(bytes, row, pos)) {
        require(pos > 0 && static_cast<size_t>(pos) <= bytes.size());
        roundTrip(row);
    }
    return 0;
}
