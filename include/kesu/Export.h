#pragma once

/// Exports a class or function from the shared library; everything else is hidden.
#if defined(__GNUC__)
#define KESU_API __attribute__((visibility("default")))
#else
#define KESU_API
#endif
