#pragma once

#include "diagnostics/gwDebug.h"

// Assertion reports are log lines, not aborts: the code goes on after them.
// They name the source file, the line and the compiler's signature of the
// current function.
#define GW_FUNCTION_SIGNATURE __PRETTY_FUNCTION__

// A pointer that must not be null.
#define GW_BADPTR(variable) \
    gwDebug("GW_BADPTR: F:%s L:%i f:%s v:%s", __FILE__, __LINE__, GW_FUNCTION_SIGNATURE, #variable)

// An error text with its place, e.g. GW_REPORT_AT("Error: Zero-sized output image!").
#define GW_REPORT_AT(text) \
    gwDebug("F:%s L:%i f:%s " text, __FILE__, __LINE__, GW_FUNCTION_SIGNATURE)

#define GW_REPORT_PIXEL_NOT_FOUND(x, y)                                                      \
    gwDebug("ERROR F:%s L:%i f:%s Pixel at [%i][%i] cannot be found!", __FILE__, __LINE__, \
            GW_FUNCTION_SIGNATURE, static_cast<int>(x), static_cast<int>(y))
