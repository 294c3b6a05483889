// The exported functions. Each is one call of the export frame (Frame.h) with its signature text
// as the failure texts show it, its neutral result, and its work.
#include "Frame.h"
