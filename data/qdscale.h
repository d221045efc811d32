// qdScaleIterator: the scale factor parameter of functions that scale their result.
#ifndef QD_SCALE_H
#define QD_SCALE_H

#include <concepts>

#include "qdfunc.h"
#include "qkparm.h"

class qdScaleIterator : public qkIterator<int> {
public:
    static bool isScaled(const qdFunc& func);

    // For a scaled function the parameter "ScaleFactor" with these values, 0, 1, 2, -1 by default; for any
    // other function a nameless parameter that is 0.
    void init(const qkString& func) { init(func, 0, 1, 2, -1); }
    template <std::same_as<int>... Values>
    requires(sizeof...(Values) >= 1 && sizeof...(Values) <= 6) void init(const qkString& func,
                                                                         Values... values)
    {
        begin(func);
        if (m_scaled)
            (add(values), ...);
        else
            add(0);
    }

    bool scaled() const { return m_scaled; }
    int colmIndex() const override; // the last parameter column

private:
    void begin(const qkString& func);

    bool m_scaled = false;
};

#endif
