#include "kxcommonr/lower/Lower.h"
#include "kxcommonr/upper/Upper.h"
