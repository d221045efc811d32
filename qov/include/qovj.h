// The JPEG domain of qov: who it is. Its primitives are declared in qovi.h and qovs.h.
#ifndef QOV_QOVJ_H
#define QOV_QOVJ_H

#include "qovdefs.h"
#include "qovi.h"
#include "qovs.h"

QOV_API const QovLibraryVersion* qovjGetLibVersion(void);

#endif
