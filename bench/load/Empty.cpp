// Nothing: what is left is what the libraries below cost.
extern "C" __attribute__((visibility("default"))) void emptyLibrary();
void emptyLibrary() {}
