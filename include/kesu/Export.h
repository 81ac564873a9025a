#pragma once

/// Marks what the shared library exports. Everything else is hidden.
#if defined(__GNUC__)
#define KESU_API __attribute__((visibility("default")))
#else
#define KESU_API
#endif
