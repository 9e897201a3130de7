// A session on one chip from beginning to end.
#include "support/session.h"

void BeforeKeys(SessionState& /*state*/) {}
