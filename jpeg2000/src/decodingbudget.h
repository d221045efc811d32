// How much memory the tiles of a codestream may take together. A header of a few bytes can ask for any number
// of precincts and samples, and storage is handed out on credit by the system: so it is counted before.
#ifndef JPEG2000_DECODINGBUDGET_H
#define JPEG2000_DECODINGBUDGET_H

#include "diagn.h"

#include <cstdint>

namespace jpeg2000 {

class DecodingBudget {
public:
    void Take(uint64_t bytes)
    {
        if (bytes > m_left) fail<MemoryException{0}>();
        m_left -= bytes;
    }

private:
    uint64_t m_left = 1ull << 30;
};

} // namespace jpeg2000

#endif
