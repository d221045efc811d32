// What every family of kernels shares: a family is a struct of function pointers, and each level has one
// filled object of it. Kernel units include C headers, intrinsics and the headers of this folder only: an
// inline function of a shared header, compiled for v4, may be the copy that the linker keeps for all.
#ifndef QOV_KERNELS_FAMILY_H
#define QOV_KERNELS_FAMILY_H

#include "qovdefs.h"

#include <assert.h>
#include <stddef.h>

// Helpers of the kernel headers, functions and members: internal to each unit, and never a call.
#define QOV_INLINE static inline __attribute__((always_inline))
#define QOV_INLINE_MEMBER inline __attribute__((always_inline))

// Declares the object of a family at each level; to be used inside namespace qov.
// clang-format off
#define QOV_DECLARE_FAMILY(Type, object)     \
    namespace px { extern const Type object; } \
    namespace v2 { extern const Type object; } \
    namespace v3 { extern const Type object; } \
    namespace v4 { extern const Type object; }
// clang-format on

namespace qov {

// The element `bytes` bytes behind p: how rows are stepped.
template <class T>
QOV_INLINE T* atByte(T* p, ptrdiff_t bytes)
{
    return (T*)((char*)p + bytes);
}

} // namespace qov

#endif
