// qdFunc: the name of a library function that answers questions about its arguments. A name has four parts:
//
//     qovi  Add128_JPEG  _  16s8u  _  C1R
//     prefix   base         types     descriptor
//
// Every answer is read from the text anew.
#ifndef QD_FUNC_H
#define QD_FUNC_H

#include "qdtype.h"

enum qdArg { qdArgSrc = 1, qdArgSrc2 = 2, qdArgDst = 4, qdArgDst2 = 8 };

class qdFunc : public qkString {
public:
    using qkString::qkString;
    qdFunc() = default;
    qdFunc(const qkString& name) : qkString(name) {}
    qdFunc(const qdFunc&) = default;
    qdFunc& operator=(const qdFunc&) = default;
    ~qdFunc() override = default;

    // Corrections for functions whose arguments are not what their names say.
    virtual void updateTypes(qdType& src, qdType& src2, qdType& dst, qdType& dst2) const;
    virtual void updateChannels(int& src, int& dst) const;
    virtual void updatePlanes(bool& src, bool& dst) const;

    // What a name does not tell comes out empty. In the second form one type counts for all three, and the
    // second of two for the third as well.
    void parseFunction(qkString& base, qkString& types, qkString& descr) const;
    void parseFunction(qkString& base, qkString& t1, qkString& t2, qkString& t3, qkString& descr) const;
    qkString prefix() const;
    qkString baseName() const;
    qkString typeName() const;
    qkString descrName() const;

    // Index 1, 2, 3: the types as they stand in the name; 0: the type within the base name, if there is one,
    // else the first. By role, the corrections apply.
    static qkString typeToString(qdType type);
    static qdType stringToType(const qkString& text);
    qdType type(int index) const;
    qdType type(qdArg arg) const;
    qdType srcType() const;
    qdType dstType() const;
    qdType src2Type() const;
    qdType dst2Type() const;
    void getTypes(qdType& src, qdType& src2, qdType& dst, qdType& dst2) const;
    qdType typeFromBase() const;

    // Channel words such as "C3", "P2", "AC4". Index 1: source, 2: destination, without corrections.
    qkString channelsName(int index) const;
    qkString channelsName(qdArg arg) const;
    qkString srcChannelsName() const;
    qkString dstChannelsName() const;
    void getChannelsName(qkString& src, qkString& dst) const;
    int channels(int index) const;
    int channels(qdArg arg) const;
    int srcChannels() const;
    int dstChannels() const;
    void getChannels(int& src, int& dst) const;

    // Planar layout, and an alpha channel beside three others.
    bool plane(int index) const;
    bool plane(qdArg arg) const;
    bool srcPlane() const;
    bool dstPlane() const;
    void getPlanes(bool& src, bool& dst) const;
    bool alpha(int index) const;
    bool alpha(qdArg arg) const;
    bool srcAlpha() const;
    bool dstAlpha() const;
    void getAlpha(bool& src, bool& dst) const;

    bool inplace() const;
    bool mask() const;
    bool scale() const;
    bool roi() const;
    bool coi() const; // a single channel of interest

    // Order of the tests: by name, then by the first type alone, then by descriptor.
    int compare(const qdFunc& other) const;
    static int compareTypes(const qkString& types1, const qkString& types2);
    static int compareDescr(const qkString& descr1, const qkString& descr2);

    // Values of the library's enumerations of data types and channels; 0 for what it does not know.
    static int qovType(qdType type);
    int qovChannels(int index) const;
};

// Length of the type name at the beginning of `text`, such as "16sc" in "16sc8u"; 0 if there is none.
int lenOfType(const qkString& text);
// Position of the underscore before the types; npos if there are none.
int endOfBase(const qkString& name);
qkString firstType(const qkString& text);
int compareTs(const qkString& type1, const qkString& type2);
// Of a channel word.
int numChannels(const qkString& word);
bool planeChannel(const qkString& word);
bool alphaChannel(const qkString& word);
// Whether one of "1234" stands behind position i.
bool isChannelIndex(int i, const qkString& text);
// Cuts the first channel word off the front of a descriptor.
qkString firstChanStr(qkString& text);

#endif
