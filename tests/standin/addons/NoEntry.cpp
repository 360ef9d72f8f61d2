// A shared object that is no add-on.

extern "C" __attribute__((visibility("default"))) int answer() { return 42; }
