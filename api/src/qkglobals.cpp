// The harness's global objects, all in one unit so that their order is one list. Suites register from static
// initialisers of their own; the init priorities make sure that these stand first whatever the link order is.
// c_in and c_out are constructed first and so outlive the streams that write to them.
#include "qkcstream.h"
#include "qkctrl87.h"
#include "qkexception.h"
#include "qkistream.h"
#include "qkstream.h"
#include "qktool.h"

#define QK_INIT_ORDER(n) __attribute__((init_priority(n)))

QK_INIT_ORDER(201) i_stream c_in(stdin);
QK_INIT_ORDER(202) o_stream c_out(stdout);
QK_INIT_ORDER(203) qkOStream g_ostrm;
QK_INIT_ORDER(204) qkCStream g_cstrm;
QK_INIT_ORDER(205) qkCStream g_qstrm;
QK_INIT_ORDER(206) qkUStream g_ustrm;
QK_INIT_ORDER(207) qkCStream g_mstrm;
QK_INIT_ORDER(208) qkIStream g_istrm;
QK_INIT_ORDER(209) qkTrace g_trace;
QK_INIT_ORDER(210) tsSignal _g_signal;

static ts87Base s_base87;
QK_INIT_ORDER(211) static tsSSXBase s_baseSSX;
QK_INIT_ORDER(212) qk87 g_ctrl87(&s_base87);
QK_INIT_ORDER(213) qkSSX g_ssx(&s_baseSSX);
QK_INIT_ORDER(214) qkTool g_tool;
