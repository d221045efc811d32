#include "qovcore.h"
#include "qovj.h"

#define QOV_MAJOR 2
#define QOV_MINOR 0
#define QOV_BUILD 0
#define QOV_TEXT_(x) #x
#define QOV_TEXT(x) QOV_TEXT_(x)
#define QOV_VERSION QOV_TEXT(QOV_MAJOR) "." QOV_TEXT(QOV_MINOR)

#define QOV_VERSION_GETTER(domain, name)                                                                     \
    const QovLibraryVersion* domain##GetLibVersion(void)                                                     \
    {                                                                                                        \
        static const QovLibraryVersion version = {QOV_MAJOR, QOV_MINOR,   QOV_BUILD,                         \
                                                  name,      QOV_VERSION, __DATE__};                         \
        return &version;                                                                                     \
    }

QOV_VERSION_GETTER(qov, "qovcore")
QOV_VERSION_GETTER(qovi, "qovi")
QOV_VERSION_GETTER(qovs, "qovs")
QOV_VERSION_GETTER(qovj, "qovj")
