#pragma once
// The host's string records MT::_MQLSTRA and MT::_MQLSTRW, declared with the exports in
// include/Tovarin.h. The host hands over arrays of them with a stride of 12 bytes: the layout is
// pinned here.
#include "../include/Tovarin.h"

#include <cstddef>

static_assert(sizeof(MT::_MQLSTRA) == 12 && sizeof(MT::_MQLSTRW) == 12, "host string records are packed");
static_assert(offsetof(MT::_MQLSTRA, length) == 0 && offsetof(MT::_MQLSTRW, length) == 0,
              "the length comes first");
static_assert(offsetof(MT::_MQLSTRA, pointer) == 4 && offsetof(MT::_MQLSTRW, pointer) == 4,
              "the buffer's address stands unaligned at byte 4");
static_assert(sizeof(MT::_MQLSTRW[2]) == 24, "arrays of records have a stride of 12 bytes");
