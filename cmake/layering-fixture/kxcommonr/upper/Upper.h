#include "kxcommonr/lower/Lower.h"
