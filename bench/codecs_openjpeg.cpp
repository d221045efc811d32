// OpenJPEG's side of the JPEG 2000 cases: its usual settings, on one thread.
#ifdef QK_HAVE_OPENJPEG

#include "codecs_j2k.h"

#include <openjpeg.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace {

void check(bool ok, const char* what)
{
    if (!ok) throw std::runtime_error(std::string("OpenJPEG: ") + what);
}

using Codec = std::unique_ptr<opj_codec_t, decltype(&opj_destroy_codec)>;
using Image = std::unique_ptr<opj_image_t, decltype(&opj_image_destroy)>;

// A stream of the library over memory.
class MemoryStream {
public:
    MemoryStream(unsigned char* data, size_t size, bool isInput)
        : m_data(data), m_size(size), m_stream(opj_stream_create(1 << 16, isInput))
    {
        opj_stream_set_user_data(m_stream, this, nullptr);
        opj_stream_set_user_data_length(m_stream, size);
        opj_stream_set_read_function(m_stream, read);
        opj_stream_set_write_function(m_stream, write);
        opj_stream_set_skip_function(m_stream, skip);
        opj_stream_set_seek_function(m_stream, seek);
    }
    ~MemoryStream() { opj_stream_destroy(m_stream); }
    MemoryStream(const MemoryStream&) = delete;
    MemoryStream& operator=(const MemoryStream&) = delete;

    operator opj_stream_t*() const { return m_stream; }
    size_t written() const { return m_end; }

private:
    static OPJ_SIZE_T read(void* to, OPJ_SIZE_T n, void* user)
    {
        MemoryStream& s = *static_cast<MemoryStream*>(user);
        n = std::min(n, s.m_size - s.m_position);
        if (n == 0) return OPJ_SIZE_T(-1);
        std::memcpy(to, s.m_data + s.m_position, n);
        s.m_position += n;
        return n;
    }
    static OPJ_SIZE_T write(void* from, OPJ_SIZE_T n, void* user)
    {
        MemoryStream& s = *static_cast<MemoryStream*>(user);
        if (n > s.m_size - s.m_position) return OPJ_SIZE_T(-1);
        std::memcpy(s.m_data + s.m_position, from, n);
        s.m_position += n;
        s.m_end = std::max(s.m_end, s.m_position);
        return n;
    }
    static OPJ_OFF_T skip(OPJ_OFF_T n, void* user)
    {
        MemoryStream& s = *static_cast<MemoryStream*>(user);
        return seek(OPJ_OFF_T(s.m_position) + n, user) ? n : -1;
    }
    static OPJ_BOOL seek(OPJ_OFF_T to, void* user)
    {
        MemoryStream& s = *static_cast<MemoryStream*>(user);
        if (to < 0 || size_t(to) > s.m_size) return OPJ_FALSE;
        s.m_position = size_t(to);
        return OPJ_TRUE;
    }

    unsigned char* m_data;
    size_t m_size, m_position = 0, m_end = 0;
    opj_stream_t* m_stream;
};

Image imageOf(const Picture& picture)
{
    opj_image_cmptparm_t component{};
    component.dx = component.dy = 1;
    component.w = OPJ_UINT32(picture.width);
    component.h = OPJ_UINT32(picture.height);
    component.prec = 8;
    const opj_image_cmptparm_t components[] = {component, component, component};
    const size_t channels = size_t(picture.channels);
    Image image(opj_image_create(OPJ_UINT32(channels), const_cast<opj_image_cmptparm_t*>(components),
                                 channels == 3 ? OPJ_CLRSPC_SRGB : OPJ_CLRSPC_GRAY),
                opj_image_destroy);
    image->x1 = component.w;
    image->y1 = component.h;
    for (size_t c = 0; c < channels; c++)
        for (size_t i = 0; i < picture.pixels(); i++)
            image->comps[c].data[i] = picture.samples[i * channels + c];
    return image;
}

std::function<void()> encoder(const SharedPicture& picture, const J2kVariant& variant,
                              const std::shared_ptr<CodedStream>& stream)
{
    return [=] {
        opj_cparameters_t parameters;
        opj_set_default_encoder_parameters(&parameters);
        parameters.numresolution = variant.levels + 1;
        parameters.irreversible = !variant.reversible;
        parameters.tcp_mct = picture->channels == 3;
        parameters.tcp_numlayers = 1;
        parameters.tcp_rates[0] = float(variant.ratio);
        parameters.cp_disto_alloc = 1;
        const Image image = imageOf(*picture);
        const Codec codec(opj_create_compress(OPJ_CODEC_JP2), opj_destroy_codec);
        MemoryStream out(stream->buffer.data(), stream->buffer.size(), false);
        check(opj_setup_encoder(codec.get(), &parameters, image.get()) &&
                  opj_start_compress(codec.get(), image.get(), out) && opj_encode(codec.get(), out) &&
                  opj_end_compress(codec.get(), out),
              "can't encode");
        stream->bytes = out.written();
    };
}

std::function<void()> decoder(const std::shared_ptr<const CodedStream>& stream,
                              const std::shared_ptr<Picture>& result)
{
    return [=] {
        opj_dparameters_t parameters;
        opj_set_default_decoder_parameters(&parameters);
        const Codec codec(opj_create_decompress(OPJ_CODEC_JP2), opj_destroy_codec);
        MemoryStream in(const_cast<unsigned char*>(stream->buffer.data()), stream->bytes, true);
        opj_image_t* decoded = nullptr;
        check(opj_setup_decoder(codec.get(), &parameters) && opj_read_header(in, codec.get(), &decoded),
              "can't read the header");
        const Image image(decoded, opj_image_destroy);
        check(opj_decode(codec.get(), in, image.get()) && opj_end_decompress(codec.get(), in),
              "can't decode");
        const size_t channels = size_t(result->channels);
        check(image->numcomps == channels && image->comps[0].w == OPJ_UINT32(result->width),
              "a stream of another size");
        for (size_t c = 0; c < channels; c++)
            for (size_t i = 0; i < result->pixels(); i++)
                result->samples[i * channels + c] =
                    (unsigned char)(std::clamp(image->comps[c].data[i], 0, 255));
    };
}

} // namespace

const J2kSide openJpeg = {"openjpeg", encoder, decoder};

#endif
