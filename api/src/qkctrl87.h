// The floating-point state around a measurement: x87 control and status words (ts87Base, qk87) and MXCSR
// (tsSSXBase, qkSSX). A known state is set before, the status bits are collected after, and what the measured
// function left behind is told in words.
#ifndef QK_CTRL87_H
#define QK_CTRL87_H

#include "qkstring.h"

class ts87Base {
public:
    static constexpr unsigned Precision = 0x200; // 53 bits
    static constexpr unsigned Rounding = 0;      // to nearest
    static constexpr unsigned Exception = 0x3B;  // all masked but Zerodivide

    unsigned getCW() const;
    unsigned getSW() const;
    void set(unsigned value, unsigned mask);
    void clear(); // fnclex
    void enableExceptions();
    void disableExceptions();
    void disableInexactException();
    void setDefault();
    static qkString strSW(unsigned word);
    static qkString strCW(unsigned word);
};

class tsSSXBase {
public:
    static constexpr unsigned Rounding = 0;
    static constexpr unsigned Exception = 0x1F80; // all masked
    static constexpr unsigned FlushZero = 0x8000;

    tsSSXBase(); // asks the processor
    explicit tsSSXBase(bool exists) : m_exists(exists) {}
    bool exists() const { return m_exists; }
    unsigned get() const;
    void set(unsigned value, unsigned mask);
    void enableExceptions();
    void disableExceptions();
    void disableInexactException();
    void setDefault();
    // Fills every vector register with ones, so that a function which relies on what one held before is found
    // out.
    static void destroy();
    qkString strExceptionState(unsigned word) const;
    qkString strCW(unsigned word) const;

private:
    bool m_exists;
};

// Collects x87 status over the measurements of one parameter set.
class qk87 {
public:
    explicit qk87(ts87Base* base) : m_base(base) {}
    unsigned getCW() const { return m_control; } // what stop() has collected
    unsigned getSW() const { return m_status; }
    void init();
    void clear();
    void start();
    void stop();
    qkString strSW() const;
    qkString strCW() const;
    bool badStatus() const;

private:
    ts87Base* m_base;
    unsigned m_control = 0;
    unsigned m_status = 0;
};

// Collects MXCSR status over the measurements of one parameter set.
class qkSSX {
public:
    explicit qkSSX(tsSSXBase* base) : m_base(base) {}
    unsigned get() const { return m_status; } // what collect() has collected
    void init();
    void clear();   // accumulator 0, registers destroyed, status flags cleared
    void collect(); // the present status goes to the accumulator
    qkString strExceptionState() const;
    qkString strCW() const;
    bool badStatus() const;

private:
    tsSSXBase* m_base;
    unsigned m_status = 0;
};

extern qk87 g_ctrl87;
extern qkSSX g_ssx;

// All ones to ymm0..ymm15 where processor and system have them, else to xmm0..xmm15.
void qk_destroy_ssx();

#endif
