// Plain vector operations of qov.
#ifndef QOV_QOVS_H
#define QOV_QOVS_H

#include "qovdefs.h"

QOV_API const QovLibraryVersion* qovsGetLibVersion(void);

#endif
