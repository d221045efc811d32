// Forward and inverse DCT with quantisation: each level against a transform in double precision, and against
// the plain level byte for byte.
#include "qov_testing.h"
#include "qovi.h"
