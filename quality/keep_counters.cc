// Linked into every program of a coverage build: the counters are written at a regular exit alone,
// but some lines are there to end the process in another way. Each way out writes them first. The
// linker leads the calls here (--wrap).

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
