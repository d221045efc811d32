// The help texts of the keys: <key>_help is the line of the quick help, <key>_descr the extended help. ha is
// the key '@' and hq the key '?'. A key without one of the two has no text of that kind.
#ifndef QK_KEYTEXTS_H
#define QK_KEYTEXTS_H

extern const char *const B_help, *const B_descr;
extern const char *const A_help, *const A_descr;
extern const char *const d_help, *const d_descr;
extern const char *const i_help, *const i_descr;
extern const char *const I_help, *const I_descr;
extern const char *const P_help, *const P_descr;
extern const char *const o_help, *const o_descr;
extern const char *const O_help, *const O_descr;
extern const char *const L_help, *const L_descr;
extern const char *const r_help, *const r_descr;
extern const char *const R_help, *const R_descr;
extern const char *const q_help, *const q_descr;
extern const char *const Q_help, *const Q_descr;
extern const char *const u_help, *const u_descr;
extern const char *const U_help, *const U_descr;
extern const char *const g_help, *const g_descr;
extern const char *const n_help, *const n_descr;
extern const char *const p_help, *const p_descr;
extern const char *const l_help, *const l_descr;
extern const char *const f_help, *const f_descr;
extern const char *const t_help, *const t_descr;
extern const char *const m_help, *const m_descr;
extern const char *const k_help, *const k_descr;
extern const char *const F_help, *const F_descr;
extern const char *const Y_help, *const Y_descr;
extern const char *const H_help, *const H_descr;
extern const char *const T_help, *const T_descr;
extern const char *const N_help, *const N_descr;
extern const char *const S_help, *const S_descr;
extern const char *const C_help, *const C_descr;
extern const char *const s_help, *const s_descr;
extern const char* const e_help;
extern const char* const v_help;
extern const char *const ha_help, *const ha_descr;
extern const char *const h_help, *const h_descr;
extern const char* const hq_descr;
extern const char* const M_help;

#endif
