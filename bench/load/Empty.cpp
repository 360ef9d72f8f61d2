// An empty library. Loading it costs only what the libraries below it cost.
extern "C" __attribute__((visibility("default"))) void emptyLibrary();
void emptyLibrary() {}
