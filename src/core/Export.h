// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

/// Marks what the shared library shows to its hosts; everything else stays hidden. The build of the
/// library defines ORV_BUILDING_LIBRARY, a static build defines ORV_STATIC for itself and its
/// hosts.
#if defined(ORV_STATIC)
#define ORV_EXPORT
#elif defined(ORV_BUILDING_LIBRARY)
#define ORV_EXPORT Q_DECL_EXPORT
#else
#define ORV_EXPORT Q_DECL_IMPORT
#endif
