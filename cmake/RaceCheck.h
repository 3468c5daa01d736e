// Included before everything else in builds for the race checker: tells it how
// the reference counts of the standard library order their users.
#pragma once

#include <valgrind/helgrind.h>

#define _GLIBCXX_SYNCHRONIZATION_HAPPENS_BEFORE(A) ANNOTATE_HAPPENS_BEFORE(A)
#define _GLIBCXX_SYNCHRONIZATION_HAPPENS_AFTER(A) ANNOTATE_HAPPENS_AFTER(A)
