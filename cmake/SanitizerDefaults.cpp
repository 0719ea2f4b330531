// What the sanitizers are told, compiled into every program of a sanitized build, so that it holds for ctest, for a
// debugger, for a program that a test starts and for the listing of the tests alike. ASAN_OPTIONS and the like still
// override it.

extern "C" {

const char* __asan_default_options() {
  return "strict_string_checks=1:detect_stack_use_after_return=1:check_initialization_order=1";
}

const char* __ubsan_default_options() { return "print_stacktrace=1"; }

// Memory that libraries keep until the process ends. Only libraries that never call back into the program may stand here:
// a suppression hides every leak that has the library anywhere on its stack, and all events are delivered by GLib and by
// Qt's platform plugins.
const char* __lsan_default_suppressions() {
  return
      // The font configuration is a cache that only FcFini would free, and Qt does not call it.
      "leak:libfontconfig.so\n";
}

}  // extern "C"
