// Priority of the process around a measurement. Only root can raise it, so nothing happens for other users.
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

#include "qktool.h"

static struct {
    bool pending = false; // to be put back
    int nice = 0;
    int policy = 0;
    sched_param param = {};
} s_saved;

static bool isRoot()
{
    return getuid() == 0;
}

static void setPolicy(int policy, int priority)
{
    sched_param param = {};
    param.sched_priority = priority;
    sched_setscheduler(0, policy, &param);
}

// The calls' results don't matter: a measurement at another priority is still one.
void qkSetPriority(int priority)
{
    // What a crashed measurement left raised must not be saved as the state to go back to.
    qkResetPriority();
    if (priority == 0) return;
    s_saved.pending = true;
    if (!isRoot()) return;
    s_saved.nice = getpriority(PRIO_PROCESS, 0);
    s_saved.policy = sched_getscheduler(0);
    sched_getparam(0, &s_saved.param);

    if (priority == 1) {
        setpriority(PRIO_PROCESS, 0, -20);
        const int top = sched_get_priority_max(SCHED_FIFO);
        if (top != -1) setPolicy(SCHED_RR, top);
    } else if (priority == 2 || priority == 3) {
        setpriority(PRIO_PROCESS, 0, priority == 2 ? 0 : 10);
        setPolicy(SCHED_OTHER, 0);
    }
}

void qkResetPriority()
{
    if (!s_saved.pending) return;
    s_saved.pending = false;
    if (!isRoot()) return;
    sched_setscheduler(0, s_saved.policy, &s_saved.param);
    setpriority(PRIO_PROCESS, 0, s_saved.nice);
}
