// The files that decoded images become.
#ifndef JPEG2000_IMAGEFORM_H
#define JPEG2000_IMAGEFORM_H

#include "cmdoptions.h"
#include "mrstrimage.h"

#include <cstdint>
#include <memory>

namespace jpeg2000 {

// The form is chosen when this is made: by what the image is, before its samples are touched.
class ImageForm {
public:
    virtual ~ImageForm() = default;

    // No file of the image is longer.
    virtual uint64_t EstimateNOfBytes() const = 0;
    // Converts the components in place, writes the file and returns its end.
    virtual uint8_t* Write(ImageComponents& components, uint8_t* dst) const = 0;
};

// By options.dstType; null for what is no form of an image. Everything outlives the result. Warnings tell
// what is lost.
std::unique_ptr<ImageForm> MakeImageForm(const CmdOptions& options, const MRstrImage& image,
                                         BDiagnOutput& sink);

} // namespace jpeg2000

#endif
