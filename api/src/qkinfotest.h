// Tests that measure nothing and print what they know about the machine. Their names begin with "__qk", which
// the tables class as "Information".
#ifndef QK_INFOTEST_H
#define QK_INFOTEST_H

#include "qktest.h"

class __qkInfoTest : public qkTest {
public:
    __qkInfoTest(const qkString& name, const qkString& file, const qkString& info);
    void loopData() override;
    void outputRegInfo() override {}
    virtual void printInformation() = 0;
};

class __qkVorexCpuTest : public __qkInfoTest {
public:
    __qkVorexCpuTest();
    void printInformation() override;
};

class __qkOSTest : public __qkInfoTest {
public:
    __qkOSTest();
    void printInformation() override;
};

class __qkHostTest : public __qkInfoTest {
public:
    __qkHostTest();
    void printInformation() override;
};

#endif
