#include "qdfunc.h"

static bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

static bool isChannelDigit(char c)
{
    return c >= '1' && c <= '4';
}

int lenOfType(const qkString& text)
{
    int digits = 0;
    while (digits < text.length() && isDigit(text[digits])) digits++;
    if (digits == 0 || digits == text.length()) return 0;
    const char kind = text[digits];
    if (kind != 'u' && kind != 's' && kind != 'f') return 0;
    const int len = digits + 1;
    return len < text.length() && text[len] == 'c' ? len + 1 : len;
}

int endOfBase(const qkString& name)
{
    for (int i = name.find("_"); i != qkString::npos; i = name.find("_", i + 1)) {
        if (lenOfType(name.substr(i + 1)) != 0) return i;
    }
    return qkString::npos;
}

qkString firstType(const qkString& text)
{
    return text.substr(0, lenOfType(text));
}

int compareTs(const qkString& type1, const qkString& type2)
{
    if (type1.empty() || type2.empty()) return int(type2.empty()) - int(type1.empty());
    const qdType a = qdFunc::stringToType(type1);
    const qdType b = qdFunc::stringToType(type2);
    if (qdRealType(a) != qdRealType(b)) return qdRealType(a) - qdRealType(b);
    return (a & qdTypeComplex) - (b & qdTypeComplex);
}

int numChannels(const qkString& word)
{
    const int at = alphaChannel(word) ? 2 : 1;
    if (at >= word.length()) return 0;
    return isChannelDigit(word[at]) ? word[at] - '0' : 0;
}

bool planeChannel(const qkString& word)
{
    return word.startsWith("P") || word.startsWith("AP");
}

bool alphaChannel(const qkString& word)
{
    return word.startsWith("A");
}

bool isChannelIndex(int i, const qkString& text)
{
    return i >= 0 && i + 1 < text.length() && isChannelDigit(text[i + 1]);
}

// A letter of `text` that no channel digit follows.
static bool hasBareLetter(const qkString& text, const char* letter)
{
    for (int i = text.find(letter); i != qkString::npos; i = text.find(letter, i + 1)) {
        if (!isChannelIndex(i, text)) return true;
    }
    return false;
}

qkString firstChanStr(qkString& text)
{
    const int c = text.find("C");
    const int p = text.find("P");
    const int i = c == qkString::npos || (p != qkString::npos && p < c) ? p : c;
    if (!isChannelIndex(i, text)) {
        text = qkString();
        return qkString();
    }
    const int first = i > 0 && text[i - 1] == 'A' ? i - 1 : i;
    qkString word = text.substr(first, i + 2 - first);
    text = text.substr(i + 2);
    // "C3PR": interleaved by the word, planar by the letter behind it.
    if (word[i - first] == 'C' && hasBareLetter(text, "P")) word[i - first] = 'P';
    return word;
}

// ---- The four parts

qkString qdFunc::prefix() const
{
    return startsWith("qovs") || startsWith("qovi") ? substr(0, 4) : qkString();
}

void qdFunc::parseFunction(qkString& base, qkString& types, qkString& descr) const
{
    base = types = descr = qkString();
    const int start = prefix().length();
    const int end = endOfBase(*this);
    if (end == npos) {
        base = substr(start);
        return;
    }
    base = substr(start, end - start);
    const int next = find("_", end + 1);
    if (next == npos) {
        types = substr(end + 1);
    } else {
        types = substr(end + 1, next - end - 1);
        descr = substr(next + 1);
    }
}

void qdFunc::parseFunction(qkString& base, qkString& t1, qkString& t2, qkString& t3, qkString& descr) const
{
    qkString types;
    parseFunction(base, types, descr);
    t1 = firstType(types);
    types = types.substr(t1.length());
    t2 = firstType(types);
    t3 = firstType(types.substr(t2.length()));
    if (t2.empty()) t2 = t1;
    if (t3.empty()) t3 = t2;
}

qkString qdFunc::baseName() const
{
    qkString base, types, descr;
    parseFunction(base, types, descr);
    return base;
}

qkString qdFunc::typeName() const
{
    qkString base, types, descr;
    parseFunction(base, types, descr);
    return types;
}

qkString qdFunc::descrName() const
{
    qkString base, types, descr;
    parseFunction(base, types, descr);
    return descr;
}

// ---- Types

qkString qdFunc::typeToString(qdType type)
{
#define QD_CASE(name, part, code)                                                                            \
    case qd##name: return #name;
    switch (type) {
        QD_TYPES(QD_CASE)
    default: return "undef";
    }
#undef QD_CASE
}

