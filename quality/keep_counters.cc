// Linked into every program of a coverage build. The counters are written only when a process exits
// regularly; these functions write them also before it ends in another way, so that the lines that
// do that are counted. The linker redirects the calls (--wrap).

extern "C" {

void __gcov_dump();
[[noreturn]] void __real_abort();
[[noreturn]] void __real__exit(int status);
[[noreturn]] void __real__Exit(int status);

[[noreturn]] void __wrap_abort() {
  __gcov_dump();
  __real_abort();
}

[[noreturn]] void __wrap__exit(int status) {
  __gcov_dump();
  __real__exit(status);
}

[[noreturn]] void __wrap__Exit(int status) {
  __gcov_dump();
  __real__Exit(status);
}

}  // extern "C"
