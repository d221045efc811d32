// The data layer: everything that a suite needs to make its data, to describe its functions and to register
// them.
#ifndef QD_H
#define QD_H

#include "qdbitvector.h"
#include "qdbmp.h"
#include "qdfunc.h"
#include "qdimage.h"
#include "qdscale.h"
#include "qdtest.h"
#include "qdtype.h"
#include "qdvector.h"

#include "qd_reg.h"
#include "qdtime.h"

#endif
