#include "qkctrl87.h"

#include <cpuid.h>
#include <immintrin.h>

namespace {

// The six exceptions in the order of their bits, from bit 0 in all words but the masks of MXCSR. A status
// text with a '?' is bad; an inexact result is not.
struct ExceptionName {
    char mark;
    const char* name;
};
const ExceptionName exceptionNames[] = {
    {'?', "Invalid "},  {'?', "Denormal "},  {'?', "Zerodivide "},
    {'?', "Overflow "}, {'?', "Underflow "}, {'_', "Inexact "},
};
constexpr unsigned allExceptions = 0x3F;
constexpr unsigned inexact = 0x20;
constexpr int ssxMaskShift = 7; // of the exception masks in MXCSR

struct FieldName {
    unsigned value;
    const char* name;
};
// Rounding in both control words: the same codes at different places.
const FieldName roundingNames[] = {{0, "Near "}, {1, "Down "}, {2, "Up "}, {3, "Zero "}};
constexpr int roundingShift87 = 10;
constexpr int roundingShiftSSX = 13;
const FieldName precisionNames[] = {{0, "24 "}, {2, "53 "}, {3, "64 "}};
constexpr int precisionShift = 8;

template <int N>
const char* fieldName(const FieldName (&names)[N], unsigned value)
{
    for (const FieldName& row : names) {
        if (row.value == value) return row.name;
    }
    return "";
}

qkString statusText(unsigned word)
{
    qkString text;
    for (const ExceptionName& row : exceptionNames) {
        if (word & 1) text << row.mark << row.name;
        word >>= 1;
    }
    return text.empty() ? qkString("Ok") : text;
}

qkString maskText(unsigned masks)
{
    qkString text;
    for (const ExceptionName& row : exceptionNames) {
        if (masks & 1) text << row.name;
        masks >>= 1;
    }
    return text;
}

const char* const noSSX = "cpu has not SSX extension";

// AVX counts only if the system saves the registers, which XCR0 tells.
bool hasAVX()
{
    unsigned eax, ebx, ecx, edx;
    if (!__get_cpuid(1, &eax, &ebx, &ecx, &edx)) return false;
    const unsigned wanted = bit_OSXSAVE | bit_AVX;
    if ((ecx & wanted) != wanted) return false;
    unsigned enabled, high;
    asm volatile("xgetbv" : "=a"(enabled), "=d"(high) : "c"(0));
    const unsigned xmmAndYmm = 6;
    return (enabled & xmmAndYmm) == xmmAndYmm;
}

} // namespace

unsigned ts87Base::getCW() const
{
    unsigned short word;
    asm volatile("fnstcw %0" : "=m"(word));
    return word;
}

unsigned ts87Base::getSW() const
{
    unsigned short word;
    asm volatile("fnstsw %0" : "=m"(word));
    return word;
}

void ts87Base::set(unsigned value, unsigned mask)
{
    const auto word = static_cast<unsigned short>((getCW() & ~mask) | (value & mask));
    asm volatile("fldcw %0" : : "m"(word));
}

void ts87Base::clear()
{
    asm volatile("fnclex");
}

void ts87Base::enableExceptions()
{
    set(0, allExceptions);
}

void ts87Base::disableExceptions()
{
    set(allExceptions, allExceptions);
}

void ts87Base::disableInexactException()
{
    set(inexact, inexact);
}

void ts87Base::setDefault()
{
    clear();
    set(Exception | Precision | Rounding, 0xF3F);
}

qkString ts87Base::strSW(unsigned word)
{
    return statusText(word);
}

qkString ts87Base::strCW(unsigned word)
{
    qkString text(fieldName(roundingNames, word >> roundingShift87 & 3));
    text << fieldName(precisionNames, word >> precisionShift & 3);
    return text + maskText(word);
}

