// Marks the exported symbols of the shared libraries; all other symbols are hidden.
#pragma once

// Static libraries export nothing, so a shared library of an app that links them does not export their symbols.
#ifdef KORVEX_SHARED
#define KORVEX_EXPORT __attribute__((visibility("default")))
#else
#define KORVEX_EXPORT
#endif
