// kxcommonr/config.h
//
// Build configuration shared by every public header: the library version,
// the export macro that marks the public programming interface, and the
// namespace macros of the metadata and XML subsystems.
//
// Symbols are hidden by default; only declarations marked KXCOMMONR_API are
// exported from the shared library. Consumers of a static build define
// KXCOMMONR_STATIC (the installed CMake package and pkg-config file do this).
#ifndef KXCOMMONR_CONFIG_H
#define KXCOMMONR_CONFIG_H

// The single source of the version: CMake reads these three lines.
#define KXCOMMONR_VERSION_MAJOR 1
#define KXCOMMONR_VERSION_MINOR 0
#define KXCOMMONR_VERSION_PATCH 0

#define KXCOMMONR_VERSION_STRING_(a, b, c) #a "." #b "." #c
#define KXCOMMONR_VERSION_STRING_X_(a, b, c) KXCOMMONR_VERSION_STRING_(a, b, c)
// "major.minor.patch", for example "1.0.0".
#define KXCOMMONR_VERSION_STRING                                   \
  KXCOMMONR_VERSION_STRING_X_(KXCOMMONR_VERSION_MAJOR,             \
                              KXCOMMONR_VERSION_MINOR,             \
                              KXCOMMONR_VERSION_PATCH)

#if defined(KXCOMMONR_STATIC)
#define KXCOMMONR_API
#elif defined(_WIN32) || defined(__CYGWIN__)
#if defined(KXCOMMONR_BUILDING)
#define KXCOMMONR_API __declspec(dllexport)
#else
#define KXCOMMONR_API __declspec(dllimport)
#endif
#else
#define KXCOMMONR_API __attribute__((visibility("default")))
#endif

// Namespace of the variable metadata classes.
#define KXMTD_NAMESPACE KXMTD
// Namespace of the XML object model and object-stream functions.
#define KXXML_NAMESPACE KXXML

#endif  // KXCOMMONR_CONFIG_H
