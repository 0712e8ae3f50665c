#include "as/asWatch.h"

const Watcher *watcher = nullptr;
