// Planes brought to another size.
#ifndef JPEG2000_RESIZE_H
#define JPEG2000_RESIZE_H

#include "mrstrimage.h"

#include "qovi.h"

namespace jpeg2000 {

// src into dst, which is allocated and has the size wanted. The same size is an exact copy, anything else is
// interpolated, centre upon centre; samples of more than 24 bits are rounded on the way. Of nothing comes 0.
void Resize(const ImageComponent& src, const ImageComponent& dst, int interpolation);

// All planes to the size of the image, which none exceeds. What takes more memory than any honest image is
// MemoryException 0.
void ResizeUp(ImageComponents& planes, const RectSize& size, int interpolation);

// Whether some plane has another size.
bool isResizeNeeded(const ImageComponents& planes, const RectSize& size);

} // namespace jpeg2000

#endif
