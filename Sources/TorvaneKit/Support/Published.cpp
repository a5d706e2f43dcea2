#include "Support/Published.h"
