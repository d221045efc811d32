// Stands in the program in place of the suites when it is built without a library, and says so in every
// title.
#include "qklibenv.h"

static const bool regNoSuites = qkRegLibInfo("none (built with QOV=none): the suites are left out");
