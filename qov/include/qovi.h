// The image primitives of qov.
//
// Every primitive answers a QovStatus. Arguments stand in the order source, destination, size, tables. Steps
// are bytes from row to row and are looked at only when there is more than one row. Pointers need the
// alignment of their element type only. Source and destination are apart, save where a line says otherwise.
// Arguments are checked once, in this order: null pointers, size, step, others, opaque blocks. Integer
// results are the same at every instruction-set level.
#ifndef QOV_QOVI_H
#define QOV_QOVI_H

#include "qovdefs.h"
#include "qovicodeblock.h"
#include "qovicolor.h"
#include "qovicomponent.h"
#include "qovicopy.h"
#include "qovidct.h"
#include "qovihuffman.h"
#include "qovihuffrow.h"
#include "qoviimage.h"
#include "qovimcu.h"
#include "qovipacked.h"
#include "qovipct.h"
#include "qovipredict.h"
#include "qoviresample.h"
#include "qovisample.h"
#include "qovitexture.h"
#include "qovitiff.h"
#include "qovivector.h"
#include "qovivlc.h"
#include "qoviwavelet.h"
#include "qoviwavelet2d.h"

QOV_API const QovLibraryVersion* qoviGetLibVersion(void);

#endif
