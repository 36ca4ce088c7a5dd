#include "kxcommonr/config.h"
