// qdBmpFile loads a Windows BMP file into a qdImage, as input for the tests of the codecs. Palette pictures
// are expanded, the others are taken as one block; rows stay in the file's order, which is from the bottom
// up.
#ifndef QD_BMP_H
#define QD_BMP_H

#include "qdimage.h"
#include "qkstream.h"

// The two headers as they stand in the file.
struct qdBmpFileHeader {
    Qov16u bfType = 0;
    Qov32u bfSize = 0;
    Qov16u bfReserved1 = 0;
    Qov16u bfReserved2 = 0;
    Qov32u bfOffBits = 0;
};

struct qdBmpInfoHeader {
    Qov32u biSize = 0;
    Qov32s biWidth = 0;
    Qov32s biHeight = 0;
    Qov16u biPlanes = 0;
    Qov16u biBitCount = 0;
    Qov32u biCompression = 0;
    Qov32u biSizeImage = 0;
    Qov32s biXPelsPerMeter = 0;
    Qov32s biYPelsPerMeter = 0;
    Qov32u biClrUsed = 0;
    Qov32u biClrImportant = 0;
};

struct qdBmpColor {
    Qov8u blue, green, red, reserved;
};

class qdBmpFile {
public:
    explicit qdBmpFile(qdImage& image) : m_image(&image) {}

    // Makes and fills the image. False, mostly after a message, if the file can't be used.
    bool load(const qkString& name, int align);
    // Reads the headers alone; the image stays as it is.
    bool readInfoHeader(const qkString& name);
    const qdBmpFileHeader& fileHeader() const { return m_fileHeader; }
    const qdBmpInfoHeader& infoHeader() const { return m_infoHeader; }

    bool error(const qkString& text) const; // a message; always false

    // Checks of the headers, each with its message. The answers are what the image will be.
    bool ValidFileHeader(bool& swap) const; // swap: the fields have the other byte order
    bool ValidCompression() const;
    bool SetImageWidth(int& width) const;
    bool SetImageHeight(int& height) const;
    bool SetImageType(qdType& type) const;
    bool SetImagePlane(bool& plane) const;
    bool SetImageChannels(int& channels) const;

    int GetPaletteNum() const;
    bool IsGrayPalette() const;
    long long GetDataStep() const; // bytes of a row in the file
    long long GetDataSize() const;
    bool IsCompressed() const; // palette indices, several to a byte or one

    bool CreateImage(int align);
    // Expand the packed rows of the file.
    void SetImageData(const unsigned char* data);
    void SetImageData_8(const unsigned char* data);
    void SetImageData_4(const unsigned char* data);
    void SetImageData_1(const unsigned char* data);
    void SetPixel(unsigned char index, unsigned char* row, int x) const;

private:
    bool readHeaders(i_stream& file);
    bool readData(i_stream& file);
    template <int bits>
    void expandRows(const unsigned char* data);

    qdImage* m_image;
    qkString m_name;
    qdBmpFileHeader m_fileHeader;
    qdBmpInfoHeader m_infoHeader;
    qdBmpColor m_palette[256] = {};
    int m_channels = 0; // of the image
};

#endif
