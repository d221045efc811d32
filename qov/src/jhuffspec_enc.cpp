// The tables that Huffman encoders code with: set-up from a DHT segment's bytes, and the making of such bytes
// from statistics.
#include "huffcheck.h"
#include "qovcore.h"

#include <algorithm>

using namespace qov;

namespace {

// Do the counts of codes by length make a table?
bool isTable(const Qov8u* pBits)
{
    int sum = 0, left = 1; // unused codes of a length
    for (int i = 0; i < 16; i++) {
        left = 2 * left - pBits[i];
        sum += pBits[i];
        if (left < 0) return false;
    }
    return sum <= 256;
}

// T.81, annex C.
void fill(const Qov8u* pBits, const Qov8u* pVals, HuffEncSpec* spec)
{
    const HuffEncCode none = {0, HuffEncCode::none};
    for (HuffEncCode& code : spec->symbols) code = none;
    Qov32u bits = 0;
    for (Qov32u length = 1; length <= 16; length++, bits <<= 1)
        for (int n = pBits[length - 1]; n > 0; n--) spec->symbols[*pVals++] = {bits++, length};

    for (Qov32u run = 0; run < 16; run++)
        for (Qov32u size = 1; size <= 16; size++) {
            const HuffEncCode code = size < 16 ? spec->symbols[16 * run + size] : none;
            spec->coefficients[16 * run + 16 - size] =
                code.length == none.length ? none : HuffEncCode{code.bits << size, code.length + size};
        }
    spec->mark = HuffEncSpec::markValue;
}

// T.81, figures K.1 to K.4. Symbol 256 takes the code that shall stay free.
class CodeLengths {
public:
    explicit CodeLengths(const int* counts) : m_counts(counts)
    {
        for (int i = 0; i < 256; i++) {
            m_weight[i] = Qov32u(counts[i]);
            if (counts[i]) m_live[m_liveCount++] = i;
        }
        m_weight[256] = 1;
        m_live[m_liveCount++] = 256;
        for (int i = 0; i <= 256; i++) m_next[i] = -1;
    }

    // Joins the two lightest trees until one is left. Of equal ones the one with the larger symbol goes
    // first.
    void find()
    {
        while (m_liveCount > 1) {
            const int first = takeLightest(), second = takeLightest();
            m_weight[first] += m_weight[second];
            m_live[m_liveCount++] = first;
            int last = first;
            for (int s = first; s >= 0; s = m_next[s]) {
                m_length[s]++;
                last = s;
            }
            m_next[last] = second;
            for (int s = second; s >= 0; s = m_next[s]) m_length[s]++;
        }
    }

    // How many codes there are of each length, with 16 bits at most and without the one of symbol 256.
    void countTo(Qov8u* pBits) const
    {
        int count[257] = {};
        for (int length : m_length) count[length]++;
        for (int i = 256; i > 16;) {
            if (count[i] == 0) {
                i--;
                continue;
            }
            // Two neighbours of length i: one goes up by a bit, the other beside a code of length j.
            int j = i - 2;
            while (count[j] == 0) j--;
            count[i] -= 2;
            count[i - 1]++;
            count[j + 1] += 2;
            count[j]--;
        }
        count[0] = 0;
        int longest = 16;
        while (longest > 0 && count[longest] == 0) longest--;
        if (longest > 0) count[longest]--;
        for (int i = 0; i < 16; i++) pBits[i] = Qov8u(count[i + 1]);
    }

    // The symbols by length, those of one length by value. pBits: what countTo made. Where it shortened
    // codes, the more frequent ones of a former length come first.
    void sortTo(const Qov8u* pBits, Qov8u* pVals) const
    {
        Qov8u* end = pVals;
        for (int s = 0; s < 256; s++)
            if (m_length[s] > 0) *end++ = Qov8u(s);
        std::sort(pVals, end, [this](int a, int b) {
            if (m_length[a] != m_length[b]) return m_length[a] < m_length[b];
            if (m_counts[a] != m_counts[b]) return Qov32u(m_counts[a]) > Qov32u(m_counts[b]);
            return a < b;
        });
        for (int i = 0; i < 16; pVals += pBits[i++]) std::sort(pVals, pVals + pBits[i]);
    }

private:
    int takeLightest()
    {
        int best = 0;
        for (int i = 1; i < m_liveCount; i++) {
            const int a = m_live[i], b = m_live[best];
            if (m_weight[a] < m_weight[b] || (m_weight[a] == m_weight[b] && a > b)) best = i;
        }
        const int symbol = m_live[best];
        m_live[best] = m_live[--m_liveCount];
        return symbol;
    }

    const int* m_counts;
    Qov64u m_weight[257]; // of the tree whose first symbol it is
    int m_length[257] = {};
    int m_next[257]; // the symbols of a tree, as a list
    int m_live[257]; // the first symbols of all trees
    int m_liveCount = 0;
};

} // namespace

QovStatus qoviEncodeHuffmanSpecGetBufSize_JPEG_8u(int* pSize)
{
    if (!pSize) return qovStsNullPtr;
    *pSize = int(sizeof(HuffEncSpec));
    return qovStsNoErr;
}

QovStatus qoviEncodeHuffmanSpecInit_JPEG_8u(const Qov8u* pBits, const Qov8u* pVals,
                                            QoviEncodeHuffmanSpec* pSpec)
{
    if (anyNull(pBits, pVals, pSpec)) return qovStsNullPtr;
    if (!isTable(pBits)) return qovStsTable;
    fill(pBits, pVals, inside(pSpec));
    return qovStsNoErr;
}

QovStatus qoviEncodeHuffmanSpecInitAlloc_JPEG_8u(const Qov8u* pBits, const Qov8u* pVals,
                                                 QoviEncodeHuffmanSpec** ppSpec)
{
    if (anyNull(pBits, pVals, ppSpec)) return qovStsNullPtr;
    *ppSpec = nullptr;
    if (!isTable(pBits)) return qovStsTable;
    void* const block = qovMalloc(int(sizeof(HuffEncSpec)));
    if (!block) return qovStsNoMemory;
    *ppSpec = static_cast<QoviEncodeHuffmanSpec*>(block);
    fill(pBits, pVals, inside(*ppSpec));
    return qovStsNoErr;
}

QovStatus qoviEncodeHuffmanSpecFree_JPEG_8u(QoviEncodeHuffmanSpec* pSpec)
{
    if (!pSpec) return qovStsNullPtr;
    if (!marked(inside(pSpec))) return qovStsContext;
    qovFree(pSpec);
    return qovStsNoErr;
}

QovStatus qoviEncodeHuffmanRawTableInit_JPEG_8u(const int pStatistics[256], Qov8u* pBits, Qov8u* pVals)
{
    if (anyNull(pStatistics, pBits, pVals)) return qovStsNullPtr;
    CodeLengths lengths(pStatistics);
    lengths.find();
    lengths.countTo(pBits);
    lengths.sortTo(pBits, pVals);
    return qovStsNoErr;
}
