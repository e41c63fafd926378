// SPDX-License-Identifier: MIT
//
// Settings of the sanitizers in programs that may load an OpenCL driver. Environment variables come on top.

extern "C" {

char const* __asan_default_options();
char const* __lsan_default_suppressions();

/// LLVM, inside a driver, gives the thread that first calls it a signal stack of its own, which the sanitizer
/// takes for one of its making when the thread ends. The search for leaks crashes on the record of blocks of
/// thread-local data, which holds those of drivers that are gone; they are found without it.
char const* __asan_default_options()
{
    return "use_sigaltstack=0:intercept_tls_get_addr=0";
}

/// What the driver for the processor keeps until the process ends.
char const* __lsan_default_suppressions()
{
    return "leak:libpocl.so\nleak:libLLVM\n";
}

} // extern "C"
