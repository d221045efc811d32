// Suite TimJ2kitCodec: the whole JPEG 2000 codec on one picture, a synthetic one or that of a file. A
// measured call does what a command line would do, between buffers in memory: its options come from an
// argument vector. What the codec throws is not caught.
#include <algorithm>
#include <bit>
#include <memory>
#include <vector>

#include "bmpmemory.h"
#include "decode.h"
#include "encode.h"
#include "qovj_main.h"
#include "qovjsuite.h"

static const int mostLevels = -1; // as a value of `level`: "max"
static int wlev;                  // the number of levels in use

// Its cell is the number that "max" stands for.
class LevelItr : public qkMapIterator<int> {
public:
    void toCStream(qkCStream& out) const override { out << wlev; }
};

static qkMapDefault<int> imageInput;
static qkIterator<qkString> bmpFile;
static qkDefault<qkString> bmpData; // the name of the synthetic picture
static qkIterator<QoviSize> imageSize;
static qkMapIterator<int> mct;
static qkIterator<double> ratio;
static LevelItr level;
static qkMapIterator<int> wt;

static BmpMemory memory;
static std::unique_ptr<const jpeg2000::CmdOptions> pCmdOptions;
static jpeg2000::BDiagnOutput diagnOutput;
static std::vector<const char*> argv;
static qkString encoderCmdLine, decoderCmdLine; // empty: the test has none

// ---- The measured calls

static const int codecFailed = -2;

static void copyBmpData()
{
    memory.restore();
}

static int x_Encoder()
{
    return jpeg2000::encode(*pCmdOptions, diagnOutput, memory.bmpStruct, memory.jp2Struct) != 0 ? codecFailed
                                                                                                : 0;
}

static int x_Decoder()
{
    return jpeg2000::decode(*pCmdOptions, diagnOutput, memory.jp2Struct, memory.bmpStruct) != 0 ? codecFailed
                                                                                                : 0;
}

// ---- The suite

static bool isFile()
{
    return imageInput.value() != 0;
}

static qkString imageName()
{
    return isFile() ? bmpFile.value() : bmpData.value();
}

static qkString jp2FileName()
{
    const qkString name = imageName();
    return name.getFileDir() + name.getFileTitle() + ".jp2";
}

// How often a side can be halved.
static int getWLevel(int side)
{
    return side < 2 ? 0 : static_cast<int>(std::bit_width(static_cast<unsigned>(side))) - 1;
}

class TimJ2kitCodec : public qdTest {
public:
    using qdTest::qdTest;
    ~TimJ2kitCodec() override = default;

    bool canStart() override
    {
        m_tool.m_startFactor = 1; // calls that take long
        m_tool.m_stopFactor = 4;
        m_isEncode = m_func.contains("Encode");
        initInput();
        if (registerParm(mct, "mct")) {
            mct[1] = "mct+";
            mct[0] = "mct-";
            for (const int on : {1, 0}) mct.add(on);
        }
        if (registerParm(ratio, "ratio")) {
            for (const double value : {0.0, 1.0, 10.0, 100.0}) ratio.add(value);
        }
        if (registerParm(level, "wlev")) {
            level[mostLevels] = "max";
            for (const int value : {0, 1, mostLevels}) {
                level.addValidation(value);
                level.add(value);
            }
        }
        if (registerParm(wt, "wt")) {
            wt[53] = "wt53";
            wt[97] = "wt97";
            for (const int value : {53, 97}) wt.add(value);
        }
        return true;
    }

    bool initData() override
    {
        if (!validModeKeys() || !readBmpHeaders() || !memory.mallocData() || !readBmpData()) return false;
        memory.keepCopy();
        const QoviSize size = memory.size();
        wlev = level.value() < 0 ? getWLevel(std::min(size.width, size.height)) : level.value();
        encoderCmdLine = setOptions(true);
        if (m_isEncode) return true;
        // The file for all the measured calls.
        if (x_Encoder() < 0) return false;
        decoderCmdLine = setOptions(false);
        return true;
    }

    void flushData() override
    {
        memory.freeData();
        pCmdOptions.reset();
        encoderCmdLine = decoderCmdLine = "";
    }

