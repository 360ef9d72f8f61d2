// A shared object, but no add-on: it lacks the entry.

extern "C" __attribute__((visibility("default"))) int answer() { return 42; }
