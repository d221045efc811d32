// Quantisation tables and the quantisation of a block: each level against exact quotients and products.
#include "qov_testing.h"
#include "qovi.h"