qdType qdFunc::stringToType(const qkString& text)
{
    if (text == "1u") return qd8u; // single bits are held in bytes
#define QD_COMPARE(name, part, code)                                                                         \
    if (text == #name) return qd##name;
    QD_TYPES(QD_COMPARE)
#undef QD_COMPARE
    return qdUndef;
}

qdType qdFunc::typeFromBase() const
{
    // Longer names before those that they contain.
    static const qdType order[] = {qd64fc, qd64sc, qd64s,  qd64f, qd32fc, qd32sc, qd32u, qd32s,
                                   qd32f,  qd16sc, qd16uc, qd16u, qd16s,  qd8sc,  qd8u,  qd8s};
    const qkString base = baseName();
    for (qdType type : order) {
        if (base.contains(typeToString(type))) return type;
    }
    return qdUndef;
}

qdType qdFunc::type(int index) const
{
    if (index == 0) {
        const qdType inBase = typeFromBase();
        if (inBase != qdUndef) return inBase;
        index = 1;
    }
    qkString base, t[3], descr;
    parseFunction(base, t[0], t[1], t[2], descr);
    return index >= 1 && index <= 3 ? stringToType(t[index - 1]) : qdUndef;
}

qdType qdFunc::type(qdArg arg) const
{
    switch (arg) {
    case qdArgSrc: return srcType();
    case qdArgSrc2: return src2Type();
    case qdArgDst: return dstType();
    case qdArgDst2: return dst2Type();
    default: return qdUndef;
    }
}

void qdFunc::getTypes(qdType& src, qdType& src2, qdType& dst, qdType& dst2) const
{
    qkString base, t1, t2, t3, descr;
    parseFunction(base, t1, t2, t3, descr);
    src = stringToType(t1);
    src2 = stringToType(t2 == t3 ? t1 : t2);
    dst = stringToType(t3);
    dst2 = dst;
    updateTypes(src, src2, dst, dst2);
}

qdType qdFunc::srcType() const
{
    qdType src, src2, dst, dst2;
    getTypes(src, src2, dst, dst2);
    return src;
}

qdType qdFunc::dstType() const
{
    qdType src, src2, dst, dst2;
    getTypes(src, src2, dst, dst2);
    return dst;
}

qdType qdFunc::src2Type() const
{
    qdType src, src2, dst, dst2;
    getTypes(src, src2, dst, dst2);
    return src2;
}

qdType qdFunc::dst2Type() const
{
    qdType src, src2, dst, dst2;
    getTypes(src, src2, dst, dst2);
    return dst2;
}

template <int n>
static bool isOneOf(const qkString& text, const char* const (&names)[n])
{
    for (const char* name : names) {
        if (text == name) return true;
    }
    return false;
}

static void updateSignalTypes(const qkString& name, const qkString& base, qdType& src, qdType& src2,
                              qdType& dst, qdType& dst2)
{
    static const char* const realResult[] = {"Real",       "Imag",        "Magnitude",  "Phase",
                                             "CplxToReal", "CartToPolar", "PowerSpectr"};
    if (isOneOf(base, realResult)) {
        dst = qdRealType(dst);
        dst2 = qdRealType(dst2);
    } else if (base == "PolarToCart") {
        src = qdRealType(src);
        src2 = qdRealType(src2);
    } else if (base == "RealToCplx" || name.contains("Goertz")) {
        dst = qdComplexType(dst);
        dst2 = qdComplexType(dst2);
    } else if (base == "DotProd") {
        if (src == src2 && !qdIsComplex(src) && qdIsComplex(dst)) src2 = dst;
    } else if (name.contains("Mul_16u16s")) {
        src2 = dst;
    }
}

void qdFunc::updateTypes(qdType& src, qdType& src2, qdType& dst, qdType& dst2) const
{
    const qkString base = baseName();
    if (startsWith("qovs")) {
        updateSignalTypes(*this, base, src, src2, dst, dst2);
    } else if (startsWith("qovi")) {
        if (base == "Sum" || base == "Mean")
            dst = dst2 = qd64f;
        else if (base == "Copy" || base == "Set")
            src2 = qd8u;
        else if (base.contains("Compare"))
            dst = dst2 = qd8u;
    }
}

// ---- Channels, planes, alpha

static bool isDestination(qdArg arg)
{
    return arg == qdArgDst || arg == qdArgDst2;
}

static bool isSource(qdArg arg)
{
    return arg == qdArgSrc || arg == qdArgSrc2;
}

void qdFunc::getChannelsName(qkString& src, qkString& dst) const
{
    qkString descr = descrName();
    src = firstChanStr(descr);
    dst = firstChanStr(descr);
    if (dst.empty()) dst = src;
}

qkString qdFunc::srcChannelsName() const
{
    qkString src, dst;
    getChannelsName(src, dst);
    return src;
}

qkString qdFunc::dstChannelsName() const
{
    qkString src, dst;
    getChannelsName(src, dst);
    return dst;
}

qkString qdFunc::channelsName(int index) const
{
    if (index == 1) return srcChannelsName();
    return index == 2 ? dstChannelsName() : qkString();
}

qkString qdFunc::channelsName(qdArg arg) const
{
    if (isSource(arg)) return srcChannelsName();
    return isDestination(arg) ? dstChannelsName() : qkString();
}

void qdFunc::updateChannels(int&, int& dst) const
{
    if (startsWith("qovi") && baseName().contains("Compare")) dst = 1;
}

void qdFunc::getChannels(int& src, int& dst) const
{
    src = numChannels(srcChannelsName());
    dst = numChannels(dstChannelsName());
    updateChannels(src, dst);
}

int qdFunc::srcChannels() const
{
    int src, dst;
    getChannels(src, dst);
    return src;
}

int qdFunc::dstChannels() const
{
    int src, dst;
    getChannels(src, dst);
    return dst;
}

int qdFunc::channels(int index) const
{
    return index == 1 || index == 2 ? numChannels(channelsName(index)) : 1;
}

int qdFunc::channels(qdArg arg) const
{
    if (isSource(arg)) return srcChannels();
    return isDestination(arg) ? dstChannels() : 1;
}

void qdFunc::updatePlanes(bool&, bool&) const {}

void qdFunc::getPlanes(bool& src, bool& dst) const
{
    const qkString descr = descrName();
    const int c = descr.find("C");
    const int p = descr.find("P");
    src = p != npos && (c == npos || p < c);
    dst = p != npos && (c == npos || c < p);
    updatePlanes(src, dst);
}

bool qdFunc::srcPlane() const
{
    bool src, dst;
    getPlanes(src, dst);
    return src;
}

bool qdFunc::dstPlane() const
{
    bool src, dst;
    getPlanes(src, dst);
    return dst;
}

bool qdFunc::plane(int index) const
{
    return planeChannel(channelsName(index));
}

bool qdFunc::plane(qdArg arg) const
{
    if (isSource(arg)) return srcPlane();
    return isDestination(arg) && dstPlane();
}

void qdFunc::getAlpha(bool& src, bool& dst) const
{
    src = alphaChannel(srcChannelsName());
    dst = alphaChannel(dstChannelsName());
}

bool qdFunc::srcAlpha() const
{
    bool src, dst;
    getAlpha(src, dst);
    return src;
}

bool qdFunc::dstAlpha() const
{
    bool src, dst;
    getAlpha(src, dst);
    return dst;
}

bool qdFunc::alpha(int index) const
{
    return alphaChannel(channelsName(index));
}

bool qdFunc::alpha(qdArg arg) const
{
    if (isSource(arg)) return srcAlpha();
    return isDestination(arg) && dstAlpha();
}

// ---- Flags

bool qdFunc::inplace() const
{
    return descrName().contains("I");
}

bool qdFunc::mask() const
{
    return descrName().contains("M");
}

bool qdFunc::scale() const
{
    return descrName().contains("Sfs");
}

bool qdFunc::roi() const
{
    return descrName().contains("R");
}

bool qdFunc::coi() const
{
    return hasBareLetter(descrName(), "C");
}

// ---- Order

int qdFunc::compareTypes(const qkString& types1, const qkString& types2)
{
    return compareTs(firstType(types1), firstType(types2));
}

int qdFunc::compareDescr(const qkString& descr1, const qkString& descr2)
{
    const bool inplace1 = descr1.contains("I");
    const bool inplace2 = descr2.contains("I");
    if (inplace1 != inplace2) return inplace1 ? 1 : -1;
    if (descr1.startsWith("AC4") && descr2.startsWith("C")) return 1;
    if (descr1.startsWith("C") && descr2.startsWith("AC4")) return -1;
    return descr1.compare(descr2);
}

int qdFunc::compare(const qdFunc& other) const
{
    const int byName = (prefix() + baseName()).compare(other.prefix() + other.baseName());
    if (byName != 0) return byName;
    const int byType = compareTypes(typeName(), other.typeName());
    return byType != 0 ? byType : compareDescr(descrName(), other.descrName());
}

// ---- The library's enumerations

int qdFunc::qovType(qdType type)
{
    static const struct {
        qdType type;
        int value;
    } table[] = {{qd8u, 1},   {qd8s, 3},    {qd16u, 5},   {qd16s, 7},  {qd16sc, 8},  {qd16uc, 8},
                 {qd32u, 9},  {qd32s, 11},  {qd32sc, 12}, {qd32f, 13}, {qd32fc, 14}, {qd64u, 15},
                 {qd64s, 17}, {qd64sc, 18}, {qd64f, 19},  {qd64fc, 20}};
    for (const auto& row : table) {
        if (row.type == type) return row.value;
    }
    return 0;
}

int qdFunc::qovChannels(int index) const
{
    static const char* const words[] = {"C0", "C1", "C2",  "C3",  "C4",   "P2",
                                        "P3", "P4", "AC1", "AC4", "A0C4", "AP4"};
    const qkString word = channelsName(index);
    int value = 0;
    for (const char* known : words) {
        if (word == known) return value;
        value++;
    }
    return 0;
}
