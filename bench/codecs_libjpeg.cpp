// libjpeg-turbo's side of the JPEG cases: its usual settings (accurate integer DCT, triangle up-sampling, the
// standard Huffman tables; for progressive streams its own script, which brings optimised tables), whole
// pictures of rows offered at each call.
#ifdef QK_HAVE_LIBJPEG

#include "codecs_jpeg.h"

#include <cstdio>
#include <jpeglib.h>
#include <stdexcept>

namespace {

[[noreturn]] void fail(j_common_ptr info)
{
    char text[JMSG_LENGTH_MAX];
    info->err->format_message(info, text);
    throw std::runtime_error(text);
}

jpeg_error_mgr* errorManager()
{
    static jpeg_error_mgr manager = [] {
        jpeg_error_mgr m;
        jpeg_std_error(&m);
        m.error_exit = fail;
        return m;
    }();
    return &manager;
}

std::vector<JSAMPROW> rowsOf(const Picture& picture)
{
    std::vector<JSAMPROW> rows;
    for (int y = 0; y < picture.height; y++)
        rows.push_back(const_cast<JSAMPROW>(picture.samples.data()) + y * picture.step());
    return rows;
}

class Encoder {
public:
    Encoder(SharedPicture picture, const JpegVariant& variant, std::shared_ptr<CodedStream> stream)
        : m_picture(std::move(picture)), m_stream(std::move(stream)), m_rows(rowsOf(*m_picture))
    {
        m_info.err = errorManager();
        jpeg_create_compress(&m_info);
        const bool grey = m_picture->channels == 1;
        m_info.image_width = JDIMENSION(m_picture->width);
        m_info.image_height = JDIMENSION(m_picture->height);
        m_info.input_components = m_picture->channels;
        m_info.in_color_space = grey ? JCS_GRAYSCALE : JCS_RGB;
        jpeg_set_defaults(&m_info);
        jpeg_set_quality(&m_info, variant.quality, TRUE);
        m_info.comp_info[0].h_samp_factor =
            variant.sampling == JpegSampling::s422 || variant.sampling == JpegSampling::s420 ? 2 : 1;
        m_info.comp_info[0].v_samp_factor = variant.sampling == JpegSampling::s420 ? 2 : 1;
        if (variant.progressive) jpeg_simple_progression(&m_info);
    }
    ~Encoder() { jpeg_destroy_compress(&m_info); }
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;

    void encode()
    {
        unsigned char* out = m_stream->buffer.data();
        unsigned long bytes = m_stream->buffer.size();
        jpeg_mem_dest(&m_info, &out, &bytes);
        jpeg_start_compress(&m_info, TRUE);
        while (m_info.next_scanline < m_info.image_height)
            jpeg_write_scanlines(&m_info, m_rows.data() + m_info.next_scanline,
                                 m_info.image_height - m_info.next_scanline);
        jpeg_finish_compress(&m_info);
        m_stream->bytes = bytes;
    }

private:
    SharedPicture m_picture;
    std::shared_ptr<CodedStream> m_stream;
    std::vector<JSAMPROW> m_rows;
    jpeg_compress_struct m_info;
};

class Decoder {
public:
    Decoder(std::shared_ptr<const CodedStream> stream, std::shared_ptr<Picture> result)
        : m_stream(std::move(stream)), m_result(std::move(result)), m_rows(rowsOf(*m_result))
    {
        m_info.err = errorManager();
        jpeg_create_decompress(&m_info);
    }
    ~Decoder() { jpeg_destroy_decompress(&m_info); }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    void decode()
    {
        jpeg_mem_src(&m_info, m_stream->buffer.data(), static_cast<unsigned long>(m_stream->bytes));
        jpeg_read_header(&m_info, TRUE);
        jpeg_start_decompress(&m_info);
        if (int(m_info.output_width) != m_result->width || int(m_info.output_height) != m_result->height ||
            m_info.output_components != m_result->channels)
            throw std::runtime_error("a stream of another size");
        while (m_info.output_scanline < m_info.output_height)
            jpeg_read_scanlines(&m_info, m_rows.data() + m_info.output_scanline,
                                m_info.output_height - m_info.output_scanline);
        jpeg_finish_decompress(&m_info);
    }

private:
    std::shared_ptr<const CodedStream> m_stream;
    std::shared_ptr<Picture> m_result;
    std::vector<JSAMPROW> m_rows;
    jpeg_decompress_struct m_info;
};

std::function<void()> encoder(const SharedPicture& picture, const JpegVariant& variant,
                              const std::shared_ptr<CodedStream>& stream)
{
    return [coder = std::make_shared<Encoder>(picture, variant, stream)] { coder->encode(); };
}

std::function<void()> decoder(const std::shared_ptr<const CodedStream>& stream,
                              const std::shared_ptr<Picture>& result)
{
    return [coder = std::make_shared<Decoder>(stream, result)] { coder->decode(); };
}

} // namespace

const JpegSide libjpegTurbo = {"libjpeg-turbo", encoder, decoder};

#endif