tsSSXBase::tsSSXBase() : m_exists(false)
{
    unsigned eax, ebx, ecx, edx;
    m_exists = __get_cpuid(1, &eax, &ebx, &ecx, &edx) && (edx & bit_SSE);
}

unsigned tsSSXBase::get() const
{
    return m_exists ? _mm_getcsr() : 0;
}

void tsSSXBase::set(unsigned value, unsigned mask)
{
    if (m_exists) _mm_setcsr((get() & ~mask) | (value & mask));
}

void tsSSXBase::enableExceptions()
{
    set(0, Exception);
}

void tsSSXBase::disableExceptions()
{
    set(Exception, Exception);
}

void tsSSXBase::disableInexactException()
{
    set(inexact << ssxMaskShift, inexact << ssxMaskShift);
}

// All fields but the one at 0x40, denormals as zeros; the status flags become 0.
void tsSSXBase::setDefault()
{
    set(Rounding | Exception | FlushZero, 0xFFBF);
}

void tsSSXBase::destroy()
{
    qk_destroy_ssx();
}

qkString tsSSXBase::strExceptionState(unsigned word) const
{
    return m_exists ? statusText(word) : qkString(noSSX);
}

qkString tsSSXBase::strCW(unsigned word) const
{
    if (!m_exists) return noSSX;
    return qkString(fieldName(roundingNames, word >> roundingShiftSSX & 3)) + maskText(word >> ssxMaskShift);
}

void qk87::init()
{
    m_control = m_status = 0;
    m_base->setDefault();
}

void qk87::clear()
{
    m_control = m_status = 0;
    m_base->clear();
}

void qk87::start()
{
    m_base->clear();
}

// Before anything that clears or waits: a division by zero whose signal has not come yet shows only here.
void qk87::stop()
{
    m_status |= m_base->getSW();
    m_control |= m_base->getCW();
}

qkString qk87::strSW() const
{
    return m_base->strSW(m_status);
}

qkString qk87::strCW() const
{
    return m_base->strCW(m_control);
}

bool qk87::badStatus() const
{
    return strSW().contains("?");
}

void qkSSX::init()
{
    m_status = 0;
    m_base->destroy();
    m_base->setDefault();
}

void qkSSX::clear()
{
    m_status = 0;
    m_base->destroy();
    m_base->set(0, allExceptions);
}

void qkSSX::collect()
{
    m_status |= m_base->get();
}

qkString qkSSX::strExceptionState() const
{
    return m_base->strExceptionState(m_status);
}

qkString qkSSX::strCW() const
{
    return m_base->strCW(m_status);
}

bool qkSSX::badStatus() const
{
    return strExceptionState().contains("?");
}

// Zeros compared with themselves give ones, and raise no flag on the way.
void qk_destroy_ssx()
{
    static const bool avx = hasAVX();
#define QK_COPY_TO_ALL(move, reg)                                                                            \
    ".irp n,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15\n\t" move " %%" reg "0, %%" reg "\\n\n\t.endr\n\t"
#define QK_VECTOR_CLOBBERS                                                                                   \
    "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6", "xmm7", "xmm8", "xmm9", "xmm10", "xmm11",        \
        "xmm12", "xmm13", "xmm14", "xmm15"
    if (avx) {
        asm volatile("vxorps %%ymm0, %%ymm0, %%ymm0\n\t"
                     "vcmpeqps %%ymm0, %%ymm0, %%ymm0\n\t" QK_COPY_TO_ALL("vmovaps", "ymm") "vzeroupper"
                     :
                     :
                     : QK_VECTOR_CLOBBERS);
    } else {
        asm volatile("xorps %%xmm0, %%xmm0\n\t"
                     "cmpeqps %%xmm0, %%xmm0\n\t" QK_COPY_TO_ALL("movaps", "xmm")
                     :
                     :
                     : QK_VECTOR_CLOBBERS);
    }
#undef QK_VECTOR_CLOBBERS
#undef QK_COPY_TO_ALL
}