    double getDivisor() override
    {
        return static_cast<double>(memory.bmpStruct.width) * memory.bmpStruct.height;
    }
    qkString getUnit() override { return "px"; }

    void parmsToOstrm() override
    {
        g_ostrm << "encoder:" << encoderCmdLine;
        if (!decoderCmdLine.empty()) g_ostrm << "\ndecoder:" << decoderCmdLine;
    }

    void parmsToCstrm() override
    {
        g_cstrm << qkToText(memory.size()) << imageName();
        mct.toCStream(g_cstrm);
        ratio.toCStream(g_cstrm);
        level.toCStream(g_cstrm);
        wt.toCStream(g_cstrm);
    }

private:
    // Appends the parameter without values. False: it stands in the list already.
    template <class Parm>
    bool registerParm(Parm& parm, const char* name)
    {
        if (qkContains<qkParameter*>(m_parms, &parm)) return false;
        m_parms.append(&parm);
        parm.reset();
        parm.setName(name, "");
        return true;
    }

    void initInput()
    {
        // Asked here already and so not again with the others: the list of parameters depends on it.
        if (registerParm(imageInput, "imageInput")) {
            imageInput[1] = "file";
            imageInput[0] = "jaehne";
            imageInput.setValue(0);
            imageInput.setSelected(true);
            imageInput.fromIStream(g_istrm);
            imageInput.setSelected(false);
        }
        if (isFile()) {
            if (!registerParm(bmpFile, "bmpFile")) return;
            bmpFile.add("rose.bmp");
            bmpFile.add("sbikers2.bmp");
        } else {
            if (registerParm(bmpData, "bmpData")) bmpData.setValue("jaehne.bmp");
            if (registerParm(imageSize, "size")) imageSize.add({720, 480});
        }
    }

    // The codec has no lossless mode with the irreversible transform.
    static bool validModeKeys() { return wt.value() != 97 || ratio.value() != 0; }

    bool readBmpHeaders() const
    {
        const int imageChannels = m_func.srcChannels();
        if (isFile()) return memory.readBmpHeaders(imageName(), imageChannels);
        memory.setJaehneHeaders(imageSize.value(), imageChannels);
        return true;
    }

    static bool readBmpData() { return isFile() ? memory.readBmpData(imageName()) : memory.setJaehneData(); }

    // ---- The command line

    void clearKeys()
    {
        m_keys.erase(m_keys.begin(), m_keys.end());
        m_keys.append("jpeg2kcodec.exe");
    }

    void addKey(const qkString& key, const qkString& value = "")
    {
        m_keys.append(qkString("-") + key);
        if (!value.empty()) m_keys.append(value);
    }

    void setModeKeys(bool encoding)
    {
        const bool libraryInReport = g_pLibInfoList && !g_pLibInfoList->empty();
        clearKeys();
        addKey("i", encoding ? imageName() : jp2FileName());
        addKey("o", encoding ? jp2FileName() : imageName());
        addKey(libraryInReport ? "linf+" : "linf-");
        if (!encoding) return;
        addKey(mct.valueString());
        addKey("ratio", ratio.valueString());
        addKey("wlev", qkToText(wlev));
        addKey("wt", wt.valueString());
    }

    void setArgcArgv() const
    {
        argv.clear();
        for (const qkString& key : m_keys) argv.push_back(key.c_str());
    }

    // The options of a direction. Returns the command line they are from.
    qkString setOptions(bool encoding)
    {
        setModeKeys(encoding);
        setArgcArgv();
        pCmdOptions =
            std::make_unique<jpeg2000::CmdOptions>(argv.data(), static_cast<int>(argv.size()), diagnOutput);
        return qkJoin(m_keys, " ", [](const qkString& key) { return key; });
    }

    bool m_isEncode = false;
    qkStringList m_keys; // the argument vector, with the program's name
};

QD_REG_I_X(TimJ2kitCodec, jpeg2k_Encoder_8u_C3, copyBmpData, x_Encoder);
QD_REG_X(TimJ2kitCodec, jpeg2k_Decoder_8u_C3, x_Decoder);
