// Types, enumerations and status codes that the headers of qov share. Plain C; no function stands here,
// so that a program may speak of the library's types without linking it.
#ifndef QOV_QOVDEFS_H
#define QOV_QOVDEFS_H

#include <stdint.h>

#ifdef __cplusplus
#define QOV_API extern "C"
#else
#define QOV_API extern
#endif

typedef uint8_t Qov8u;
typedef uint16_t Qov16u;
typedef uint32_t Qov32u;
typedef uint64_t Qov64u;
typedef int8_t Qov8s;
typedef int16_t Qov16s;
typedef int32_t Qov32s;
typedef int64_t Qov64s;
typedef float Qov32f;
typedef double Qov64f;

// An enumeration kept in an int, in C++ as in C: any int may come in from a caller.
#ifdef __cplusplus
#define QOV_IN_INT : int
#else
#define QOV_IN_INT
#endif

// Complex elements: two parts of the plain type.
// clang-format off
typedef struct { Qov8s re, im; } Qov8sc;
typedef struct { Qov16s re, im; } Qov16sc;
typedef struct { Qov16u re, im; } Qov16uc;
typedef struct { Qov32s re, im; } Qov32sc;
typedef struct { Qov64s re, im; } Qov64sc;
typedef struct { Qov32f re, im; } Qov32fc;
typedef struct { Qov64f re, im; } Qov64fc;

typedef struct { int width, height; } QovSize;
typedef struct { int x, y; } QovPoint;
typedef struct { int x, y, width, height; } QovRect;
// clang-format on
typedef QovSize QoviSize;
typedef QovPoint QoviPoint;
typedef QovRect QoviRect;

// What every primitive answers: 0 done, negative an error, positive a warning.
typedef int QovStatus;

enum {
    qovStsNoErr = 0,
    qovStsPartial = 1,         // done for the part that could be done
    qovStsMarker = 2,          // a marker or the end of the data stood before the bits that were needed
    qovStsNotSupportedCpu = 3, // the processor can't run the level asked for; the best possible one is active
    qovStsOneThread = 4,       // more threads were asked for than the library runs
    qovStsUnknownCpu = 36,     // the processor does not tell
    qovStsUnknownCacheSize = 37, // the processor tells of no data cache
    qovStsErr = -1,
    qovStsNotSupported = -2, // there is no library
    qovStsNoMemory = -3,
    qovStsBadArg = -4,
    qovStsSize = -5,
    qovStsStep = -6,
    qovStsRange = -7,
    qovStsNullPtr = -8,
    qovStsContext = -9,
    qovStsDstFull = -10,
    qovStsTable = -11,
    qovStsData = -12,
    qovStsDamagedBlock = -112
};

// Instruction-set levels of the library, as the x86-64 psABI numbers them.
typedef enum QOV_IN_INT {
    qovCpuUnknown = 0,
    qovCpuPx = 1, // plain scalar code
    qovCpuV2 = 2, // SSE4.2
    qovCpuV3 = 3, // AVX2
    qovCpuV4 = 4  // AVX-512 F, BW, CD, DQ, VL
} QovCpuType;

// Processor features that a level's kernels may use.
enum {
    QOV_CPU_SSE3 = 1 << 0,
    QOV_CPU_SSSE3 = 1 << 1,
    QOV_CPU_SSE41 = 1 << 2,
    QOV_CPU_SSE42 = 1 << 3,
    QOV_CPU_POPCNT = 1 << 4,
    QOV_CPU_CX16 = 1 << 5,
    QOV_CPU_AVX = 1 << 6,
    QOV_CPU_F16C = 1 << 7,
    QOV_CPU_FMA = 1 << 8,
    QOV_CPU_MOVBE = 1 << 9,
    QOV_CPU_LZCNT = 1 << 10,
    QOV_CPU_BMI1 = 1 << 11,
    QOV_CPU_BMI2 = 1 << 12,
    QOV_CPU_AVX2 = 1 << 13,
    QOV_CPU_AVX512F = 1 << 14,
    QOV_CPU_AVX512BW = 1 << 15,
    QOV_CPU_AVX512CD = 1 << 16,
    QOV_CPU_AVX512DQ = 1 << 17,
    QOV_CPU_AVX512VL = 1 << 18,
    QOV_CPU_LAHF = 1 << 19
};

// Which filter output comes first in a row of a wavelet transform.
typedef enum QOV_IN_INT { qoviWTFilterFirstLow = 0, qoviWTFilterFirstHigh = 1 } QoviWTFilterFirst;
typedef enum QOV_IN_INT { qovRndZero = 0, qovRndNear = 1 } QovRoundMode;
typedef enum QOV_IN_INT { qovAlgHintNone = 0, qovAlgHintFast = 1, qovAlgHintAccurate = 2 } QovHintAlgorithm;
typedef enum QOV_IN_INT {
    qovCmpLess = 0,
    qovCmpLessEq = 1,
    qovCmpEq = 2,
    qovCmpGreaterEq = 3,
    qovCmpGreater = 4
} QovCmpOp;
enum {
    QOV_FFT_DIV_FWD_BY_N = 1,
    QOV_FFT_DIV_INV_BY_N = 2,
    QOV_FFT_DIV_BY_SQRTN = 4,
    QOV_FFT_NODIV_BY_ANY = 8
};

// Who the library is. Texts live as long as the program.
typedef struct {
    int major, minor, build;
    const char* name;      // "qovj"
    const char* version;   // "2.0"
    const char* buildDate; // "Nov 22 2026"
} QovLibraryVersion;

#endif
