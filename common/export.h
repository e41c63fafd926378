// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Marks what leaves a shared library. Everything else stays hidden.
///
/// Exported names live in the inline namespace `umbrix_v0`, so they are reachable unqualified at global scope
/// and their symbols carry the version of the interface. Helpers that are not exported live in
/// `umbrixlib::detail`.

#if defined(_WIN32)
#define UMBRIX_EXPORT __declspec(dllexport)
#define UMBRIX_IMPORT __declspec(dllimport)
#else
#define UMBRIX_EXPORT __attribute__((visibility("default")))
#define UMBRIX_IMPORT __attribute__((visibility("default")))
#endif

#if defined(UMBRIX_BUILDING)
#define UMBRIX_API UMBRIX_EXPORT
#else
#define UMBRIX_API UMBRIX_IMPORT
#endif

#if defined(VELLORIC_BUILDING)
#define VELLORIC_API UMBRIX_EXPORT
#else
#define VELLORIC_API UMBRIX_IMPORT
#endif

#if defined(CORALITH_BUILDING)
#define CORALITH_API UMBRIX_EXPORT
#else
#define CORALITH_API UMBRIX_IMPORT
#endif
