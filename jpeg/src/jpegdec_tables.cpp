// Segments of tables: DQT, DHT, DRI (T.81 B.2.4).
#include "jpegdec.h"

_JPEG_ERROR CJPEGDecoder::ParseDQT()
{
    int len = 0;
    JPEG_PASS(ReadLength(&len));
    JPEG_PASS(CheckLength(len));
    while (len > 0) {
        int PqTq = 0;
        JPEG_PASS(m_src._READ_BYTE(&PqTq));
        const int Tq = PqTq & 15;
        if (Tq > 3) return JPEG_BAD_QUANT_SEGMENT;
        Qov8u raw[64];
        for (Qov8u& step : raw) {
            int value = 0;
            JPEG_PASS((PqTq >> 4) != 0 ? m_src._READ_WORD(&value) : m_src._READ_BYTE(&value));
            step = static_cast<Qov8u>(value); // tables are 8-bit: the low byte of a 16-bit step remains
        }
        JPEG_PASS(m_qntbl[Tq].Init(PqTq, raw));
        len -= 65 + 4 * (PqTq & 0xF0);
    }
    if (len != 0) return JPEG_BAD_SEGMENT_LENGTH;
    m_marker = JM_NONE;
    return JPEG_OK;
}

// A fault in the layout of the segment has precedence over codes that make no table.
_JPEG_ERROR CJPEGDecoder::ParseDHT()
{
    int len = 0;
    _JPEG_ERROR tables = JPEG_OK;
    JPEG_PASS(ReadLength(&len));
    JPEG_PASS(CheckLength(len));
    while (len > 16) {
        int TcTh = 0;
        JPEG_PASS(m_src._READ_BYTE(&TcTh));
        Qov8u bits[16];
        int codes = 0;
        for (Qov8u& count : bits) {
            int value = 0;
            JPEG_PASS(m_src._READ_BYTE(&value));
            count = static_cast<Qov8u>(value);
            codes += value;
        }
        len -= 17;
        const int Tc = TcTh >> 4, Th = TcTh & 15;
        if (codes > 256 || codes > len || Th > 3) return JPEG_BAD_HUFFMAN_TABLE;
        Qov8u values[256] = {};
        for (int i = 0; i < codes; i++) {
            int value = 0;
            JPEG_PASS(m_src._READ_BYTE(&value));
            values[i] = static_cast<Qov8u>(value);
        }
        len -= codes;
        CJPEGDecoderHuffmanTable& table = (Tc == 0 ? m_dctbl : m_actbl)[Th];
        if (table.m_bEmpty && table.Create() != JPEG_OK) return JPEG_INTERNAL_ERROR;
        if (table.Init(Th, Tc, bits, values) != JPEG_OK) tables = JPEG_INTERNAL_ERROR;
    }
    if (len != 0) return JPEG_BAD_SEGMENT_LENGTH;
    JPEG_PASS(tables);
    m_marker = JM_NONE;
    return JPEG_OK;
}

_JPEG_ERROR CJPEGDecoder::ParseDRI()
{
    int len = 0;
    JPEG_PASS(ReadLength(&len));
    if (len != 2) return JPEG_BAD_SEGMENT_LENGTH;
    JPEG_PASS(m_src._READ_WORD(&m_jpeg_restart_interval));
    m_restarts_to_go = m_jpeg_restart_interval;
    m_marker = JM_NONE;
    return JPEG_OK;
}
