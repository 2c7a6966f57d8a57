// Marks what the shared libraries offer; everything else stays inside them.
#pragma once

// Static libraries export nothing, so that an app's own library that they are linked into does not either.
#ifdef KORVEX_SHARED
#define KORVEX_EXPORT __attribute__((visibility("default")))
#else
#define KORVEX_EXPORT
#endif
